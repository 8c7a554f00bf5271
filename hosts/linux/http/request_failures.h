#pragma once
// What went wrong with each server during one run, kept as values: the component skips a
// failing server without a word, but the command line must tell "every server failed" from
// "nothing found" and name each failure.

#include <mutex>
#include <string>
#include <utility>
#include <vector>

class request_failures {
public:
    // `origin` is "host:port"; `reason` says what happened, without the URL.
    void record(const std::string& origin, const std::string& reason);
    // The reasons recorded for `origin` (compared without regard to case), oldest first.
    std::vector<std::string> of(const std::string& origin) const;

private:
    // Written by the worker that runs a lookup, read by the main thread afterwards.
    mutable std::mutex mutex_;
    std::vector<std::pair<std::string, std::string>> failures_;
};
