// The gapless header readers on crafted bytes: the layouts that encoders write, and the damaged or
// partial ones that must leave the length as it was.

#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "audio/gapless_length.h"

using linux_audio::exact_length;

namespace {

std::string be(std::uint64_t value, int bytes) {
    std::string out;
    for (int i = bytes - 1; i >= 0; --i) out.push_back(static_cast<char>((value >> (8 * i)) & 0xff));
    return out;
}

// An MP3 Info frame as lame writes it: `header` (4 bytes), zeroed side information, the Xing
// header with `flags`, and a LAME tag named `encoder` with `delay` and `padding`.
std::string info_frame(const std::string& header, std::size_t side_info, std::uint32_t flags, std::uint32_t frames,
                       const std::string& encoder, std::uint32_t delay, std::uint32_t padding) {
    std::string f = header + std::string(side_info, '\0') + "Info" + be(flags, 4);
    if (flags & 1) f += be(frames, 4);
    f += std::string(((flags & 2) ? 4 : 0) + ((flags & 4) ? 100 : 0) + ((flags & 8) ? 4 : 0), '\x55');
    f += encoder + std::string(21 - encoder.size(), '\0') + be((delay << 12) | padding, 3);
    return f + std::string(192 - std::min<std::size_t>(192, f.size()), '\0');
}

const std::string mpeg1_mono = "\xFF\xFB\x50\xC4", mpeg1_stereo = "\xFF\xFB\x90\x64", mpeg2_mono = "\xFF\xF3\x80\xC4";

std::string box(const std::string& type, const std::string& body) { return be(8 + body.size(), 4) + type + body; }
std::string times(int version, std::uint32_t scale, std::uint64_t duration) {
    return version == 0 ? be(0, 4) + be(0, 8) + be(scale, 4) + be(duration, 4) : be(1u << 24, 4) + std::string(16, '\0') + be(scale, 4) + be(duration, 8);
}
std::string elst(int version, const std::vector<std::pair<std::uint64_t, std::int64_t>>& edits, std::size_t count) {
    std::string b = be(std::uint64_t{static_cast<std::uint32_t>(version)} << 24, 4) + be(count, 4);
    for (const auto& [duration, media_time] : edits)
        b += be(duration, version ? 8 : 4) + be(static_cast<std::uint64_t>(media_time), version ? 8 : 4) + be(0x10000, 4);
    return box("elst", b);
}
// A moov with one track of `handler` ("soun") at 44100 media units, and the movie at `movie_scale`.
std::string moov(std::uint32_t movie_scale, const std::string& edits, std::uint64_t media_duration,
                 const std::string& handler = "soun", int version = 0) {
    const std::string mdia = box("mdia", box("mdhd", times(version, 44100, media_duration)) +
                                             box("hdlr", be(0, 8) + handler + std::string(13, '\0')));
    return box("mvhd", times(0, movie_scale, 0)) + box("trak", (edits.empty() ? "" : box("edts", edits)) + mdia);
}

void expect_length(const std::optional<exact_length>& got, std::uint64_t samples, std::uint32_t rate) {
    if (samples == 0) {
        EXPECT_FALSE(got.has_value());
        return;
    }
    ASSERT_TRUE(got.has_value());
    EXPECT_EQ(got->samples, samples);
    EXPECT_EQ(got->rate, rate);
}

} // namespace

TEST(gapless_length, mp3_lame_tag_gives_the_encoded_samples_or_nothing) {
    struct mp3_case {
        const char* name;
        std::string frame;
        std::uint64_t samples;  // 0: no length
        std::uint32_t rate;
    };
    const std::string lame = info_frame(mpeg1_mono, 17, 15, 1073, "LAME3.100", 576, 953);
    const mp3_case cases[] = {
        {"MPEG-1 mono", lame, 1073 * 1152 - 576 - 953, 44100},
        {"MPEG-1 stereo, ffmpeg's tag", info_frame(mpeg1_stereo, 32, 15, 88, "Lavc59.37", 576, 800), 100000, 44100},
        {"MPEG-2, 576 samples a frame", info_frame(mpeg2_mono, 9, 15, 1074, "LAME3.100", 576, 764), 617284, 22050},
        {"frame count only", info_frame(mpeg1_mono, 17, 1, 10, "LAME3.100", 576, 100), 10 * 1152 - 676, 44100},
        {"no LAME tag", info_frame(mpeg1_mono, 17, 15, 1073, "", 0, 0), 0, 0},
        {"no frame count", info_frame(mpeg1_mono, 17, 14, 0, "LAME3.100", 576, 953), 0, 0},
        {"delay and padding beyond the frames", info_frame(mpeg1_mono, 17, 15, 1, "LAME3.100", 576, 600), 0, 0},
        {"truncated in the LAME tag", lame.substr(0, 4 + 17 + 8 + 4 + 4 + 100 + 4 + 22), 0, 0},
        {"not a frame", "ID3" + lame, 0, 0},
        {"Layer II", "\xFF\xFD" + lame.substr(2), 0, 0},
    };
    for (const mp3_case& c : cases) {
        SCOPED_TRACE(c.name);
        expect_length(linux_audio::mp3_gapless_length(c.frame), c.samples, c.rate);
    }
}

TEST(gapless_length, mp4_edit_list_or_itunsmpb_gives_the_encoded_samples_or_nothing) {
    struct mp4_case {
        const char* name;
        std::string moov;
        std::uint64_t samples;  // 0: no length
    };
    // ffmpeg: 1024 samples of priming, the edit's end in milliseconds, the last packet cut short.
    const std::string ffmpeg_edit = elst(0, {{27994, 1024}}, 1);
    const mp4_case cases[] = {
        {"ffmpeg's edit", moov(1000, ffmpeg_edit, 1235591), 1234567},
        {"64-bit edit and media times", moov(1000, elst(1, {{27994, 1024}}, 1), 1235591, "soun", 1), 1234567},
        {"an empty edit before it", moov(1000, elst(0, {{500, -1}, {27994, 1024}}, 2), 1235591), 1234567},
        {"the edit ends before the media's padding", moov(44100, elst(0, {{1234567, 2112}}, 1), 1237952), 1234567},
        {"no edit list", moov(1000, "", 1235591), 0},
        {"edit list shorter than its count", moov(1000, elst(0, {{27994, 1024}}, 2), 1235591), 0},
        {"two edits that play media", moov(1000, elst(0, {{100, 0}, {100, 5000}}, 2), 1235591), 0},
        {"priming beyond the media", moov(1000, elst(0, {{10, 5000}}, 1), 4000), 0},
        {"no sound track", moov(1000, ffmpeg_edit, 1235591, "vide"), 0},
        {"cut inside a box", moov(1000, ffmpeg_edit, 1235591).substr(0, 100), 0},
    };
    for (const mp4_case& c : cases) {
        SCOPED_TRACE(c.name);
        expect_length(linux_audio::mp4_edit_length(c.moov), c.samples, 44100);
    }
    expect_length(linux_audio::itunsmpb_length(" 00000000 00000840 000001CA 00000000000CD5B6 00000000 00000000", 44100),
                  0xCD5B6, 44100);
    expect_length(linux_audio::itunsmpb_length(" 00000000 00000840 000001CA", 44100), 0, 0);
    expect_length(linux_audio::itunsmpb_length(" 00000000 00000840 000001CA 0000000000zz", 44100), 0, 0);
}
