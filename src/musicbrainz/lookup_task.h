#pragma once
// The MusicBrainz lookup as the host runs it: the lookup on the progress dialog's worker, then
// on the main thread either the "MusicBrainz Lookup" dialog (interactive) or the tags written at
// once, or the failure shown to the user.

#include <atomic>
#include <memory>
#include <string>

#include <tunehall/tagging_source.h>
#include <tunehall/threaded_process.h>

#include "musicbrainz/release.h"

class musicbrainz_task : public threaded_process_task {
public:
    // `done` (may be empty) hears once how it ended: tags written (or, interactively, the dialog
    // saved), no match, a failure or an abort.
    musicbrainz_task(const track_list& tracks, bool interactive, service_ref<tagging_done> done);

    void run(threaded_process_status& status, abort_source& abort) override;
    void on_done(HWND parent, bool aborted) override;

    // What the worker left: the release, or the message of its failure.
    std::shared_ptr<const musicbrainz_release> result() const { return result_; }
    const std::string& failure() const { return failure_; }

private:
    enum state : int { pending, succeeded, nothing_found, failed };

    track_list tracks_;
    bool interactive_;
    service_ref<tagging_done> done_;
    std::shared_ptr<const musicbrainz_release> result_;
    std::string failure_;
    // Written by the worker, read on the main thread after the worker ended.
    std::atomic<int> state_{pending};
};

inline constexpr const char* musicbrainz_progress_title = "Retrieving Information from MusicBrainz Server";

// Starts a lookup of `tracks` under the host's progress dialog and returns at once.
void start_musicbrainz_lookup(const track_list& tracks, HWND parent, bool interactive,
                              service_ref<tagging_done> done = {});

// The popup that tells the user why a lookup failed.
void show_musicbrainz_failure(HWND parent, const std::string& message);
