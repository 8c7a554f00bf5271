#pragma once

#include <cstddef>
#include <cstdint>

// Decimal digits as a 32-bit number; empty text is 0. Any other character raises
// ZR::invalid_input "invalid input", a value above 32 bits ZR::overflow "overflow".
std::uint32_t parse_unsigned(const char* text, std::size_t length);
