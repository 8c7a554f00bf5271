#pragma once
// The host's console: diagnostic lines for the log, never shown as messages.

#include "service.h"

class console_receiver : public service_base {
    TUNEHALL_SERVICE_CLASS(service_base, {0x1a700578, 0xd6ec, 0x4dce, {0xad, 0x33, 0x87, 0x26, 0xc3, 0x24, 0xf1, 0xb7}})
public:
    // Takes one line of UTF-8 text (no terminator).
    virtual void print(const char* text) = 0;
};

// Prints one line to every console receiver of the host.
void console_print(const char* text);
