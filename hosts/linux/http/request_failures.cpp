#include "request_failures.h"

#include <algorithm>
#include <cctype>

namespace {

bool same_origin(const std::string& a, const std::string& b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](unsigned char x, unsigned char y) {
               return std::tolower(x) == std::tolower(y);
           });
}

} // namespace

void request_failures::record(const std::string& origin, const std::string& reason) {
    std::lock_guard lock(mutex_);
    failures_.emplace_back(origin, reason);
}

std::vector<std::string> request_failures::of(const std::string& origin) const {
    std::lock_guard lock(mutex_);
    std::vector<std::string> out;
    for (auto& [o, reason] : failures_)
        if (same_origin(o, origin)) out.push_back(reason);
    return out;
}
