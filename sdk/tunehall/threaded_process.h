#pragma once
// Long work on a worker thread under the host's progress display.

#include <cstddef>
#include <cstdint>

#include "abort.h"
#include "platform.h"
#include "service.h"

// Where a task reports how far it is.
class threaded_process_status {
public:
    static constexpr std::uint32_t progress_min = 0;
    static constexpr std::uint32_t progress_max = 5000;
    // Progress on the 0..5000 scale.
    virtual void set_progress(std::uint32_t value) = 0;
    // Progress as a fraction of 0..1 (clamped).
    void set_progress_float(double fraction);
    // The text under the title (the item being worked on).
    virtual void set_item(const char* text) = 0;

protected:
    ~threaded_process_status() = default;
};

// A task run by the service: on_init and on_done on the main thread, run on the worker.
class threaded_process_task : public service_base {
    TUNEHALL_SERVICE_CLASS(service_base, {0x6846f6a8, 0xc88c, 0x4bc2, {0xa2, 0x9d, 0xce, 0x41, 0x52, 0x3d, 0x95, 0x41}})
public:
    // Before the worker starts.
    virtual void on_init(HWND parent) { (void)parent; }
    // The work; raising exception_aborted ends it as aborted.
    virtual void run(threaded_process_status& status, abort_source& abort) = 0;
    // After the worker ended; `aborted` when the user cancelled.
    virtual void on_done(HWND parent, bool aborted) { (void)parent; (void)aborted; }
};

class threaded_process : public service_base {
    TUNEHALL_SERVICE_CLASS(service_base, {0x3245aef8, 0xe32b, 0x47b0, {0xab, 0x8d, 0x9c, 0x68, 0x2b, 0xc6, 0xce, 0x1f}})
public:
    // Option bits: a Cancel button, a progress bar, the item line; no focus; show only after a
    // moment.
    enum : std::uint32_t {
        flag_show_abort = 0x1,
        flag_show_progress = 0x4,
        flag_show_item = 0x10,
        flag_no_focus = 0x80,
        flag_show_delayed = 0x100,
    };
    // Title length meaning "up to the terminating NUL".
    static constexpr std::size_t title_nul_terminated = static_cast<std::size_t>(-1);

    // Runs `task` and waits for it (the main thread keeps serving its queue); on_done has run
    // when this returns. True when the task ran.
    virtual bool run_modal(service_ref<threaded_process_task> task, std::uint32_t flags,
                           HWND parent, const char* title, std::size_t title_length) = 0;
    // Starts `task` and returns at once; on_done arrives later through the main-thread
    // queue. True when the task was started.
    virtual bool run_modeless(service_ref<threaded_process_task> task, std::uint32_t flags,
                              HWND parent, const char* title, std::size_t title_length) = 0;
};
