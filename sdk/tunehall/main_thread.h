#pragma once
// The host's main-thread queue: work posted from any thread runs later on the main thread.

#include <functional>

#include "service.h"

class main_thread_queue : public service_base {
    TUNEHALL_SERVICE_CLASS(service_base, {0x4a46cb80, 0x8f99, 0x4bbf, {0x9d, 0x42, 0x10, 0xdc, 0xfe, 0x0d, 0x0f, 0x17}})
public:
    // Queues `work` to run on the main thread, in posting order.
    virtual void post(std::function<void()> work) = 0;
    // A modal loop (main thread): runs queued work until `done()` holds. A dialog that must be
    // answered before its caller goes on waits here, as a window system's modal loop would.
    virtual void run_until(const std::function<bool()>& done) = 0;
};
