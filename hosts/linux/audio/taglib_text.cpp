#include "taglib_text.h"

#include <cstddef>
#include <cstdint>

namespace linux_audio {

std::string utf8_of(const TagLib::String& text) {
    // TagLib keeps UTF-16 code units, one per wchar_t, whatever the width of wchar_t.
    const wchar_t* units = text.toCWString();
    const std::size_t count = text.size();
    // Most tag text is ASCII: one byte per unit, written in place until a unit is not.
    std::string out(count, '\0');
    std::size_t i = 0;
    for (; i < count && static_cast<std::uint32_t>(units[i]) < 0x80; ++i) out[i] = static_cast<char>(units[i]);
    if (i == count) return out;
    out.resize(i);
    for (; i < count; ++i) {
        const auto unit = static_cast<std::uint32_t>(units[i]);
        if (unit < 0x80) {
            out += static_cast<char>(unit);
        } else if (unit < 0x800) {
            out += static_cast<char>(0xc0 | (unit >> 6));
            out += static_cast<char>(0x80 | (unit & 0x3f));
        } else if (unit >= 0xd800 && unit <= 0xdbff && i + 1 < count &&
                   static_cast<std::uint32_t>(units[i + 1]) >= 0xdc00 &&
                   static_cast<std::uint32_t>(units[i + 1]) <= 0xdfff) {
            const std::uint32_t code = 0x10000 + ((unit - 0xd800) << 10) + (static_cast<std::uint32_t>(units[i + 1]) - 0xdc00);
            out += static_cast<char>(0xf0 | (code >> 18));
            out += static_cast<char>(0x80 | ((code >> 12) & 0x3f));
            out += static_cast<char>(0x80 | ((code >> 6) & 0x3f));
            out += static_cast<char>(0x80 | (code & 0x3f));
            ++i;
        } else if ((unit >= 0xd800 && unit <= 0xdfff) || unit > 0xffff) {
            // A surrogate without its partner (or, were TagLib ever to keep one, a unit wider than
            // UTF-16's): whatever TagLib makes of it is the answer.
            return text.to8Bit(true);
        } else {
            out += static_cast<char>(0xe0 | (unit >> 12));
            out += static_cast<char>(0x80 | ((unit >> 6) & 0x3f));
            out += static_cast<char>(0x80 | (unit & 0x3f));
        }
    }
    return out;
}

} // namespace linux_audio
