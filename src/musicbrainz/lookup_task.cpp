#include "musicbrainz/lookup_task.h"

#include <exception>

#include <tunehall/core.h>
#include <tunehall/exceptions.h>
#include <tunehall/popup.h>

#include "musicbrainz/lookup.h"
#include "musicbrainz/release_dialog.h"
#include "musicbrainz/tag_mapping.h"
#include "ui/plain_message_box.h"

namespace {

constexpr std::uint32_t interactive_flags = threaded_process::flag_show_abort;
// The write-at-once form stays out of the way: no focus, shown only if it takes a while.
constexpr std::uint32_t write_flags =
    threaded_process::flag_show_abort | threaded_process::flag_no_focus | threaded_process::flag_show_delayed;

} // namespace

musicbrainz_task::musicbrainz_task(const track_list& tracks, bool interactive, service_ref<tagging_done> done)
    : tracks_(tracks), interactive_(interactive), done_(std::move(done)) {}

void musicbrainz_task::run(threaded_process_status&, abort_source& abort) {
    try {
        result_ = musicbrainz_lookup(tracks_, abort);
        state_ = succeeded;
    } catch (const tunehall_io::exception_aborted&) {
        // The host knows; the user is not told what they did themselves.
        state_ = failed;
        throw;
    } catch (const musicbrainz_no_match& e) {
        failure_ = e.what();
        state_ = nothing_found;
    } catch (const tunehall_io::exception_io_not_found& e) {
        // The service knows neither the disc id nor its table of contents.
        failure_ = e.what();
        state_ = nothing_found;
    } catch (const std::exception& e) {
        failure_ = e.what();
        state_ = failed;
    }
}

void musicbrainz_task::on_done(HWND parent, bool aborted) {
    if (state_ == succeeded && result_ && !aborted) {
        try {
            if (interactive_) {
                open_release_dialog(parent, tracks_, result_, done_);
            } else {
                apply_musicbrainz_release(tracks_, result_, parent, make_service<update_reporter>(done_));
            }
        } catch (const std::exception& e) {
            show_musicbrainz_failure(parent, e.what());
            if (done_) done_->on_outcome(tagging_outcome::failed);
        }
        return;
    }
    if (!aborted && !failure_.empty()) show_musicbrainz_failure(parent, failure_);
    if (done_)
        done_->on_outcome(aborted                    ? tagging_outcome::aborted
                          : state_ == nothing_found ? tagging_outcome::nothing_found
                                                    : tagging_outcome::failed);
}

void show_musicbrainz_failure(HWND parent, const std::string& message) {
    const std::string text = "MusicBrainz lookup failed: " + message;
    if (auto popups = try_host_service<popup_message_v3>())
        popups->messageBoxAsync(parent, text.c_str(), "Information", popup_message_v3::mb_icon_information, {});
    else
        plain_message_box(parent, text, "Information");
}

void start_musicbrainz_lookup(const track_list& tracks, HWND parent, bool interactive, service_ref<tagging_done> done) {
    auto task = make_service<musicbrainz_task>(tracks, interactive, std::move(done));
    host_service<threaded_process>()->run_modeless(task, interactive ? interactive_flags : write_flags, parent,
                                                   musicbrainz_progress_title, threaded_process::title_nul_terminated);
}
