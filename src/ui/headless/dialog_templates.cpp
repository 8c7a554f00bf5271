#include "ui/headless/dialog_templates.h"

#include <stdexcept>

#include "resources/resource.h"

namespace {

using k = control_kind;

const std::vector<dialog_template> templates = {
    {IDD_TAGGER, "discora tagger",
     {{IDC_TAGGER_MATCHES_GROUP, k::group_box, "&Matches"},
      {IDC_TAGGER_MATCHES, k::list_view, ""},
      {IDC_TAGGER_DISC_GROUP, k::group_box, "Disc information"},
      {IDC_TAGGER_ARTIST_LABEL, k::label, "&Artist"},
      {IDC_TAGGER_ARTIST, k::edit, ""},
      {IDC_TAGGER_VARIOUS, k::check_box, "&Various artists"},
      {IDC_TAGGER_ALBUM_LABEL, k::label, "A&lbum"},
      {IDC_TAGGER_ALBUM, k::edit, ""},
      {IDC_TAGGER_YEAR_LABEL, k::label, "&Year"},
      {IDC_TAGGER_YEAR, k::edit, ""},
      {IDC_TAGGER_GENRE_LABEL, k::label, "&Genre"},
      {IDC_TAGGER_GENRE, k::edit, ""},
      {IDC_TAGGER_TRACK_GROUP, k::group_box, "Track information"},
      {IDC_TAGGER_TRACKS, k::list_view, ""},
      {IDC_TAGGER_WIPE, k::check_box, "Wipe out existing tags."},
      {IDC_TAGGER_UPDATE, k::button, "&Update files"},
      {IDC_TAGGER_SETTINGS, k::button, "Settings..."},
      {IDC_TAGGER_CLOSE, k::button, "&Close"}}},
    {IDD_MUSICBRAINZ, "MusicBrainz Lookup",
     {{IDC_MB_ALBUM_CAPTION, k::separator, "Album information"},
      {IDC_MB_ALBUM, k::list_view, ""},
      {IDC_MB_TRACKS_CAPTION, k::separator, "Tracks"},
      {IDC_MB_TRACKS, k::list_view, ""},
      {IDC_MB_SAVE, k::button, "Save"},
      {IDC_MB_CANCEL, k::button, "Cancel"}}},
    {IDD_PREFERENCES, "",
     {{IDC_PREFS_USER_CAPTION, k::separator, "User"},
      {IDC_STATIC, k::label, "E-mail:"},
      {IDC_PREFS_EMAIL, k::edit, ""},
      {IDC_PREFS_SERVER_CAPTION, k::separator, "Server"},
      {IDC_PREFS_SERVERS, k::list_view, ""},
      {IDC_PREFS_ADD, k::button, "&Add..."},
      {IDC_PREFS_EDIT, k::button, "&Edit..."},
      {IDC_PREFS_REMOVE, k::button, "&Remove"},
      {IDC_PREFS_RETRIEVE, k::button, "Retrieve..."}}},
    {IDD_SERVER_EDITOR, "",
     {{IDC_STATIC, k::label, "Pro&tocol:"},
      {IDC_EDITOR_PROTOCOL, k::combo_box, ""},
      {IDC_STATIC, k::label, "&Port:"},
      {IDC_EDITOR_PORT, k::edit, ""},
      {IDC_STATIC, k::label, "&Server:"},
      {IDC_EDITOR_SERVER, k::edit, ""},
      {IDC_STATIC, k::label, "&Address:"},
      {IDC_EDITOR_ADDRESS, k::edit, ""},
      {IDC_STATIC, k::label, "&Description:"},
      {IDC_EDITOR_DESCRIPTION, k::edit, ""},
      {IDC_EDITOR_OK, k::button, "&OK"},
      {IDC_EDITOR_CANCEL, k::button, "&Cancel"}}},
};

} // namespace

const dialog_template& find_dialog_template(int id) {
    for (auto& t : templates)
        if (t.id == id) return t;
    throw std::invalid_argument("no dialog template " + std::to_string(id));
}
