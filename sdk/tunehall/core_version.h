#pragma once
// The host's version texts.

#include "service.h"

class core_version : public service_base {
    TUNEHALL_SERVICE_CLASS(service_base, {0x68d2c52d, 0x5b88, 0x4e2b, {0xb2, 0x26, 0xc0, 0xc3, 0xbf, 0xb4, 0x3c, 0xf3}})
public:
    // Name and version, such as "Tunehall 1.0".
    virtual const char* get_version_string() = 0;
    // Version alone, such as "1.0" (used in help addresses).
    virtual const char* get_version_as_text() = 0;
};
