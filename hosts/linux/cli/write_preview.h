#pragma once
// What a tag write will change, shown before it happens, and the question that lets it go ahead:
// the gate `tag` and `musicbrainz` install on the host's tag update.

#include <string>

#include <hostkit/tag_update_engine.h>

namespace tessellon_cli {

class json_writer;

struct write_choice {
    bool dry_run = false;  // show, never write
    bool yes = false;      // write without asking
    bool json = false;     // the preview goes into the command's JSON document
    std::string mode;      // "wipe" or "keep" when the tagger dialog's box decides; else empty
};

// Per file, every field it will hold in order, "  field: old -> new", "  field: added NEW" or
// "  field: VALUE" (unchanged), then "  field: removed OLD". Unchanged files say so.
std::string preview_text(const hostkit::update_plan& plan, const std::string& mode);
// The plan's files as {"path", "fields": [...], "changes": [{"field", "change", "old", "new"}]}.
void write_plan_json(json_writer& json, const hostkit::update_plan& plan);

// Dry run: prints the preview on stdout and says no. Otherwise prints it on stderr and, on a
// terminal without `yes`, asks `Write these tags to N files? [y/N]`: only "y" or "yes" writes.
hostkit::tag_update_engine::gate_fn make_write_gate(const write_choice& choice);

// How a run is named in the undo journal: the command as typed, and the album (its folder).
std::string command_text(const char* command, const std::vector<std::string>& args);
std::string album_text(const track_list& tracks);

// The line that ends a write on stderr and its exit status, from the update's outcome.
int report_update(const std::optional<hostkit::update_result>& result, const write_choice& choice, const char* what);

} // namespace tessellon_cli
