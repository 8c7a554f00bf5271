// UTF-8 in its original six-byte form: the entity decoder must accept whatever a numeric
// reference can name, and answers are only checked for being well formed, not for being valid
// Unicode.

#include "xml/xml_parser.h"

namespace ZR::xmlParser {

std::size_t utf8_decode_char(const char* text, std::size_t length, std::uint32_t& code_point) {
    if (length == 0) return 0;
    const auto lead = static_cast<unsigned char>(text[0]);
    if (lead < 0x80) {
        code_point = lead;
        return 1;
    }
    std::size_t size;
    std::uint32_t value;
    std::uint32_t smallest;  // below this the sequence is an overlong form
    if ((lead & 0xE0) == 0xC0) { size = 2; value = lead & 0x1F; smallest = 0x80; }
    else if ((lead & 0xF0) == 0xE0) { size = 3; value = lead & 0x0F; smallest = 0x800; }
    else if ((lead & 0xF8) == 0xF0) { size = 4; value = lead & 0x07; smallest = 0x10000; }
    else if ((lead & 0xFC) == 0xF8) { size = 5; value = lead & 0x03; smallest = 0x200000; }
    else if ((lead & 0xFE) == 0xFC) { size = 6; value = lead & 0x01; smallest = 0x4000000; }
    else return 0;  // a continuation byte, or 0xFE / 0xFF
    if (size > length) return 0;
    for (std::size_t i = 1; i < size; ++i) {
        const auto next = static_cast<unsigned char>(text[i]);
        if ((next & 0xC0) != 0x80) return 0;
        value = (value << 6) | (next & 0x3F);
    }
    if (value < smallest) return 0;
    code_point = value;
    return size;
}

std::size_t utf8_encode_char(std::uint32_t code_point, char out[6]) {
    if (code_point < 0x80) {
        out[0] = static_cast<char>(code_point);
        return 1;
    }
    std::size_t size;
    unsigned char lead_bits;
    if (code_point < 0x800) { size = 2; lead_bits = 0xC0; }
    else if (code_point < 0x10000) { size = 3; lead_bits = 0xE0; }
    else if (code_point < 0x200000) { size = 4; lead_bits = 0xF0; }
    else if (code_point < 0x4000000) { size = 5; lead_bits = 0xF8; }
    else if (code_point < 0x80000000) { size = 6; lead_bits = 0xFC; }
    else return 0;
    for (std::size_t i = size - 1; i > 0; --i) {
        out[i] = static_cast<char>(0x80 | (code_point & 0x3F));
        code_point >>= 6;
    }
    out[0] = static_cast<char>(lead_bits | code_point);
    return size;
}

} // namespace ZR::xmlParser
