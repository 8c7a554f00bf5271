#pragma once
// The host's list of open modeless windows (the tagger dialog, the MusicBrainz dialog), in the
// order they opened. A host without a window system finds the dialogs to act on here.

#include <mutex>
#include <string>
#include <vector>

#include <tunehall/window_service.h>

namespace hostkit {

class window_list : public modeless_window_manager {
public:
    void add(HWND window, const char* title) override;
    void remove(HWND window) override;
    HWND main_window() override { return nullptr; }

    struct window {
        HWND handle;
        std::string title;
    };
    std::vector<window> open() const;
    bool is_open(HWND window) const;

private:
    mutable std::mutex lock_;
    std::vector<window> open_;
};

} // namespace hostkit
