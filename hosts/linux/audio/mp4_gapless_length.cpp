// M4A/AAC states its priming and padding one of two ways.
//
// The iTunSMPB comment, hexadecimal fields: zero, delay, padding, the samples encoded, ...
//   " 00000000 00000840 000001CA 00000000000CD5B6 00000000 ..."
//
// Or an edit list in the sound track (what ffmpeg writes): moov > trak > edts > elst, one edit
// whose media_time (media units) skips the priming and whose segment_duration (movie units)
// ends before the padding. The track's mdhd gives its media units and length; the mvhd the
// movie units, often only milliseconds.

#include "gapless_length.h"

#include <charconv>
#include <vector>

#include "header_bytes.h"

namespace linux_audio {

namespace {

// One box: its type and its body, without the size and type.
struct box {
    std::string_view type;
    std::string_view body;
};

// The boxes laid one after another in `bytes`; a box that overruns them ends the list.
std::vector<box> boxes_in(std::string_view bytes) {
    std::vector<box> out;
    while (bytes.size() >= 8) {
        std::uint64_t size = big_endian(bytes, 0, 4);
        std::size_t header = 8;
        if (size == 1) {
            if (bytes.size() < 16) break;
            size = big_endian(bytes, 8, 8);
            header = 16;
        } else if (size == 0) {
            size = bytes.size();
        }
        if (size < header || size > bytes.size()) break;
        out.push_back({bytes.substr(4, 4), bytes.substr(header, size - header)});
        bytes.remove_prefix(size);
    }
    return out;
}

std::optional<std::string_view> child(std::string_view parent, std::string_view type) {
    for (const box& b : boxes_in(parent))
        if (b.type == type) return b.body;
    return std::nullopt;
}

// A full box's time scale and duration (mvhd, mdhd): version 1 has 64-bit times. A scale of 0:
// no box, or a damaged one.
struct timing {
    std::uint32_t scale = 0;
    std::uint64_t duration = 0;
};

timing timing_of(const std::optional<std::string_view>& box) {
    if (!box) return {};
    const bool wide = !box->empty() && byte_at(*box, 0) == 1;
    const std::size_t at = wide ? 20 : 12;
    if (box->size() < at + (wide ? 12 : 8)) return {};
    return {static_cast<std::uint32_t>(big_endian(*box, at, 4)), big_endian(*box, at + 4, wide ? 8 : 4)};
}

struct edit {
    std::uint64_t segment_duration = 0;  // movie units
    std::int64_t media_time = 0;         // media units; -1 for an empty edit
};

std::vector<edit> edits_of(std::string_view elst) {
    std::vector<edit> out;
    if (elst.size() < 8) return out;
    const bool wide = byte_at(elst, 0) == 1;
    const std::size_t entry = wide ? 20 : 12, field = wide ? 8 : 4;
    const std::uint64_t count = big_endian(elst, 4, 4);
    if (count > (elst.size() - 8) / entry) return out;
    for (std::uint64_t i = 0; i < count; ++i) {
        const std::size_t at = 8 + i * entry;
        const std::uint64_t time = big_endian(elst, at + field, field);
        // Signed: all ones is -1 in either width.
        const bool empty = time == (wide ? ~std::uint64_t{0} : 0xFFFFFFFFu);
        out.push_back({big_endian(elst, at, field), empty ? -1 : static_cast<std::int64_t>(time)});
    }
    return out;
}

bool is_sound_track(std::string_view mdia) {
    const std::optional<std::string_view> hdlr = child(mdia, "hdlr");
    return hdlr && hdlr->size() >= 12 && hdlr->substr(8, 4) == "soun";
}

} // namespace

std::optional<exact_length> itunsmpb_length(std::string_view comment, std::uint32_t rate) {
    std::uint64_t fields[4] = {};
    for (std::uint64_t& field : fields) {
        while (!comment.empty() && comment.front() == ' ') comment.remove_prefix(1);
        const auto [end, ec] = std::from_chars(comment.data(), comment.data() + comment.size(), field, 16);
        if (ec != std::errc{} || (end != comment.data() + comment.size() && *end != ' ')) return std::nullopt;
        comment.remove_prefix(static_cast<std::size_t>(end - comment.data()));
    }
    if (fields[3] == 0 || rate == 0) return std::nullopt;
    return exact_length{fields[3], rate};
}

std::optional<exact_length> mp4_edit_length(std::string_view moov) {
    const timing movie = timing_of(child(moov, "mvhd"));
    if (movie.scale == 0) return std::nullopt;
    for (const box& trak : boxes_in(moov)) {
        if (trak.type != "trak") continue;
        const std::optional<std::string_view> mdia = child(trak.body, "mdia");
        if (!mdia || !is_sound_track(*mdia)) continue;
        const timing media = timing_of(child(*mdia, "mdhd"));
        const std::optional<std::string_view> edts = child(trak.body, "edts");
        const std::optional<std::string_view> elst = edts ? child(*edts, "elst") : std::nullopt;
        if (media.scale == 0 || !elst) return std::nullopt;
        // An empty edit first delays the start; the edit that plays media follows it. Several
        // edits that play media cut the track in ways a length cannot say.
        std::vector<edit> played = edits_of(*elst);
        std::erase_if(played, [](const edit& e) { return e.media_time < 0; });
        if (played.size() != 1) return std::nullopt;
        const auto skipped = static_cast<std::uint64_t>(played[0].media_time);
        if (skipped >= media.duration) return std::nullopt;
        const std::uint64_t after_priming = media.duration - skipped;
        // The edit's duration is in movie units; converted, it is exact only to one of them.
        // When the media after the priming ends within that unit, the media's count is exact.
        const double edited = static_cast<double>(played[0].segment_duration) * media.scale / movie.scale;
        const double movie_unit = static_cast<double>(media.scale) / movie.scale;
        if (played[0].segment_duration == 0 || static_cast<double>(after_priming) <= edited + movie_unit)
            return exact_length{after_priming, media.scale};
        return exact_length{static_cast<std::uint64_t>(edited + 0.5), media.scale};
    }
    return std::nullopt;
}

} // namespace linux_audio
