#pragma once
// The commands of `tessellon`. Each takes its arguments (without the command name), prints to
// stdout (data) and stderr (messages), and returns an exit status.

#include <string>
#include <vector>

#include <tunehall/tag_record.h>

#include "cli/command_line.h"

namespace tessellon_cli {

using arguments = std::vector<std::string>;

int run_about(const global_options& globals, const arguments& args);
int run_discid(const global_options& globals, const arguments& args);
int run_cddb(const global_options& globals, const arguments& args);
int run_lookup_command(const global_options& globals, const arguments& args);
int run_servers(const global_options& globals, const arguments& args);
int run_config(const global_options& globals, const arguments& args);
int run_show(const global_options& globals, const arguments& args);
int run_tag(const global_options& globals, const arguments& args);
int run_musicbrainz(const global_options& globals, const arguments& args);
int run_undo(const global_options& globals, const arguments& args);

// A track's fields as JSON ([[name, [values...]], ...]) and as "  name=value" lines.
class json_writer;
void write_fields_json(json_writer& json, const tag_record& tags);
std::string fields_text(const tag_record& tags);

// The text of `tessellon --help`.
extern const char* const help_text;

} // namespace tessellon_cli
