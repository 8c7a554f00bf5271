// `tessellon about`: loads the component as the player would and shows what it registers.

#include <cstdio>
#include <map>

#include <tunehall/component.h>
#include <tunehall/config_store.h>
#include <tunehall/menu_command.h>
#include <tunehall/preferences_page.h>
#include <tunehall/shared.h>
#include <tunehall/tagging_source.h>

#include "cli/commands.h"
#include "cli/session.h"

namespace tessellon_cli {

namespace {

// Names of the host interface's service classes; a component's own classes show as GUIDs.
std::string class_name(const GUID& g) {
    static const std::map<GUID, const char*, tunehall::guid_less> names = {
        {component_version::class_guid, "component_version"},
        {installation_check::class_guid, "installation_check"},
        {menu_command::class_guid, "menu_command"},
        {tagging_source::class_guid, "tagging_source"},
        {preferences_page::class_guid, "preferences_page"},
    };
    auto it = names.find(g);
    return it != names.end() ? it->second : "{" + tunehall::guid_to_text(g) + "}";
}

} // namespace

int run_about(const global_options& globals, const arguments& args) {
    if (!args.empty()) throw usage_error{"about takes no arguments"};
    session s(globals, session::component_source::file);
    hostkit::loaded_component& component = s.component();
    tunehall_client& client = component.client();

    for (auto& v : all_services<component_version>())
        std::printf("%s %s\n", v->get_component_name(), v->get_component_version());
    std::printf("module: %s\n", component.path().c_str());
    std::printf("interface version: %u\n", client.get_version());
    for (auto& check : all_services<installation_check>()) {
        bool ok = check->is_installed_correctly();
        std::string events;
        uCrashInfo_Events(&events);
        std::printf("installation check: %s%s%s", ok ? "ok" : "failed", ok ? "" : " - ", ok ? "\n" : events.c_str());
    }
    std::printf("services:\n");
    for (service_factory* f = client.get_service_list(); f; f = f->next())
        std::printf("  %s\n", class_name(f->class_guid()).c_str());
    for (auto& v : all_services<component_version>()) std::printf("\n%s\n", v->get_about_message());
    return exit_ok;
}

} // namespace tessellon_cli
