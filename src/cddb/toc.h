#pragma once
// The CD table of contents implied by the selected tracks laid back to back, and the CDDB disc
// id derived from it. Nothing is cached: every query computes it afresh from the tracks.

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include <tunehall/track.h>

struct disc_toc {
    std::uint32_t track_count = 0;
    std::uint32_t first_offset = 0;      // frames; the start of track 1
    std::vector<std::uint32_t> offsets;  // frames; one per track, offsets[0] == first_offset
    std::uint32_t leadout = 0;           // frames
    std::uint32_t disc_seconds = 0;      // leadout / 75
    std::uint32_t disc_id = 0;
};

// The TOC of `tracks` in selection order. The first track's pregap moves the start of track 1;
// a first track without an info record starts at frame 0. Raises tunehall_io::exception_io_data
// "CDDB: Could not build query" for an empty list or a length that is not above zero, and the
// host's bad-cue-sheet error for an unreadable pregap.
disc_toc compute_disc_toc(const track_list& tracks);

// The same from plain lengths in seconds, for callers without track handles. `pregap` is a
// cue-sheet time ("mm:ss:ff", "ss:ff" or "ff"), or null for none (the usual 150-frame lead-in).
disc_toc compute_disc_toc(std::span<const double> lengths, const char* pregap = nullptr);

// Eight upper-case hexadecimal digits, leading zeros kept.
std::string format_disc_id(std::uint32_t disc_id);

// "cddb query <id> <count> <offsets...> <seconds>". The offsets come from a second pass over the
// lengths, which fails the same way as the first.
std::string cddb_query_text(const track_list& tracks);
std::string cddb_query_text(std::span<const double> lengths, const char* pregap = nullptr);
