#pragma once
// Class GUIDs: identity of every service class, configuration variable and page.

#include <cstring>
#include <string>

#include "platform.h"

namespace tunehall {

// Byte-for-byte equality of two GUIDs.
inline bool guid_equal(const GUID& a, const GUID& b) { return std::memcmp(&a, &b, sizeof(GUID)) == 0; }

// Strict order for maps keyed by GUID (field by field, as the text form sorts).
struct guid_less {
    bool operator()(const GUID& a, const GUID& b) const;
};

// The 36-character text form: upper-case hex, groups 8-4-4-4-12, no braces. The first three
// groups are the first three fields as numbers; the last two are Data4 in stored order.
std::string guid_to_text(const GUID& g);

// Parses the 36-character form (either case); false when `text` is not one.
bool guid_from_text(const char* text, GUID& out);

} // namespace tunehall
