#pragma once
// Byte-level tests the reader shares. Text is bytes here: nothing is transcoded, and a byte of
// 128 or above is never a blank.

#include <string_view>

namespace ZR::xmlParser::detail {

// Bytes 0..32: the blanks the reader trims and skips.
inline bool is_blank(char c) { return static_cast<unsigned char>(c) <= 32; }

// Equality ignoring ASCII case only (end tags, entity names, encoding names).
inline bool ascii_iequal(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        char x = a[i], y = b[i];
        if (x >= 'A' && x <= 'Z') x = static_cast<char>(x + 32);
        if (y >= 'A' && y <= 'Z') y = static_cast<char>(y + 32);
        if (x != y) return false;
    }
    return true;
}

} // namespace ZR::xmlParser::detail
