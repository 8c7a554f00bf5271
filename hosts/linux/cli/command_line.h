#pragma once
// The `tessellon` command line: global options, then a command and its arguments.

#include <exception>
#include <filesystem>
#include <iosfwd>
#include <string>
#include <vector>

namespace tessellon_cli {

// Exit statuses: success; nothing found, cancelled or aborted; bad usage or a failure. A command
// returns one of them, or raises usage_error, user_cancelled or any other exception; main() maps
// those to their status (exit_status_of), and nowhere else decides a status.
enum exit_status : int { exit_ok = 0, exit_nothing = 1, exit_failure = 2 };

// Bad usage: the text names what is wrong; the command ends with exit_failure.
struct usage_error {
    std::string text;
};

// The user cancelled or aborted (Ctrl-C, end of input at a prompt): exit_nothing.
struct user_cancelled {
    std::string text;
};

// The status of a command that ended by raising `error`; `text` receives what to tell the user
// (empty when nothing is to be said).
exit_status exit_status_of(std::exception_ptr error, std::string& text);

struct global_options {
    std::string profile;       // --profile DIR
    std::string component;     // --component FILE (default: sonatag2.so beside the program)
    long timeout_seconds = 0;  // --timeout S: the longest one HTTP request may take (0: the profile's)
};

// The profile's own choice for --timeout (`config timeout`), in seconds; 0 or absent: the
// built-in default.
inline constexpr const char* timeout_setting_key = "tessellon.timeout";
// --timeout and `config timeout` take whole seconds from 1 to this.
inline constexpr long max_timeout_seconds = 3600;
// SECONDS as given to --timeout or `config timeout`; raises usage_error naming `what`.
long parse_timeout(const std::string& text, const std::string& what);

struct invocation {
    global_options globals;
    std::vector<std::string> args;   // the command and its arguments
};

// Splits the global options off the front of `argv`.
invocation parse_globals(int argc, char** argv);

// Where the component file is looked for when --component is not given: beside the program,
// else in the installed component folder.
std::filesystem::path default_component_path();

} // namespace tessellon_cli
