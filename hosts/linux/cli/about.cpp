// `tessellon about`: loads the component as the player would and shows what it registers.

#include <cstdio>
#include <map>
#include <optional>
#include <vector>

#include <tunehall/component.h>
#include <tunehall/config_store.h>
#include <tunehall/menu_command.h>
#include <tunehall/preferences_page.h>
#include <tunehall/shared.h>
#include <tunehall/tagging_source.h>

#include "cli/arguments.h"
#include "cli/commands.h"
#include "cli/json_writer.h"
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
    option_reader options(args, {"--json"}, {});
    if (!options.positional().empty()) throw usage_error{"about takes no arguments"};
    session s(globals, session::component_source::file);
    hostkit::loaded_component& component = s.component();
    tunehall_client& client = component.client();

    std::vector<std::string> services;
    for (service_factory* f = client.get_service_list(); f; f = f->next()) services.push_back(class_name(f->class_guid()));
    std::optional<bool> installed;
    std::string events;
    for (auto& check : all_services<installation_check>()) {
        installed = check->is_installed_correctly();
        if (!*installed) uCrashInfo_Events(&events);
    }

    if (options.flag("--json")) {
        json_writer json;
        json.begin_object().key("components").begin_array();
        for (auto& v : all_services<component_version>())
            json.begin_object().key("name").value(v->get_component_name()).key("version").value(v->get_component_version())
                .key("about").value(v->get_about_message()).end_object();
        json.end_array().key("module").value(component.path());
        json.key("interface_version").value(static_cast<std::int64_t>(client.get_version()));
        json.key("installed_correctly");
        if (installed) json.value(*installed); else json.null();
        json.key("services").strings(services).end_object();
        std::printf("%s\n", json.text().c_str());
        return exit_ok;
    }
    for (auto& v : all_services<component_version>())
        std::printf("%s %s\n", v->get_component_name(), v->get_component_version());
    std::printf("module: %s\n", component.path().c_str());
    std::printf("interface version: %u\n", client.get_version());
    if (installed && *installed) std::printf("installation check: ok\n");
    if (installed && !*installed) std::printf("installation check: failed - %s", events.c_str());
    std::printf("services:\n");
    for (auto& name : services) std::printf("  %s\n", name.c_str());
    for (auto& v : all_services<component_version>()) std::printf("\n%s\n", v->get_about_message());
    return exit_ok;
}

} // namespace tessellon_cli
