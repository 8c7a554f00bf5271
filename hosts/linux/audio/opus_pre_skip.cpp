// Opus's first packet: "OpusHead", version, channel count, pre-skip (16 bits, little-endian),
// input rate, ... The pre-skip is the number of 48 kHz samples a decoder drops at the start.

#include "gapless_length.h"

#include "header_bytes.h"

namespace linux_audio {

std::optional<std::uint16_t> opus_pre_skip(std::string_view head) {
    if (head.size() < 19 || head.substr(0, 8) != "OpusHead") return std::nullopt;
    return static_cast<std::uint16_t>(byte_at(head, 10) | (byte_at(head, 11) << 8));
}

} // namespace linux_audio
