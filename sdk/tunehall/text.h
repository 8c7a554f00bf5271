#pragma once
// Small text helpers the SDK's own code needs.

#include <cstddef>
#include <string_view>

namespace tunehall {

// Equality ignoring ASCII case (field and key names).
inline bool ascii_iequals(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        char x = a[i], y = b[i];
        if (x >= 'A' && x <= 'Z') x = static_cast<char>(x + 32);
        if (y >= 'A' && y <= 'Z') y = static_cast<char>(y + 32);
        if (x != y) return false;
    }
    return true;
}

} // namespace tunehall
