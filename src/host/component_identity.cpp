// How the component appears in the host's component list.

#include <tunehall/component.h>

#include "host/module_info.h"
#include "host/registration.h"

namespace {

class identity : public component_version {
public:
    const char* get_component_name() override { return sonatag2::component_name; }
    const char* get_component_version() override { return sonatag2::component_version_text; }
    const char* get_about_message() override {
        return "Tessellon fills in the tags of a whole album from CDDB (discora) servers and from "
               "MusicBrainz.\n\nSelect the tracks of one disc and use \"Get tags from discora\", "
               "or the MusicBrainz tagging source. Servers and the e-mail address sent to them are "
               "set on the \"discora Tagger\" preferences page.";
    }
};

sonatag2::service_factory_t<identity, component_version> g_factory(sonatag2::g_service_list);

} // namespace
