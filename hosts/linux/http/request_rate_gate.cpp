#include "request_rate_gate.h"

#include "abortable_wait.h"

request_rate_gate& request_rate_gate::process_wide() {
    static request_rate_gate gate;
    return gate;
}

void request_rate_gate::wait_turn(const std::string& key, std::chrono::milliseconds min_interval, abort_source& abort) {
    for (;;) {
        abort.check();
        std::chrono::steady_clock::time_point turn;
        {
            std::lock_guard<std::mutex> lock(mutex_);
            const auto now = std::chrono::steady_clock::now();
            const auto last = last_start_.find(key);
            if (last == last_start_.end() || now - last->second >= min_interval) {
                last_start_[key] = now;
                return;
            }
            turn = last->second + min_interval;
        }
        // Another thread may take this turn first; then the loop waits for the next one.
        abortable_wait_until(turn, abort);
    }
}
