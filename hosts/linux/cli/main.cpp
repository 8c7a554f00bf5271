// tessellon: the Linux host's command line.

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <exception>

#include <tunehall/exceptions.h>

#include "cli/commands.h"
#include "cli/input_checks.h"
#include "cli/interrupt.h"

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
    check_musicbrainz_host_override();
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

namespace tessellon_cli {

exit_status exit_status_of(std::exception_ptr error, std::string& text) {
    try {
        std::rethrow_exception(error);
    } catch (const usage_error& e) {
        text = e.text;
        return exit_failure;
    } catch (const user_cancelled& e) {
        text = e.text;
        return exit_nothing;
    } catch (const tunehall_io::exception_aborted&) {
        text.clear();
        return exit_nothing;
    } catch (const std::exception& e) {
        text = e.what();
        return exit_failure;
    }
}

} // namespace tessellon_cli

int main(int argc, char** argv) {
    watch_interrupts();
    std::string text;
    exit_status status;
    try {
        const int done = dispatch(parse_globals(argc, argv));
        // Ctrl-C in a command that went on to its end still means the user stopped it.
        return interrupt_scope::interrupted() ? exit_nothing : done;
    } catch (...) {
        status = exit_status_of(std::current_exception(), text);
    }
    if (!text.empty()) std::fprintf(stderr, "tessellon: %s\n", text.c_str());
    return status;
}
