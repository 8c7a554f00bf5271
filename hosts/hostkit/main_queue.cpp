#include "main_queue.h"

namespace hostkit {

namespace {
class queue_service : public main_thread_queue {
public:
    explicit queue_service(main_queue& q) : queue_(q) {}
    void post(std::function<void()> work) override { queue_.post(std::move(work)); }
    void run_until(const std::function<bool()>& done) override { queue_.run_until(done); }

private:
    main_queue& queue_;
};
} // namespace

void main_queue::post(std::function<void()> work) {
    wake_hook wake;
    {
        std::lock_guard lock(lock_);
        items_.push_back(std::move(work));
        wake = wake_hook_;  // a copy: the host may remove its hooks while workers still post
    }
    wake_.notify_all();
    if (wake) wake();
}

void main_queue::set_hooks(wait_hook wait, wake_hook wake) {
    std::lock_guard lock(lock_);
    wait_hook_ = std::move(wait);
    wake_hook_ = std::move(wake);
}

std::size_t main_queue::run_pending() {
    std::size_t ran = 0;
    for (;;) {
        std::function<void()> work;
        {
            std::lock_guard lock(lock_);
            if (items_.empty()) return ran;
            work = std::move(items_.front());
            items_.pop_front();
        }
        ++depth_;
        try {
            work();
        } catch (...) {
            --depth_;
            throw;
        }
        --depth_;
        ++ran;
    }
}

void main_queue::run_until(const std::function<bool()>& done) {
    while (!done()) {
        if (run_pending() > 0) continue;
        if (wait_hook_) {
            wait_hook_(std::chrono::milliseconds(50));
            continue;
        }
        std::unique_lock lock(lock_);
        wake_.wait_for(lock, std::chrono::milliseconds(50), [this] { return !items_.empty(); });
    }
    run_pending();
}

service_ref<main_thread_queue> main_queue::service() { return make_service<queue_service>(*this); }

} // namespace hostkit
