#include "ui/headless/dialog_templates.h"

#include <stdexcept>

namespace {

using k = control_kind;

const std::vector<dialog_template> templates = {
    {103, "discora tagger",
     {{1010, k::group_box, "&Matches"},
      {1011, k::list_view, ""},
      {1016, k::group_box, "Disc information"},
      {1012, k::label, "&Artist"},
      {1006, k::edit, ""},
      {1021, k::check_box, "&Various artists"},
      {1013, k::label, "A&lbum"},
      {1007, k::edit, ""},
      {1014, k::label, "&Year"},
      {1008, k::edit, ""},
      {1015, k::label, "&Genre"},
      {1009, k::edit, ""},
      {1023, k::group_box, "Track information"},
      {1024, k::list_view, ""},
      {1017, k::check_box, "Wipe out existing tags."},
      {1022, k::button, "&Update files"},
      {3, k::button, "Settings..."},
      {2, k::button, "&Close"}}},
    {116, "MusicBrainz Lookup",
     {{1290, k::separator, "Album information"},
      {1032, k::list_view, ""},
      {1291, k::separator, "Tracks"},
      {1024, k::list_view, ""},
      {1, k::button, "Save"},
      {2, k::button, "Cancel"}}},
    {101, "",
     {{1033, k::separator, "User"},
      {0, k::label, "E-mail:"},
      {1001, k::edit, ""},
      {1034, k::separator, "Server"},
      {1002, k::list_view, ""},
      {1025, k::button, "&Add..."},
      {1026, k::button, "&Edit..."},
      {1028, k::button, "&Remove"},
      {1030, k::button, "Retrieve..."}}},
    {104, "",
     {{1, k::button, "&OK"},
      {2, k::button, "&Cancel"},
      {1029, k::combo_box, ""},
      {1026, k::edit, ""},
      {1027, k::edit, ""},
      {1028, k::edit, ""},
      {1030, k::edit, ""}}},
};

} // namespace

const dialog_template& find_dialog_template(int id) {
    for (auto& t : templates)
        if (t.id == id) return t;
    throw std::invalid_argument("no dialog template " + std::to_string(id));
}
