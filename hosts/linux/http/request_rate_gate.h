#pragma once
// Paces requests to web services that allow each client only so many requests a second.
//
// The limit is per client program, not per lookup: several lookups may run on several worker
// threads at once, so the time of the last request to each host has to be shared by the whole
// process. That makes this gate one of the few pieces of global state the host keeps.

#include <chrono>
#include <map>
#include <mutex>
#include <string>

#include <tunehall/abort.h>

class request_rate_gate {
public:
    // The gate every HTTP request of this process goes through.
    static request_rate_gate& process_wide();

    // Returns once no request to `key` has started within the last `min_interval`, and counts
    // the caller's request as started now. Raises tunehall_io::exception_aborted (counting
    // nothing) when `abort` is set first.
    void wait_turn(const std::string& key, std::chrono::milliseconds min_interval, abort_source& abort);

private:
    std::mutex mutex_;
    std::map<std::string, std::chrono::steady_clock::time_point> last_start_;
};
