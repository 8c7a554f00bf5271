#pragma once
// The host's dark mode for a component's window: while attached, the host themes the window and
// its controls as its own (and follows the user switching modes). A host without dark mode
// offers no such service.

#include "platform.h"
#include "service.h"

// One window's attachment; releasing the last reference detaches the window.
class dark_mode_attachment : public service_base {
    TUNEHALL_SERVICE_CLASS(service_base, {0x3c1f5a2e, 0x8d47, 0x4b1a, {0x9e, 0x60, 0x2f, 0x7c, 0x15, 0xd3, 0x88, 0x41}})
};

class dark_mode_helper : public service_base {
    TUNEHALL_SERVICE_CLASS(service_base, {0x5e0a93c7, 0x1b2f, 0x4f6d, {0xa8, 0x34, 0xc1, 0x0e, 0x72, 0x9b, 0x4d, 0x16}})
public:
    // Themes `window` (a dialog or a preferences page) and its controls until the returned
    // attachment is released.
    virtual service_ref<dark_mode_attachment> attach(HWND window) = 0;
};
