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

class update_task : public threaded_process_task {
public:
    update_task(tag_io& io, track_list tracks, service_ref<tag_update_filter> filter,
                service_ref<completion_notification> done, std::uint32_t task_id)
        : io_(io), tracks_(std::move(tracks)), filter_(std::move(filter)), done_(std::move(done)), task_id_(task_id) {}

    void run(threaded_process_status& status, abort_source& abort) override {
        for (std::size_t i = 0; i < tracks_.size(); ++i) {
            abort.check();
            status.set_progress_float(static_cast<double>(i) / static_cast<double>(tracks_.size()));
            status.set_item(tracks_[i]->path());
            try {
                io_.update_tags(tracks_[i], [&](const tag_record& before) -> std::optional<tag_record> {
                    tag_record after = before;
                    // A file the filter leaves as it was is not rewritten.
                    if (filter_->apply(tracks_[i], after) && !same_fields(after, before)) return after;
                    return std::nullopt;
                });
            } catch (const tunehall_io::exception_aborted&) {
                throw;
            } catch (const std::exception& e) {
                errors_ += "\n";
                errors_ += e.what();
            }
        }
        status.set_progress(threaded_process_status::progress_max);
    }

    void on_done(HWND parent, bool aborted) override {
        std::uint32_t result = completion_notification::result_success;
        if (aborted) {
            result = completion_notification::result_aborted;
        } else if (!errors_.empty()) {
            result = completion_notification::result_failure;
            if (auto popups = try_host_service<popup_message_v3>())
                popups->messageBoxAsync(parent, ("Could not update the tags of every file:" + errors_).c_str(),
                                        "Tag update", popup_message_v3::mb_icon_error, {});
        }
        if (done_) done_->on_completion(task_id_, result);
    }

private:
    tag_io& io_;
    track_list tracks_;
    service_ref<tag_update_filter> filter_;
    service_ref<completion_notification> done_;
    std::uint32_t task_id_;
    std::string errors_;
};

} // namespace

void tag_update_engine::update_async(const track_list& tracks, service_ref<tag_update_filter> filter, HWND parent,
                                     std::uint32_t, service_ref<completion_notification> done, std::uint32_t task_id) {
    auto task = make_service<update_task>(io_, tracks, std::move(filter), std::move(done), task_id);
    host_service<threaded_process>()->run_modeless(task, threaded_process::flag_show_abort | threaded_process::flag_show_progress,
                                                   parent, progress_title, threaded_process::title_nul_terminated);
}

} // namespace hostkit
