#pragma once
// The lookup: every configured server is asked in list order under the host's progress
// display; what was found goes to the tagger dialog, or the user is told nothing was found.

#include <functional>
#include <string>

#include <tunehall/tagging_source.h>
#include <tunehall/threaded_process.h>

#include "cddb/lookup_state.h"
#include "cddb/protocol_handler.h"
#include "config/server_record.h"

class lookup_task : public threaded_process_task {
public:
    // Called once on the main thread when the lookup ended: done (the tagger dialog opened),
    // nothing_found or aborted.
    using done_callback = std::function<void(tagging_outcome)>;

    // Reads the server list and opens a connection per server; a server whose connection
    // cannot be opened is skipped without a message.
    lookup_task(service_ref<lookup_state> state, done_callback done = {});

    void run(threaded_process_status& status, abort_source& abort) override;
    void on_done(HWND parent, bool aborted) override;

private:
    void ask_server(std::size_t index, std::size_t count, threaded_process_status& status, abort_source& abort);

    service_ref<lookup_state> state_;
    server_list servers_;
    std::vector<service_ref<protocol_handler>> connections_;
    std::vector<disc_record> matches_;  // the current server's query answer
    done_callback done_;
};

// The progress title of a lookup.
inline constexpr const char* lookup_progress_title = "Querying information from discora";
// Runs a lookup of `tracks` (main thread); `done` as for lookup_task.
void start_lookup(const track_list& tracks, HWND parent, lookup_task::done_callback done = {});
// The text shown when no server found anything for `tracks`.
std::string no_information_message(const track_list& tracks);
