#pragma once
// A disc's table of contents turned into the tracks the component builds its ids from. The
// component lays tracks back to back after a lead-in of 150 frames plus the first track's
// "pregap"; a disc is told to it as track lengths that land every track on its real offset.
// A data track changes what each id covers: the CDDB id counts every track up to the physical
// lead-out, while the MusicBrainz id of an enhanced disc (data track last) covers the audio
// tracks only, ending 11400 frames (the gap between the two sessions) before the data track.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace linux_cue {

struct disc_layout {
    std::vector<std::uint32_t> offsets;     // frames, the 150-frame lead-in included
    std::uint32_t leadout = 0;              // frames
    std::optional<std::size_t> data_track;  // 0-based; the first or the last track
};

struct laid_track {
    std::size_t track = 0;  // 0-based index into the layout's tracks
    double seconds = 0.0;
};

struct disc_tracks {
    std::vector<laid_track> cddb, musicbrainz;
    std::uint32_t pregap = 0;  // frames before track 1 beyond the lead-in
};

// Checks the layout (offsets rising from 150 on, lead-out after the last, a data track first or
// last, an enhanced disc's audio ending before its data) and lays it out; exception_io_data with
// the reason otherwise.
disc_tracks lay_out(const disc_layout& layout);

// "mm:ss:ff", the form a track's "pregap" info field takes.
std::string cue_time_text(std::uint32_t frames);

// "FIRST LAST LEADOUT OFFSET..." as the layout it describes (FIRST must be 1); `data_track`
// 1-based when given. exception_io_data naming what is wrong.
disc_layout parse_toc(const std::string& text, std::optional<unsigned> data_track);

} // namespace linux_cue
