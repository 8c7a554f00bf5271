#pragma once
// Message popups of a host without windows: written to stderr and kept for the caller to read.
// The completion is called at once with OK.

#include <mutex>
#include <string>
#include <vector>

#include <tunehall/popup.h>

namespace hostkit {

struct popup_entry {
    std::string title;
    std::string message;
    std::uint32_t flags = 0;
};

class popup_recorder : public popup_message_v3 {
public:
    // `echo` as for console_log.
    explicit popup_recorder(bool echo_to_stderr, std::function<void(const std::string&)> echo = {})
        : echo_(echo_to_stderr), echo_line_(std::move(echo)) {}
    void messageBoxAsync(HWND parent, const char* message, const char* title, std::uint32_t flags,
                         std::function<void(int)> done) override;
    std::vector<popup_entry> popups() const;

private:
    mutable std::mutex lock_;
    bool echo_;
    std::function<void(const std::string&)> echo_line_;
    std::vector<popup_entry> popups_;
};

} // namespace hostkit
