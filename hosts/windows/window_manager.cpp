#include "window_manager.h"

#include <algorithm>

namespace winhost {

void window_manager::add(HWND window, const char*) {
    std::lock_guard lock(lock_);
    open_.push_back(window);
}

void window_manager::remove(HWND window) {
    std::lock_guard lock(lock_);
    open_.erase(std::remove(open_.begin(), open_.end(), window), open_.end());
}

std::vector<HWND> window_manager::open() const {
    std::lock_guard lock(lock_);
    return open_;
}

bool window_manager::route(MSG& msg) const {
    for (HWND w : open())
        if (IsWindow(w) && (msg.hwnd == w || IsChild(w, msg.hwnd)) && IsDialogMessageW(w, &msg)) return true;
    return false;
}

} // namespace winhost
