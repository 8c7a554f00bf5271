#pragma once
// Byte-level tests the reader shares. Text is bytes here: nothing is transcoded, and a byte of
// 128 or above is never a blank.

#include <string_view>

#include <tunehall/text.h>

namespace ZR::xmlParser::detail {

// Bytes 0..32: the blanks the reader trims and skips.
inline bool is_blank(char c) { return static_cast<unsigned char>(c) <= 32; }

// Equality ignoring ASCII case only (end tags, entity names, encoding names).
using tunehall::ascii_iequals;

} // namespace ZR::xmlParser::detail
