#include "popups.h"

#include <cstdio>

namespace hostkit {

void popup_recorder::messageBoxAsync(HWND, const char* message, const char* title, std::uint32_t flags,
                                     std::function<void(int)> done) {
    {
        std::lock_guard lock(lock_);
        popups_.push_back({title, message, flags});
    }
    if (echo_ && echo_line_)
        echo_line_(std::string(title) + ": " + message);
    else if (echo_)
        std::fprintf(stderr, "%s: %s\n", title, message);
    if (done) done(popup_message_v3::id_ok);
}

std::vector<popup_entry> popup_recorder::popups() const {
    std::lock_guard lock(lock_);
    return popups_;
}

} // namespace hostkit
