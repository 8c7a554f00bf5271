#pragma once
// The host's main-thread queue: other threads post work, the main thread runs it in order.

#include <chrono>
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

    // A host whose main thread runs a window system's message loop must keep serving that loop
    // while run_until waits, and must hear of posted work while the loop sleeps. `wait` is called
    // (main thread) instead of sleeping on the queue when it is empty: it serves window messages
    // and returns after at most `limit` or as soon as something happened. `wake` is called (any
    // thread) after each post. Either may be empty; the wait hook is read on the main thread only.
    using wait_hook = std::function<void(std::chrono::milliseconds limit)>;
    using wake_hook = std::function<void()>;
    void set_hooks(wait_hook wait, wake_hook wake);

private:
    std::mutex lock_;
    std::condition_variable wake_;
    std::deque<std::function<void()>> items_;
    int depth_ = 0;
    wait_hook wait_hook_;
    wake_hook wake_hook_;
};

} // namespace hostkit
