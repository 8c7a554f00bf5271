#pragma once
// The commands of `tessellon`. Each takes its arguments (without the command name), prints to
// stdout (data) and stderr (messages), and returns an exit status.

#include <string>
#include <vector>

#include "cli/command_line.h"

namespace tessellon_cli {

using arguments = std::vector<std::string>;

int run_about(const global_options& globals, const arguments& args);
int run_discid(const global_options& globals, const arguments& args);
int run_cddb(const global_options& globals, const arguments& args);
int run_lookup_command(const global_options& globals, const arguments& args);
int run_servers(const global_options& globals, const arguments& args);
int run_config(const global_options& globals, const arguments& args);

// The text of `tessellon --help`.
extern const char* const help_text;

} // namespace tessellon_cli
