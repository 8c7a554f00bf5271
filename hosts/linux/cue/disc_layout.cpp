#include "disc_layout.h"

#include <cstdio>
#include <sstream>

#include <tunehall/exceptions.h>

namespace linux_cue {

namespace {

constexpr std::uint32_t lead_in = 150;
// Frames between the end of an enhanced disc's audio session and its data track.
constexpr std::uint32_t session_gap = 11400;

[[noreturn]] void fail(const std::string& what) { throw tunehall_io::exception_io_data(what); }

std::vector<laid_track> lengths(const std::vector<std::uint32_t>& offsets, std::size_t count, std::uint32_t end) {
    std::vector<laid_track> out;
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t next = i + 1 < count ? offsets[i + 1] : end;
        out.push_back({i, static_cast<double>(next - offsets[i]) / 75.0});
    }
    return out;
}

} // namespace

disc_tracks lay_out(const disc_layout& layout) {
    const auto& offsets = layout.offsets;
    if (offsets.empty()) fail("the disc has no tracks");
    if (offsets.front() < lead_in) fail("the first track starts at frame " + std::to_string(offsets.front()) + ", before the lead-in ends (150)");
    for (std::size_t i = 1; i < offsets.size(); ++i)
        if (offsets[i] <= offsets[i - 1]) fail("track " + std::to_string(i + 1) + " does not start after track " + std::to_string(i));
    if (layout.leadout <= offsets.back()) fail("the lead-out " + std::to_string(layout.leadout) + " is not after the last track");

    disc_tracks out;
    out.pregap = offsets.front() - lead_in;
    out.cddb = lengths(offsets, offsets.size(), layout.leadout);
    out.musicbrainz = out.cddb;
    // A CDDB id's playing time is the lead-out's whole seconds less the first offset's; the
    // component divides the frame difference instead, a second less when the lead-out's frame
    // within its second is below the first offset's. Moving the lead-out within its second (the
    // last track plays under a second longer; offsets and disc length stay) gives the disc's id.
    const std::uint32_t first_frame = offsets.front() % 75, leadout_second = layout.leadout / 75 * 75;
    if (layout.leadout % 75 < first_frame && leadout_second + first_frame > offsets.back())
        out.cddb.back().seconds = static_cast<double>(leadout_second + first_frame - offsets.back()) / 75.0;
    if (layout.data_track) {
        const std::size_t data = *layout.data_track;
        if (offsets.size() < 2) fail("a disc with a data track needs an audio track too");
        if (data != 0 && data != offsets.size() - 1) fail("the data track must be the first or the last track");
        if (data == offsets.size() - 1) {
            if (offsets[data] < session_gap || offsets[data] - session_gap <= offsets[data - 1])
                fail("the data track starts too early: the audio must end 11400 frames before it");
            out.musicbrainz = lengths(offsets, data, offsets[data] - session_gap);
        }
    }
    return out;
}

std::string cue_time_text(std::uint32_t frames) {
    char text[32];
    std::snprintf(text, sizeof text, "%02u:%02u:%02u", frames / 4500, frames / 75 % 60, frames % 75);
    return text;
}

disc_layout parse_toc(const std::string& text, std::optional<unsigned> data_track) {
    std::istringstream in(text);
    std::vector<std::uint32_t> numbers;
    std::string word;
    while (in >> word) {
        if (word.find_first_not_of("0123456789") != std::string::npos || word.size() > 9)
            fail("--toc: '" + word + "' is not a frame count");
        numbers.push_back(static_cast<std::uint32_t>(std::stoul(word)));
    }
    if (numbers.size() < 4) fail("--toc: expected \"FIRST LAST LEADOUT OFFSET...\"");
    const std::uint32_t first = numbers[0], last = numbers[1];
    if (first != 1) fail("--toc: the first track must be 1");
    if (last < first || last > 99 || numbers.size() != 3 + last)
        fail("--toc: " + std::to_string(numbers.size() - 3) + " offsets for tracks 1 to " + std::to_string(last));
    disc_layout layout;
    layout.leadout = numbers[2];
    layout.offsets.assign(numbers.begin() + 3, numbers.end());
    if (data_track) {
        if (*data_track != 1 && *data_track != last)
            fail("--data-track " + std::to_string(*data_track) + ": the data track is the first (1) or the last (" + std::to_string(last) + ")");
        layout.data_track = *data_track - 1;
    }
    return layout;
}

} // namespace linux_cue
