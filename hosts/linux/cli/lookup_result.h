#pragma once
// Running the component's lookup from the command line, shared by `lookup` and `tag`.

#include <optional>
#include <string>

#include <tunehall/tagging_source.h>

#include "cddb/lookup_state.h"
#include "cli/session.h"

namespace tessellon_cli {

// every_server_failed: nothing found, and each configured server failed (refused, timed out,
// an HTTP error, an answer over a limit or malformed) rather than answering "no match".
enum class lookup_outcome { found, nothing_found, every_server_failed, aborted };

// How one of the component's tagging sources ended, as it reports it.
class outcome_catcher : public tagging_done {
public:
    void on_done(bool success) override { on_outcome(success ? tagging_outcome::done : tagging_outcome::failed); }
    void on_outcome(tagging_outcome o) override { outcome = o; }
    std::optional<tagging_outcome> outcome;
};

// The component's tagging source called `name` ("discora", "MusicBrainz").
service_ref<tagging_source> component_tagging_source(const char* name);

// Runs the "discora" tagging source on `tracks` (Ctrl-C aborts it). With `catch_result`, `result`
// receives what the lookup hands to the tagger dialog instead of the dialog; otherwise the
// component's own tagger dialog opens. Each server's failures are named on stderr, whatever
// the outcome.
lookup_outcome run_lookup(session& s, const track_list& tracks, service_ref<lookup_state>& result, bool catch_result = true);

} // namespace tessellon_cli
