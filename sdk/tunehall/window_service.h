#pragma once
// Modeless windows the host keeps track of (keyboard routing, closing at shutdown).

#include "platform.h"
#include "service.h"

class modeless_window_manager : public service_base {
    TUNEHALL_SERVICE_CLASS(service_base, {0xa221b3c3, 0x1f87, 0x4810, {0x97, 0x55, 0x70, 0x9f, 0x19, 0xd5, 0x59, 0x05}})
public:
    // A new modeless window of a component, with its title.
    virtual void add(HWND window, const char* title) = 0;
    // The window is going away.
    virtual void remove(HWND window) = 0;
    // The host's main window (owner of component windows).
    virtual HWND main_window() = 0;
};
