#pragma once
// What a gapless decoder outputs, read from the headers that lossy encoders write: their
// encoder delay (priming) and end padding are left out. Each reader takes the bytes of one
// header, as they stand in the file, and answers nothing when they are too short, damaged or
// say nothing about delay and padding; the caller then keeps the length it has.

#include <cstdint>
#include <optional>
#include <string_view>

namespace linux_audio {

struct exact_length {
    std::uint64_t samples = 0;  // per channel
    std::uint32_t rate = 0;     // samples per second, never 0

    double seconds() const { return static_cast<double>(samples) / rate; }
};

// MP3: `frame` starts at the first audio frame's header and holds at least the frame's first 192
// bytes (less at the end of the file). The Xing/Info header's frame count times the samples per
// frame, less the LAME tag's encoder delay and padding.
std::optional<exact_length> mp3_gapless_length(std::string_view frame);

// M4A: the "----:com.apple.iTunes:iTunSMPB" comment's text; `rate` is the stream's sample rate.
std::optional<exact_length> itunsmpb_length(std::string_view comment, std::uint32_t rate);

// M4A: `moov` is the body of the file's moov box. The first sound track's edit list: its media
// less the priming that the edit skips, ended where the edit ends.
std::optional<exact_length> mp4_edit_length(std::string_view moov);

// Opus: the pre-skip of the stream's first packet (the "OpusHead" header).
std::optional<std::uint16_t> opus_pre_skip(std::string_view head);

} // namespace linux_audio
