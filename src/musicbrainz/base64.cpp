#include "musicbrainz/base64.h"

#include <algorithm>

std::string base64_encode(const std::vector<std::uint8_t>& bytes) {
    static constexpr char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    std::uint32_t bits = 0;
    int held = 0;  // bits waiting in `bits`
    for (std::uint8_t b : bytes) {
        bits = (bits << 8) | b;
        held += 8;
        while (held >= 6) {
            held -= 6;
            text += alphabet[(bits >> held) & 0x3F];
        }
    }
    if (held == 4) {
        text += alphabet[(bits << 2) & 0x3F];
        text += '=';
    } else if (held == 2) {
        text += alphabet[(bits << 4) & 0x3F];
        text += "==";
    }
    return text;
}

void to_disc_id_alphabet(std::string& text) {
    std::replace(text.begin(), text.end(), '+', '.');
    std::replace(text.begin(), text.end(), '/', '_');
    std::replace(text.begin(), text.end(), '=', '-');
}
