#pragma once
// Running the component's lookup from the command line, shared by `lookup` and `tag`.

#include <string>

#include "cddb/lookup_state.h"
#include "cli/session.h"

namespace tessellon_cli {

// every_server_failed: nothing found, and each configured server failed (refused, timed out,
// an HTTP error, an answer over a limit or malformed) rather than answering "no match".
enum class lookup_outcome { found, nothing_found, every_server_failed, aborted };

// Runs "Get tags from discora" on `tracks` (Ctrl-C aborts it). With `catch_result`, `result`
// receives what the lookup hands to the tagger dialog instead of the dialog; otherwise the
// component's own tagger dialog opens. Each server's failures are named on stderr, whatever
// the outcome.
lookup_outcome run_lookup(session& s, const track_list& tracks, service_ref<lookup_state>& result, bool catch_result = true);

// A match as the tagger dialog lists it: "Artist / Album (category)".
std::string match_label(const disc_record& record);

} // namespace tessellon_cli
