#include "threaded_process_worker.h"

#include <cstring>
#include <memory>
#include <thread>

#include <tunehall/console.h>

#include "main_queue.h"

namespace hostkit {

namespace {

// A task's abort source: its own Cancel, or the host-wide abort.
class job_abort final : public abort_source {
public:
    explicit job_abort(const std::atomic<bool>& host_wide) : host_wide_(host_wide) {}
    bool is_aborting() const override { return own_.is_aborting() || host_wide_.load(); }

private:
    abort_source_impl own_;
    const std::atomic<bool>& host_wide_;
};

class job_status final : public threaded_process_status {
public:
    explicit job_status(progress_display* d) : display_(d) {}
    void set_progress(std::uint32_t value) override {
        if (value > progress_max) value = progress_max;
        if (display_) display_->progress(value);
    }
    void set_item(const char* text) override {
        if (display_) display_->item(text);
    }

private:
    progress_display* display_;
};

} // namespace

threaded_process_worker::threaded_process_worker(main_queue& queue, progress_display* display)
    : queue_(queue), display_(display) {}

bool threaded_process_worker::run_modal(service_ref<threaded_process_task> task, std::uint32_t flags, HWND parent,
                                        const char* title, std::size_t title_length) {
    return start(std::move(task), flags, parent, title, title_length, true);
}

bool threaded_process_worker::run_modeless(service_ref<threaded_process_task> task, std::uint32_t flags,
                                           HWND parent, const char* title, std::size_t title_length) {
    return start(std::move(task), flags, parent, title, title_length, false);
}

bool threaded_process_worker::start(service_ref<threaded_process_task> task, std::uint32_t flags, HWND parent,
                                    const char* title, std::size_t title_length, bool modal) {
    if (!task) return false;
    std::string title_text = title_length == title_nul_terminated ? std::string(title) : std::string(title, title_length);
    task->on_init(parent);
    if (display_) display_->begin(title_text, flags);
    ++running_;

    auto finished = std::make_shared<std::atomic<bool>>(false);
    auto aborted = std::make_shared<std::atomic<bool>>(false);
    auto finish = [this, task, parent, aborted]() {
        if (display_) display_->end(aborted->load());
        task->on_done(parent, aborted->load());
        --running_;
    };

    std::thread worker([this, task, finished, aborted, finish, modal]() {
        job_abort abort(interrupt_);
        job_status status(display_);
        try {
            task->run(status, abort);
        } catch (const tunehall_io::exception_aborted&) {
            aborted->store(true);
        } catch (const std::exception& e) {
            // Tasks report their own failures; one that escapes is logged, not lost.
            console_print((std::string("Unhandled error in background task: ") + e.what()).c_str());
        }
        if (abort.is_aborting()) aborted->store(true);
        if (modal) {
            finished->store(true);
            queue_.post([] {});  // wakes the waiting main thread
        } else {
            queue_.post(finish);
        }
    });
    {
        std::lock_guard lock(threads_lock_);
        threads_.push_back(std::move(worker));
    }

    if (modal) {
        queue_.run_until([&] { return finished->load(); });
        finish();
    }
    return true;
}

threaded_process_worker::~threaded_process_worker() { wait_idle(); }

void threaded_process_worker::wait_idle() {
    queue_.run_until([this] { return running_.load() == 0; });
    std::vector<std::thread> done;
    {
        std::lock_guard lock(threads_lock_);
        done.swap(threads_);
    }
    for (auto& t : done) t.join();
}

} // namespace hostkit
