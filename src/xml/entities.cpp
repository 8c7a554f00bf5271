// Character and entity references in text and attribute values.

#include <cstring>

#include "xml/text_bytes.h"
#include "xml/xml_parser.h"

namespace ZR::xmlParser {

namespace {

struct named_entity {
    const char* name;
    std::uint32_t code_point;
};

// "nbsp" is not XML's, but hand-written answers use it.
constexpr named_entity named_entities[] = {
    {"amp", 0x26}, {"lt", 0x3C}, {"gt", 0x3E}, {"apos", 0x27}, {"quot", 0x22}, {"nbsp", 0xA0},
};

int digit_value(char c, unsigned base) {
    int v = -1;
    if (c >= '0' && c <= '9') v = c - '0';
    else if (c >= 'a' && c <= 'f') v = c - 'a' + 10;
    else if (c >= 'A' && c <= 'F') v = c - 'A' + 10;
    return v >= 0 && static_cast<unsigned>(v) < base ? v : -1;
}

// A number in `digits`, or false when it is empty or holds a non-digit. A number that does not
// fit in 32 bits is an error of the document, not a name to look up.
bool read_number(std::string_view digits, unsigned base, std::uint32_t& out) {
    if (digits.empty()) return false;
    std::uint64_t value = 0;
    for (char c : digits) {
        int d = digit_value(c, base);
        if (d < 0) return false;
        value = value * base + static_cast<unsigned>(d);
        if (value > 0xFFFFFFFFu) throw error();
    }
    out = static_cast<std::uint32_t>(value);
    return true;
}

// The code point a reference's name stands for. Besides "#65" and "#x41", a name that starts
// with a digit is read as a decimal number ("&65;"), as the services' older answers need.
std::uint32_t resolve(std::string_view name) {
    std::uint32_t value;
    if (!name.empty() && name[0] == '#') {
        if (name.size() > 1 && (name[1] == 'x' || name[1] == 'X')) {
            if (read_number(name.substr(2), 16, value)) return value;
        } else if (read_number(name.substr(1), 10, value)) {
            return value;
        }
    } else if (!name.empty() && name[0] >= '0' && name[0] <= '9') {
        if (read_number(name, 10, value)) return value;
    }
    for (const auto& entity : named_entities)
        if (detail::ascii_iequals(name, entity.name)) return entity.code_point;
    throw error();
}

} // namespace

std::string decode_entities(const char* text, std::size_t length) {
    std::string out;
    out.reserve(length);
    std::size_t i = 0;
    while (i < length) {
        // Plain ASCII between references is copied in one piece.
        std::size_t plain = i;
        while (plain < length && static_cast<unsigned char>(text[plain]) < 0x80 && text[plain] != '&') ++plain;
        if (plain > i) {
            out.append(text + i, plain - i);
            i = plain;
            continue;
        }
        std::uint32_t code_point;
        std::size_t size = utf8_decode_char(text + i, length - i, code_point);
        if (size == 0) throw error();
        if (code_point != '&') {
            out.append(text + i, size);
            i += size;
            continue;
        }
        const void* semicolon = std::memchr(text + i + 1, ';', length - i - 1);
        if (!semicolon) throw error();
        const std::size_t end = static_cast<std::size_t>(static_cast<const char*>(semicolon) - text);
        char encoded[6];
        out.append(encoded, utf8_encode_char(resolve(std::string_view(text + i + 1, end - i - 1)), encoded));
        i = end + 1;
    }
    return out;
}

} // namespace ZR::xmlParser
