#pragma once
// The host's list of modeless component windows. The message loop hands each message to them
// first, so that the keyboard works in them as in any dialog (Tab, Alt+letter, Enter, Escape).

#include <mutex>
#include <string>
#include <vector>

#include <tunehall/window_service.h>

namespace winhost {

class window_manager : public modeless_window_manager {
public:
    explicit window_manager(HWND main) : main_(main) {}
    void add(HWND window, const char* title) override;
    void remove(HWND window) override;
    HWND main_window() override { return main_; }

    void set_main_window(HWND main) { main_ = main; }
    std::vector<HWND> open() const;
    // True when one of the windows took the message as dialog navigation.
    bool route(MSG& msg) const;

private:
    HWND main_;
    mutable std::mutex lock_;
    std::vector<HWND> open_;
};

} // namespace winhost
