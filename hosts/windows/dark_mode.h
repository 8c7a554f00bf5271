#pragma once
// The test host's dark mode: windows attached to it get the system's dark theme while the host
// is dark (off unless asked for), and the host keeps track of which windows are attached.

#include <vector>

#include <windows.h>

#include <tunehall/dark_mode.h>

namespace winhost {

class dark_mode : public dark_mode_helper {
public:
    explicit dark_mode(bool dark) : dark_(dark) {}

    service_ref<dark_mode_attachment> attach(HWND window) override;
    // Windows attached now, in the order they came.
    std::vector<HWND> attached() const { return attached_; }

private:
    class attachment;
    bool dark_;
    std::vector<HWND> attached_;  // main thread only, as the windows are
};

} // namespace winhost
