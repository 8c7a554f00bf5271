// `tessellon config email` and `tessellon servers`: the settings the lookups use.

#include <cstdio>
#include <chrono>
#include <cstdlib>

#include "cli/arguments.h"
#include "cli/commands.h"
#include "cli/preferences_actions.h"
#include "cli/record_output.h"
#include "cli/session.h"
#include "config/settings.h"
#include "http/http_request_policy.h"

namespace tessellon_cli {

namespace {

int list_servers(const option_reader& options) {
    server_list servers = load_server_list();
    if (options.flag("--json")) {
        json_writer json;
        json.begin_object().key("servers").begin_array();
        int number = 0;
        for (auto& s : servers) {
            json.begin_object().key("number").value(static_cast<std::int64_t>(++number));
            json.key("server").value(s.get_server()).key("protocol").value(s.get_protocol());
            json.key("port").value(s.get_port()).key("address").value(s.get_address());
            json.key("description").value(s.get_description());
            json.end_object();
        }
        json.end_array().end_object();
        std::printf("%s\n", json.text().c_str());
    } else {
        int number = 0;
        for (auto& s : servers) std::printf("%d  %s\n", ++number, server_text(s).c_str());
        if (servers.empty()) std::fprintf(stderr, "tessellon: no servers configured\n");
    }
    return exit_ok;
}

// `servers add|edit`: HOST [PORT [ADDRESS [DESCRIPTION]]] positionally, or as options.
server_fields fields_of(const option_reader& options, std::size_t skip) {
    const auto& pos = options.positional();
    if (pos.size() > skip + 4) throw usage_error{"too many arguments: at most HOST PORT ADDRESS DESCRIPTION"};
    std::optional<std::string>* slots[4];
    server_fields f;
    slots[0] = &f.server;
    slots[1] = &f.port;
    slots[2] = &f.address;
    slots[3] = &f.description;
    const char* names[] = {"--server", "--port", "--address", "--description"};
    for (std::size_t i = 0; i < 4; ++i) {
        if (skip + i < pos.size()) *slots[i] = pos[skip + i];
        if (auto v = options.value(names[i])) *slots[i] = *v;
    }
    return f;
}

std::size_t row_number(const option_reader& options, const char* usage) {
    const auto& pos = options.positional();
    char* end = nullptr;
    unsigned long n = pos.empty() ? 0 : std::strtoul(pos[0].c_str(), &end, 10);
    if (pos.empty() || *end != '\0' || n == 0) throw usage_error{usage};
    return n;
}

} // namespace

int run_servers(const global_options& globals, const arguments& args) {
    std::string sub = args.empty() ? "list" : args[0];
    arguments rest(args.empty() ? args.begin() : args.begin() + 1, args.end());
    option_reader options(rest, {"--json"}, {"--server", "--port", "--address", "--description"});
    session s(globals, session::component_source::linked, /*write_tags=*/true, /*changes_settings=*/true);
    if (sub == "list") return list_servers(options);

    // Every change goes through the preferences page, as a user makes it, and is applied.
    preferences_actions page(s);
    if (sub == "add") {
        page.add(fields_of(options, 0));
    } else if (sub == "edit") {
        page.edit(row_number(options, "usage: tessellon servers edit N [HOST [PORT [ADDRESS [DESCRIPTION]]]]"), fields_of(options, 1));
    } else if (sub == "remove") {
        if (options.positional().size() != 1) throw usage_error{"usage: tessellon servers remove N"};
        page.remove(row_number(options, "usage: tessellon servers remove N"));
    } else if (sub == "reset") {
        page.reset();
    } else if (sub == "retrieve") {
        if (options.positional().size() != 1) throw usage_error{"usage: tessellon servers retrieve N"};
        // The page shows its own message (on stderr here) and leaves the list alone.
        if (page.retrieve(row_number(options, "usage: tessellon servers retrieve N"))) return exit_failure;
    } else {
        throw usage_error{"unknown servers command '" + sub + "' (list, add, edit, remove, reset or retrieve)"};
    }
    page.apply();
    return list_servers(options);
}

// `config timeout [SECONDS]`: the profile's default for --timeout.
int config_timeout(const global_options& globals, const arguments& args) {
    session s(globals, session::component_source::linked, /*write_tags=*/true, /*changes_settings=*/true);
    if (args.size() == 2) s.host().config().set_int(timeout_setting_key, parse_timeout(args[1], "config timeout"));
    const std::int64_t stored = s.host().config().get_int(timeout_setting_key, 0);
    const auto seconds = stored > 0 ? stored : std::chrono::duration_cast<std::chrono::seconds>(http_request_policy{}.deadline).count();
    std::printf("%lld\n", static_cast<long long>(seconds));
    return exit_ok;
}

int run_config(const global_options& globals, const arguments& args) {
    if (args.size() <= 2 && !args.empty() && args[0] == "timeout") return config_timeout(globals, args);
    if (args.empty() || args[0] != "email" || args.size() > 2)
        throw usage_error{"usage: tessellon config email [ADDRESS] | config timeout [SECONDS]"};
    session s(globals, session::component_source::linked, /*write_tags=*/true, /*changes_settings=*/true);
    if (args.size() == 2) {
        preferences_actions page(s);
        page.set_email(args[1]);
        page.apply();
    }
    std::printf("%s\n", cfg_email.get().c_str());
    return exit_ok;
}

} // namespace tessellon_cli
