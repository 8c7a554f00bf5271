#include "cddb/toc.h"

#include <cmath>
#include <cstdio>

#include <tunehall/exceptions.h>

namespace {

constexpr double frames_per_second = 75.0;
constexpr std::uint32_t whole_second = 75;

[[noreturn]] void fail_to_build() { throw tunehall_io::exception_io_data("CDDB: Could not build query"); }

// A track that does not play for a positive time cannot be placed on a disc.
std::uint32_t frames_of(double seconds) {
    if (!(seconds > 0.0)) fail_to_build();
    return static_cast<std::uint32_t>(std::llround(seconds * frames_per_second));
}

// Start of track 1: the standard two-second lead-in plus the track's own pregap.
std::uint32_t first_offset_after(double pregap_seconds) {
    return static_cast<std::uint32_t>(std::llround((pregap_seconds + 2.0) * frames_per_second));
}

std::uint32_t first_offset_of(const track_handle& first) {
    track_info info;
    // Without an info record no lead-in is added at all; servers hold entries computed that way.
    if (!first.get_info(info)) return 0;
    return first_offset_after(read_cue_indices(info).pregap);
}

std::uint32_t digit_sum(std::uint32_t n) {
    std::uint32_t sum = 0;
    for (; n > 0; n /= 10) sum += n % 10;
    return sum;
}

// Both entry points share this pass; `length_at(i)` is asked afresh on every pass. All sums are
// 32-bit and wrap, as the servers' own arithmetic does.
template <typename LengthAt>
disc_toc build_toc(std::size_t count, std::uint32_t first_offset, LengthAt length_at) {
    disc_toc toc;
    toc.track_count = static_cast<std::uint32_t>(count);
    toc.first_offset = first_offset;
    toc.offsets.reserve(count);
    std::uint32_t offset = first_offset;
    std::uint32_t checksum = 0;
    for (std::size_t i = 0; i < count; ++i) {
        std::uint32_t frames = frames_of(length_at(i));
        toc.offsets.push_back(offset);
        checksum += digit_sum(offset / whole_second);
        offset += frames;
    }
    toc.leadout = offset;
    toc.disc_seconds = offset / whole_second;
    // The playing time divides the frame difference, and the count is ORed in unmasked: above
    // 255 tracks it runs into the time field. Both are what the servers index by.
    toc.disc_id = ((checksum % 255) << 24) | (((offset - first_offset) / whole_second) << 8) | toc.track_count;
    return toc;
}

template <typename LengthAt>
std::string query_text(const disc_toc& toc, LengthAt length_at) {
    std::string text = "cddb query ";
    text += format_disc_id(toc.disc_id);
    text += ' ';
    text += std::to_string(toc.track_count);
    std::uint32_t offset = toc.first_offset;
    for (std::size_t i = 0; i < toc.track_count; ++i) {
        std::uint32_t frames = frames_of(length_at(i));
        text += ' ';
        text += std::to_string(offset);
        offset += frames;
    }
    text += ' ';
    text += std::to_string(toc.disc_seconds);
    return text;
}

auto handle_lengths(const track_list& tracks) {
    return [&tracks](std::size_t i) { return tracks[i] ? tracks[i]->length() : 0.0; };
}

auto plain_lengths(std::span<const double> lengths) {
    return [lengths](std::size_t i) { return lengths[i]; };
}

} // namespace

disc_toc compute_disc_toc(const track_list& tracks) {
    if (tracks.empty() || !tracks.front()) fail_to_build();
    return build_toc(tracks.size(), first_offset_of(*tracks.front()), handle_lengths(tracks));
}

disc_toc compute_disc_toc(std::span<const double> lengths, const char* pregap) {
    if (lengths.empty()) fail_to_build();
    double pregap_seconds = pregap ? cue_time_to_seconds(pregap) : 0.0;
    return build_toc(lengths.size(), first_offset_after(pregap_seconds), plain_lengths(lengths));
}

std::string format_disc_id(std::uint32_t disc_id) {
    char text[9];
    std::snprintf(text, sizeof text, "%08X", static_cast<unsigned>(disc_id));
    return text;
}

std::string cddb_query_text(const track_list& tracks) {
    return query_text(compute_disc_toc(tracks), handle_lengths(tracks));
}

std::string cddb_query_text(std::span<const double> lengths, const char* pregap) {
    return query_text(compute_disc_toc(lengths, pregap), plain_lengths(lengths));
}
