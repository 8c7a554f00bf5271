// The first frame of a LAME-encoded MP3 carries no audio; after its side information stand the
// Xing header (written "Info" for constant bit rates) and the LAME tag:
//
//   FF FB 50 C4 | side info (17 or 32 bytes; 9 or 17 for MPEG-2/2.5)
//   "Info" | flags 0000000F | frames 00000431 | bytes | 100-byte seek table | quality
//   "LAME3.100" | ... 12 more bytes ... | delay (12 bits) padding (12 bits) 240 3B 9
//
// The frame count leaves this frame out. Decoded with the delay and padding dropped, the frames
// give back exactly the samples that were encoded (checked against lame --decode).

#include "gapless_length.h"

#include <cctype>

#include "header_bytes.h"

namespace linux_audio {

std::optional<exact_length> mp3_gapless_length(std::string_view frame) {
    if (frame.size() < 4 || byte_at(frame, 0) != 0xFF || (byte_at(frame, 1) & 0xE0) != 0xE0) return std::nullopt;
    const unsigned version = (byte_at(frame, 1) >> 3) & 3;  // 3: MPEG-1, 2: MPEG-2, 0: MPEG-2.5
    const unsigned layer = (byte_at(frame, 1) >> 1) & 3;    // 1: Layer III
    const unsigned rate_index = (byte_at(frame, 2) >> 2) & 3;
    if (version == 1 || layer != 1 || rate_index == 3) return std::nullopt;
    const bool mpeg1 = version == 3;
    const bool mono = (byte_at(frame, 3) >> 6) == 3;
    const bool has_crc = (byte_at(frame, 1) & 1) == 0;
    constexpr std::uint32_t mpeg1_rates[] = {44100, 48000, 32000};
    const std::uint32_t rate = mpeg1_rates[rate_index] >> (mpeg1 ? 0 : version == 2 ? 1 : 2);
    const std::uint32_t samples_per_frame = mpeg1 ? 1152 : 576;

    const std::size_t side_info = mpeg1 ? (mono ? 17 : 32) : (mono ? 9 : 17);
    std::size_t at = 4 + (has_crc ? 2 : 0) + side_info;
    if (frame.size() < at + 8) return std::nullopt;
    const std::string_view magic = frame.substr(at, 4);
    if (magic != "Xing" && magic != "Info") return std::nullopt;
    const std::uint32_t flags = static_cast<std::uint32_t>(big_endian(frame, at + 4, 4));
    if ((flags & 1) == 0) return std::nullopt;  // no frame count
    at += 8;
    if (frame.size() < at + 4) return std::nullopt;
    const std::uint64_t frames = big_endian(frame, at, 4);
    at += 4 + ((flags & 2) ? 4 : 0) + ((flags & 4) ? 100 : 0) + ((flags & 8) ? 4 : 0);

    // The LAME tag: an encoder name ("LAME3.100", "Lavc59.37") and, 21 bytes in, delay and padding.
    if (frame.size() < at + 24) return std::nullopt;
    for (std::size_t i = 0; i < 4; ++i)
        if (!std::isalnum(byte_at(frame, at + i))) return std::nullopt;
    const std::uint32_t delay = (byte_at(frame, at + 21) << 4) | (byte_at(frame, at + 22) >> 4);
    const std::uint32_t padding = ((byte_at(frame, at + 22) & 0x0F) << 8) | byte_at(frame, at + 23);
    const std::uint64_t total = frames * samples_per_frame;
    if (frames == 0 || delay + padding >= total) return std::nullopt;
    return exact_length{total - delay - padding, rate};
}

} // namespace linux_audio
