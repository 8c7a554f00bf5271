#pragma once
// The threaded-process service: each task runs on a worker thread of its own, reports progress
// to the host's display, polls its abort source, and finishes on the main thread.

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <tunehall/threaded_process.h>

namespace hostkit {

class main_queue;

// How the host shows a running task (a terminal bar, a progress window, or nothing).
class progress_display {
public:
    virtual ~progress_display() = default;
    virtual void begin(const std::string& title, std::uint32_t flags) = 0;
    // Progress on the 0..5000 scale (called on the worker).
    virtual void progress(std::uint32_t value) = 0;
    // The item line (called on the worker).
    virtual void item(const std::string& text) = 0;
    virtual void end(bool aborted) = 0;
};

class threaded_process_worker : public threaded_process {
public:
    threaded_process_worker(main_queue& queue, progress_display* display);
    ~threaded_process_worker();

    bool run_modal(service_ref<threaded_process_task> task, std::uint32_t flags, HWND parent,
                   const char* title, std::size_t title_length) override;
    bool run_modeless(service_ref<threaded_process_task> task, std::uint32_t flags, HWND parent,
                      const char* title, std::size_t title_length) override;

    // Aborts every running task, as the user's Cancel would. Only stores an atomic flag, so a
    // signal handler may call it.
    void abort_all() noexcept { interrupt_.store(true); }
    // Clears a previous abort_all for the tasks started from now on.
    void clear_abort() noexcept { interrupt_.store(false); }
    // Waits until no task is running (main thread; keeps the main-thread queue served).
    void wait_idle();
    std::size_t running() const { return running_.load(); }

private:
    struct job;
    bool start(service_ref<threaded_process_task> task, std::uint32_t flags, HWND parent,
               const char* title, std::size_t title_length, bool modal);

    main_queue& queue_;
    progress_display* display_;
    std::atomic<bool> interrupt_{false};
    std::atomic<std::size_t> running_{0};
    std::mutex threads_lock_;
    std::vector<std::thread> threads_;
};

} // namespace hostkit
