#include "musicbrainz/parse_unsigned.h"

#include "xml/zr_exceptions.h"

std::uint32_t parse_unsigned(const char* text, std::size_t length) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < length; ++i) {
        if (text[i] < '0' || text[i] > '9') throw ZR::invalid_input();
        value = value * 10 + static_cast<unsigned>(text[i] - '0');
        if (value > UINT32_MAX) throw ZR::overflow();
    }
    return static_cast<std::uint32_t>(value);
}
