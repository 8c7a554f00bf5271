#include "window_list.h"

#include <algorithm>

namespace hostkit {

void window_list::add(HWND window, const char* title) {
    std::lock_guard lock(lock_);
    open_.push_back({window, title ? title : ""});
}

void window_list::remove(HWND window) {
    std::lock_guard lock(lock_);
    std::erase_if(open_, [window](const auto& w) { return w.handle == window; });
}

std::vector<window_list::window> window_list::open() const {
    std::lock_guard lock(lock_);
    return open_;
}

bool window_list::is_open(HWND window) const {
    std::lock_guard lock(lock_);
    return std::any_of(open_.begin(), open_.end(), [window](const auto& w) { return w.handle == window; });
}

} // namespace hostkit
