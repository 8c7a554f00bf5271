// The page as the host's preferences window meets it: its place in the tree, its help address,
// and the page instance it creates.

#include <string>

#include <tunehall/core.h>
#include <tunehall/core_version.h>

#include "config/preferences_page.h"
#include "config/preferences_page_guid.h"
#include "host/registration.h"

namespace {

// The help site is this project's own; the host's version keeps the help matching the host.
constexpr const char* help_site_root = "https://help.tessellon.invalid/";

class discora_preferences_page : public preferences_page {
public:
    const char* get_name() override { return preferences_page_name; }
    GUID get_guid() override { return preferences_page_guid; }
    GUID get_parent_guid() override { return preferences_branch_tagging; }

    bool get_help_url(std::string& out) override {
        out = std::string(help_site_root) + host_service<core_version>()->get_version_as_text() + "/preferences/" +
              tunehall::guid_to_text(preferences_page_guid) + "/" + preferences_page_name;
        return true;
    }

    service_ref<preferences_page_instance> instantiate(HWND parent, service_ref<preferences_page_callback> callback) override {
        return open_preferences_page(parent, std::move(callback));
    }
};

sonatag2::service_factory_t<discora_preferences_page, preferences_page> g_factory(sonatag2::g_service_list);

} // namespace
