#pragma once
// The host's main-thread queue: other threads post work, the main thread runs it in order.

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>

#include <tunehall/main_thread.h>

namespace hostkit {

class main_queue {
public:
    // Queues work (any thread).
    void post(std::function<void()> work);
    // Runs what is queued now (main thread); returns how many items ran.
    std::size_t run_pending();
    // Runs queued work until `done()` is true (main thread); waits when the queue is empty.
    void run_until(const std::function<bool()>& done);
    // True while the main thread is inside a queued item.
    bool is_dispatching() const { return depth_ > 0; }
    // The queue as the SDK's service.
    service_ref<main_thread_queue> service();

private:
    std::mutex lock_;
    std::condition_variable wake_;
    std::deque<std::function<void()>> items_;
    int depth_ = 0;
};

} // namespace hostkit
