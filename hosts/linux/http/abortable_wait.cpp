#include "abortable_wait.h"

#include <algorithm>
#include <thread>

namespace {

// The abort source is a flag, not something to wait on: look at it this often. The same
// promptness as an HTTP transfer's reader.
constexpr std::chrono::milliseconds wake{100};

} // namespace

void abortable_wait_until(std::chrono::steady_clock::time_point deadline, abort_source& abort) {
    for (;;) {
        abort.check();
        const auto now = std::chrono::steady_clock::now();
        if (now >= deadline) return;
        std::this_thread::sleep_for(std::min<std::chrono::steady_clock::duration>(deadline - now, wake));
    }
}
