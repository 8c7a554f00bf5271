#include "musicbrainz/disc_id.h"

#include <cmath>
#include <stdexcept>

#include <tunehall/exceptions.h>

#include "musicbrainz/base64.h"
#include "musicbrainz/sha1_hasher.h"

namespace {

constexpr double frames_per_second = 75.0;
constexpr std::uint64_t standard_lead_in = 150;
constexpr std::size_t max_tracks = 99;

void check_track_count(std::size_t count) {
    if (count < 1 || count > max_tracks) throw std::invalid_argument("invalid argument");
}

std::uint64_t frames_of(double seconds) {
    return static_cast<std::uint64_t>(std::llround(seconds * frames_per_second));
}

// The lead-in for a first track's info record: 150 frames plus its pregap. A cue sheet that
// cannot be read counts as no pregap; the id is still worth asking for.
std::uint64_t lead_in_of(const track_info& first) {
    try {
        cue_indices cue = read_cue_indices(first);
        if (cue.any) return standard_lead_in + frames_of(cue.pregap);
    } catch (const exception_bad_cuesheet&) {
    }
    return standard_lead_in;
}

// Both entry points share this pass: `length_at(i)` is a track's length, 0 when it has none.
template <typename LengthAt>
musicbrainz_toc build_toc(std::size_t count, std::uint64_t lead_in, LengthAt length_at) {
    check_track_count(count);
    musicbrainz_toc toc;
    toc.offsets.reserve(count);
    double total_seconds = 0.0;
    std::uint64_t running = lead_in;
    for (std::size_t i = 0; i < count; ++i) {
        const double seconds = length_at(i);
        toc.offsets.push_back(running);
        if (seconds > 0.0) {
            total_seconds += seconds;
            running += frames_of(seconds);
        }
    }
    toc.leadout = frames_of(total_seconds) + lead_in;
    return toc;
}

// Upper-case hexadecimal of `value`, at least `width` digits, into `out`; all significant
// digits are kept. Returns the length.
std::size_t format_hex(std::uint64_t value, std::size_t width, char (&out)[16]) {
    static constexpr char digits[] = "0123456789ABCDEF";
    char reversed[16];
    std::size_t n = 0;
    do {
        reversed[n++] = digits[value & 15];
        value >>= 4;
    } while (value != 0);
    while (n < width) reversed[n++] = '0';
    for (std::size_t i = 0; i < n; ++i) out[i] = reversed[n - 1 - i];
    return n;
}

void add_hex(sha1_hasher& hasher, std::uint64_t value, std::size_t width) {
    char piece[16];
    hasher.add(piece, format_hex(value, width, piece));
}

} // namespace

musicbrainz_toc compute_musicbrainz_toc(const track_list& tracks) {
    check_track_count(tracks.size());
    // Each record is read once: the host may have to open the file for it.
    std::vector<double> lengths(tracks.size(), 0.0);
    std::uint64_t lead_in = standard_lead_in;
    for (std::size_t i = 0; i < tracks.size(); ++i) {
        track_info info;
        if (!tracks[i] || !tracks[i]->get_info(info)) continue;
        lengths[i] = info.length;
        if (i == 0) lead_in = lead_in_of(info);
    }
    return build_toc(tracks.size(), lead_in, [&lengths](std::size_t i) { return lengths[i]; });
}

musicbrainz_toc compute_musicbrainz_toc(std::span<const double> lengths, const char* pregap) {
    check_track_count(lengths.size());
    // A pregap given by the caller is an argument, so an unreadable one is an error here.
    const std::uint64_t lead_in = standard_lead_in + (pregap ? frames_of(cue_time_to_seconds(pregap)) : 0);
    return build_toc(lengths.size(), lead_in, [lengths](std::size_t i) { return lengths[i]; });
}

std::string musicbrainz_disc_id(const musicbrainz_toc& toc) {
    check_track_count(toc.offsets.size());
    // The 804-character text "01", count, lead-out, 99 offset slots is hashed piece by piece as
    // each number is formatted; it is never assembled.
    sha1_hasher hasher;
    add_hex(hasher, 1, 2);
    add_hex(hasher, toc.offsets.size(), 2);
    add_hex(hasher, toc.leadout, 8);
    for (std::size_t slot = 0; slot < max_tracks; ++slot)
        add_hex(hasher, slot < toc.offsets.size() ? toc.offsets[slot] : 0, 8);
    std::string id = base64_encode(hasher.finish());
    to_disc_id_alphabet(id);
    return id;
}

std::string compute_musicbrainz_disc_id(const track_list& tracks) {
    return musicbrainz_disc_id(compute_musicbrainz_toc(tracks));
}

std::string compute_musicbrainz_disc_id(std::span<const double> lengths, const char* pregap) {
    return musicbrainz_disc_id(compute_musicbrainz_toc(lengths, pregap));
}

std::string musicbrainz_toc_text(const musicbrainz_toc& toc) {
    std::string text = "1+" + std::to_string(toc.offsets.size()) + "+" + std::to_string(toc.leadout);
    for (std::uint64_t offset : toc.offsets) text += "+" + std::to_string(offset);
    return text;
}

bool is_disc_id_form(std::string_view text) {
    if (text.size() != 28) return false;
    for (char c : text) {
        const bool allowed = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '.' ||
                             c == '_' || c == '-';
        if (!allowed) return false;
    }
    return true;
}
