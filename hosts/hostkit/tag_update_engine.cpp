#include "tag_update_engine.h"

#include <tunehall/core.h>
#include <tunehall/popup.h>
#include <tunehall/threaded_process.h>

namespace hostkit {

namespace {

// Whether two records hold the same fields with the same values, in whatever field order: a file
// lists its fields in its own order, so a prepared record that matches it field for field is no
// change.
bool same_fields(const tag_record& a, const tag_record& b) {
    if (a.field_count() != b.field_count()) return false;
    for (std::size_t f = 0; f < a.field_count(); ++f) {
        std::size_t g = b.find_field(a.field_name(f).c_str());
        if (g == tag_record::npos || a.value_count(f) != b.value_count(g)) return false;
        for (std::size_t v = 0; v < a.value_count(f); ++v)
            if (a.value(f, v) != b.value(g, v)) return false;
    }
    return true;
}

using outcome = update_result::outcome;

} // namespace

std::size_t update_plan::changing() const {
    std::size_t n = 0;
    for (const planned_file& f : files) n += f.changes ? 1 : 0;
    return n;
}

namespace {

class update_task : public threaded_process_task {
public:
    update_task(tag_io& io, track_list tracks, service_ref<tag_update_filter> filter, tag_update_engine::gate_fn gate,
                std::optional<update_result>& last, service_ref<completion_notification> done, std::uint32_t task_id)
        : io_(io), tracks_(std::move(tracks)), filter_(std::move(filter)), gate_(std::move(gate)), last_(last),
          done_(std::move(done)), task_id_(task_id) {}

    void run(threaded_process_status& status, abort_source& abort) override {
        plan(abort);
        if (result_.result == outcome::failed || result_.plan.changing() == 0) return;
        if (gate_ && !gate_(result_.plan)) {
            result_.result = outcome::declined;
            return;
        }
        for (const planned_file& f : result_.plan.files) {
            if (!f.changes) continue;
            try {
                io_.check(f);
            } catch (const std::exception& e) {
                result_.problems.emplace_back(e.what());
            }
        }
        if (!result_.problems.empty()) {
            result_.result = outcome::refused;
            return;
        }
        write(status, abort);
    }

    void on_done(HWND parent, bool aborted) override {
        std::uint32_t code = completion_notification::result_success;
        if (aborted && result_.result == outcome::nothing_to_write) result_.result = outcome::interrupted;
        switch (result_.result) {
        case outcome::written:
        case outcome::nothing_to_write: break;
        case outcome::declined:
        case outcome::interrupted: code = completion_notification::result_aborted; break;
        case outcome::refused:
        case outcome::failed:
            code = completion_notification::result_failure;
            if (auto popups = try_host_service<popup_message_v3>())
                popups->messageBoxAsync(parent, failure_text().c_str(), "Tag update", popup_message_v3::mb_icon_error, {});
            break;
        }
        last_ = std::move(result_);
        if (done_) done_->on_completion(task_id_, code);
    }

private:
    void plan(abort_source& abort) {
        for (const track_ref& track : tracks_) {
            abort.check();
            try {
                planned_file f{track, track->path(), io_.read_tags(track), {}};
                f.after = f.before;
                // A file the filter leaves as it was is not rewritten.
                f.changes = filter_->apply(track, f.after) && !same_fields(f.after, f.before);
                if (!f.changes) f.after = f.before;
                result_.plan.files.push_back(std::move(f));
            } catch (const tunehall_io::exception_aborted&) {
                throw;
            } catch (const std::exception& e) {
                result_.problems.emplace_back(e.what());
            }
        }
        if (!result_.problems.empty()) result_.result = outcome::failed;
    }

    void write(threaded_process_status& status, abort_source& abort) {
        for (const planned_file& f : result_.plan.files)
            if (f.changes) files_.push_back(&f);
        const std::vector<const planned_file*>& files = files_;
        io_.begin_run(result_.plan);
        for (std::size_t i = 0; i < files.size(); ++i) {
            if (abort.is_aborting()) {
                io_.end_run(false);
                result_.result = outcome::interrupted;
                return;
            }
            status.set_progress_float(static_cast<double>(i) / static_cast<double>(files.size()));
            status.set_item(files[i]->path.c_str());
            try {
                io_.write_tags(files[i]->track, files[i]->after);
                result_.written.push_back(files[i]->path);
            } catch (const std::exception& e) {
                result_.problems.emplace_back(e.what());
                roll_back(i);
                io_.end_run(false);
                result_.result = outcome::failed;
                return;
            }
        }
        io_.end_run(true);
        result_.result = outcome::written;
        status.set_progress(threaded_process_status::progress_max);
    }

    // Puts back the first `count` files, last written first.
    void roll_back(std::size_t count) {
        bool all = true;
        for (std::size_t i = count; i-- > 0;) {
            try {
                io_.restore(*files_[i]);
                result_.written.pop_back();
            } catch (const std::exception& e) {
                all = false;
                result_.problems.emplace_back(e.what());
            }
        }
        result_.rolled_back = all;
    }

    std::string failure_text() const {
        std::string text = result_.result == outcome::refused ? "No file was changed: " : "Could not update the tags of every file:";
        for (const std::string& p : result_.problems) text += "\n" + p;
        if (result_.rolled_back && result_.result == outcome::failed)
            text += "\nThe files written before the failure were put back as they were; no file was changed.";
        return text;
    }

    tag_io& io_;
    track_list tracks_;
    service_ref<tag_update_filter> filter_;
    tag_update_engine::gate_fn gate_;
    std::optional<update_result>& last_;
    service_ref<completion_notification> done_;
    std::uint32_t task_id_;
    update_result result_;
    std::vector<const planned_file*> files_;  // those written, in order
};

} // namespace

void tag_update_engine::update_async(const track_list& tracks, service_ref<tag_update_filter> filter, HWND parent,
                                     std::uint32_t, service_ref<completion_notification> done, std::uint32_t task_id) {
    last_.reset();
    auto task = make_service<update_task>(io_, tracks, std::move(filter), gate_, last_, std::move(done), task_id);
    host_service<threaded_process>()->run_modeless(task, threaded_process::flag_show_abort | threaded_process::flag_show_progress,
                                                   parent, progress_title, threaded_process::title_nul_terminated);
}

} // namespace hostkit
