// `tessellon config email` and `tessellon servers`: the settings the lookups use.

#include <cstdio>
#include <cstdlib>

#include "cli/arguments.h"
#include "cli/commands.h"
#include "cli/record_output.h"
#include "cli/session.h"
#include "config/settings.h"

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

// `servers add HOST [PORT [ADDRESS [DESCRIPTION]]]`, or the same as options; what is not given
// keeps the built-in server's value.
int add_server(const option_reader& options) {
    server_record r;
    default_server_record(r);
    const auto& pos = options.positional();
    if (pos.size() > 4) throw usage_error{"usage: tessellon servers add HOST [PORT [ADDRESS [DESCRIPTION]]]"};
    const char* names[] = {"--server", "--port", "--address", "--description"};
    void (server_record::*setters[])(const char*, std::size_t) = {&server_record::set_server, &server_record::set_port,
                                                                  &server_record::set_address, &server_record::set_description};
    for (std::size_t i = 0; i < 4; ++i) {
        if (i < pos.size()) (r.*setters[i])(pos[i].c_str(), server_record::npos);
        if (auto v = options.value(names[i])) (r.*setters[i])(v->c_str(), server_record::npos);
    }
    server_list servers = load_server_list();
    servers.push_back(r);
    save_server_list(servers);
    std::printf("%zu  %s\n", servers.size(), server_text(r).c_str());
    return exit_ok;
}

// `servers remove N`, N as `servers list` numbers the rows.
int remove_server(const option_reader& options) {
    server_list servers = load_server_list();
    const auto& pos = options.positional();
    char* end = nullptr;
    unsigned long n = pos.size() == 1 ? std::strtoul(pos[0].c_str(), &end, 10) : 0;
    if (pos.size() != 1 || *end != '\0' || n == 0 || n > servers.size())
        throw usage_error{"usage: tessellon servers remove N (N from 1 to " + std::to_string(servers.size()) + ")"};
    server_record removed = servers[n - 1];
    servers.erase(servers.begin() + static_cast<long>(n - 1));
    save_server_list(servers);
    std::printf("removed %s\n", server_text(removed).c_str());
    return exit_ok;
}

} // namespace

int run_servers(const global_options& globals, const arguments& args) {
    std::string sub = args.empty() ? "list" : args[0];
    arguments rest(args.empty() ? args.begin() : args.begin() + 1, args.end());
    option_reader options(rest, {"--json"}, {"--server", "--port", "--address", "--description"});
    session s(globals);
    if (sub == "list") return list_servers(options);
    if (sub == "add") return add_server(options);
    if (sub == "remove") return remove_server(options);
    throw usage_error{"unknown servers command '" + sub + "' (list, add or remove)"};
}

int run_config(const global_options& globals, const arguments& args) {
    if (args.empty() || args[0] != "email" || args.size() > 2)
        throw usage_error{"usage: tessellon config email [ADDRESS]"};
    session s(globals);
    if (args.size() == 2) cfg_email.set(args[1]);
    std::printf("%s\n", cfg_email.get().c_str());
    return exit_ok;
}

} // namespace tessellon_cli
