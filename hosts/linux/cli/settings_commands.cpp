// `tessellon config` and `tessellon servers`: the settings the lookups and the tagger use, saved
// for later runs.

#include <cstdio>
#include <chrono>
#include <cstdlib>
#include <stdexcept>
#include <tuple>

#include "cli/arguments.h"
#include "cli/commands.h"
#include "cli/input_checks.h"
#include "cli/interrupt.h"
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

// `servers add|edit`: HOST [PORT [ADDRESS [DESCRIPTION]]] positionally, or as options; a HOST
// written as http://HOST[:PORT][/ADDRESS] is split into its parts. Checked before anything is
// stored.
server_fields fields_of(const option_reader& options, std::size_t skip) {
    const auto& pos = options.positional();
    if (pos.size() > skip + 4) throw usage_error{"too many arguments: at most HOST PORT ADDRESS DESCRIPTION"};
    server_fields f;
    std::optional<std::string>* slots[] = {&f.server, &f.port, &f.address, &f.description};
    const char* names[] = {"--server", "--port", "--address", "--description"};
    for (std::size_t i = 0; i < 4; ++i) {
        if (skip + i < pos.size()) *slots[i] = pos[skip + i];
        if (auto v = options.value(names[i])) *slots[i] = *v;
    }
    if (f.server && looks_like_url(*f.server)) {
        const server_url url = parse_server_url("server", *f.server);
        f.server = url.host;
        for (auto [part, slot, name] : {std::tuple{url.port, &f.port, "port"}, std::tuple{url.address, &f.address, "address"}}) {
            if (part.empty()) continue;
            if (*slot && **slot != part) throw usage_error{std::string("the URL's ") + name + " and the " + name + " given differ"};
            *slot = part;
        }
    }
    if (f.server) check_host_name("server", *f.server);
    if (f.port) check_port("port", *f.port);
    if (f.address) check_address("address", *f.address);
    return f;
}

std::size_t row_number(const option_reader& options, std::size_t wanted_positionals, const char* usage) {
    const auto& pos = options.positional();
    if (pos.empty() || (wanted_positionals && pos.size() != wanted_positionals)) throw usage_error{usage};
    return parse_number("server number", pos[0]);
}

// One line the settings commands print: the text, or {"key": value} with --json.
void print_setting(const option_reader& options, const char* key, const std::string& value) {
    if (options.flag("--json")) {
        json_writer json;
        json.begin_object().key(key).value(value).end_object();
        std::printf("%s\n", json.text().c_str());
    } else {
        std::printf("%s\n", value.c_str());
    }
}

int config_email(session& s, const option_reader& options) {
    const auto& pos = options.positional();
    if (pos.size() > 1) throw usage_error{"usage: tessellon config email [ADDRESS] [--json]"};
    if (pos.size() == 1) {
        check_email(pos[0]);
        preferences_actions page(s);
        page.set_email(pos[0]);
        page.apply();
    }
    print_setting(options, "email", cfg_email.get());
    return exit_ok;
}

int config_id3(session& s, const option_reader& options) {
    const auto& pos = options.positional();
    if (pos.size() > 1) throw usage_error{"usage: tessellon config id3 [2.3|2.4] [--json]"};
    if (pos.size() == 1) {
        if (pos[0] != "2.3" && pos[0] != "2.4") throw usage_error{"config id3: '" + pos[0] + "' is not 2.3 or 2.4"};
        s.host().config().set_int(id3v2_version_key, pos[0] == "2.3" ? 3 : 4);
    }
    print_setting(options, "id3", "2." + std::to_string(id3v2_version_of(s.host().config())));
    return exit_ok;
}

int config_wipe(session&, const option_reader& options) {
    const auto& pos = options.positional();
    if (pos.size() > 1 || (pos.size() == 1 && pos[0] != "on" && pos[0] != "off"))
        throw usage_error{"usage: tessellon config wipe [on|off] [--json]"};
    // The setting the tagger dialog's "Wipe out existing tags." box shows and saves.
    if (pos.size() == 1) cfg_wipe_existing_tags.set(pos[0] == "on" ? 1 : 0);
    print_setting(options, "wipe", cfg_wipe_existing_tags.get() != 0 ? "on" : "off");
    return exit_ok;
}

// The profile's default for --timeout.
int config_timeout(session& s, const option_reader& options) {
    const auto& pos = options.positional();
    if (pos.size() > 1) throw usage_error{"usage: tessellon config timeout [SECONDS] [--json]"};
    if (pos.size() == 1) s.host().config().set_int(timeout_setting_key, parse_timeout(pos[0], "config timeout"));
    const std::int64_t stored = s.host().config().get_int(timeout_setting_key, 0);
    const auto seconds = stored > 0 ? stored : std::chrono::duration_cast<std::chrono::seconds>(http_request_policy{}.deadline).count();
    print_setting(options, "timeout", std::to_string(seconds));
    return exit_ok;
}

} // namespace

int run_servers(const global_options& globals, const arguments& args) {
    // "servers" alone, or with only options, lists.
    const bool listing = args.empty() || args[0].rfind("--", 0) == 0;
    std::string sub = listing ? "list" : args[0];
    arguments rest(listing ? args.begin() : args.begin() + 1, args.end());
    option_reader options(rest, {"--json"}, {"--server", "--port", "--address", "--description"});
    if (sub == "list") {
        if (!options.positional().empty()) throw usage_error{"usage: tessellon servers [list] [--json]"};
        session s(globals);
        return list_servers(options);
    }

    // Checked before anything is asked or stored.
    std::size_t n = 0;
    server_fields fields;
    if (sub == "add") {
        fields = fields_of(options, 0);
    } else if (sub == "edit") {
        n = row_number(options, 0, "usage: tessellon servers edit N [HOST [PORT [ADDRESS [DESCRIPTION]]]]");
        fields = fields_of(options, 1);
    } else if (sub == "remove" || sub == "retrieve") {
        n = row_number(options, 1, sub == "remove" ? "usage: tessellon servers remove N" : "usage: tessellon servers retrieve N");
    } else if (sub == "reset") {
        if (!options.positional().empty()) throw usage_error{"usage: tessellon servers reset"};
    } else {
        throw usage_error{"unknown servers command '" + sub + "' (list, add, edit, remove, reset or retrieve)"};
    }

    // Every change goes through the preferences page, as a user makes it, and is applied.
    session s(globals, session::component_source::linked, session::settings_use::saved);
    preferences_actions page(s);
    if (sub == "add") page.add(fields);
    if (sub == "edit") page.edit(n, fields);
    if (sub == "remove") page.remove(n);
    if (sub == "reset") page.reset_servers();
    if (sub == "retrieve") {
        std::optional<std::string> message;
        {
            interrupt_scope ctrl_c(&s.host().tasks());
            message = page.retrieve(n);
        }
        if (interrupt_scope::interrupted()) throw user_cancelled{"servers retrieve aborted; the list is left as it was"};
        // The page showed its own message (on stderr here) and left the list alone.
        if (message) throw std::runtime_error("no server list retrieved from " + page.server_place(n));
    }
    page.apply();
    return list_servers(options);
}

int run_config(const global_options& globals, const arguments& args) {
    using subcommand = int (*)(session&, const option_reader&);
    static const std::pair<const char*, subcommand> subcommands[] = {
        {"email", config_email}, {"id3", config_id3}, {"wipe", config_wipe}, {"timeout", config_timeout}};
    for (const auto& [name, run] : subcommands) {
        if (args.empty() || args[0] != name) continue;
        arguments rest(args.begin() + 1, args.end());
        option_reader options(rest, {"--json"}, {});
        session s(globals, session::component_source::linked, session::settings_use::saved);
        return run(s, options);
    }
    throw usage_error{"usage: tessellon config email [ADDRESS] | config id3 [2.3|2.4] | config wipe [on|off] | config timeout [SECONDS]"};
}

} // namespace tessellon_cli
