#pragma once
// The host's auto-completion source: values the user's library already holds for a field, offered
// while the user types in a dialog's text boxes.

#include <string>
#include <vector>

#include "service.h"

class library_suggestions : public service_base {
    TUNEHALL_SERVICE_CLASS(service_base, {0x0c9d6e1a, 0x7b42, 0x4f3e, {0x9a, 0x61, 0x2d, 0x85, 0xe4, 0x17, 0xb0, 0x3c}})
public:
    // The distinct values of field `field` ("artist", "album", "date", "genre", "title",
    // "comment", ...) known to the library, in the order the host prefers; empty when none.
    virtual std::vector<std::string> values_of(const char* field) = 0;
};
