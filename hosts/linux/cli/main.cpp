// tessellon: the Linux host's command line.

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <exception>

#include "cli/commands.h"

using namespace tessellon_cli;

namespace {

int dispatch(const invocation& inv) {
    if (inv.args.empty()) throw usage_error{"no command given (try tessellon --help)"};
    const std::string& command = inv.args[0];
    arguments rest(inv.args.begin() + 1, inv.args.end());
    if (command == "--version") {
        std::printf("Tessellon 0.9\n");
        return exit_ok;
    }
    // "tessellon tag --help" is a request for help too, not an unknown option of the command.
    const bool help_asked = std::find(rest.begin(), rest.end(), "--help") != rest.end();
    if (command == "--help" || command == "-h" || command == "help" || help_asked) {
        std::fputs(help_text, stdout);
        return exit_ok;
    }
    if (command == "about") return run_about(inv.globals, rest);
    if (command == "discid") return run_discid(inv.globals, rest);
    if (command == "cddb") return run_cddb(inv.globals, rest);
    if (command == "lookup") return run_lookup_command(inv.globals, rest);
    if (command == "servers") return run_servers(inv.globals, rest);
    if (command == "config") return run_config(inv.globals, rest);
    if (command == "show") return run_show(inv.globals, rest);
    if (command == "tag") return run_tag(inv.globals, rest);
    if (command == "musicbrainz") return run_musicbrainz(inv.globals, rest);
    if (command == "undo") return run_undo(inv.globals, rest);
    throw usage_error{"unknown command '" + command + "' (try tessellon --help)"};
}

} // namespace

int main(int argc, char** argv) {
    try {
        return dispatch(parse_globals(argc, argv));
    } catch (const usage_error& e) {
        std::fprintf(stderr, "tessellon: %s\n", e.text.c_str());
    } catch (const std::exception& e) {
        std::fprintf(stderr, "tessellon: %s\n", e.what());
    }
    return exit_failure;
}
