#pragma once
// Cue sheets: the text that describes how one or more audio files make up a disc. Read into
// tracks with their index points, and edited in place for the tags a cue sheet can hold.

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <tunehall/tag_record.h>

namespace linux_cue {

struct cue_index {
    unsigned number = 0;       // 0 ... 99
    std::uint32_t frames = 0;  // position in its file, 75 frames per second
};

struct cue_track {
    unsigned number = 0;
    std::size_t file = 0;              // index into cue_sheet::files
    bool audio = true;                 // false for MODE1/MODE2 data tracks
    std::vector<cue_index> indices;    // in the order given (ascending)
    std::uint32_t pregap = 0;          // PREGAP frames: silence not held by any file
    std::uint32_t postgap = 0;         // POSTGAP frames
    std::string title, performer;
    std::vector<std::string> comments; // REM COMMENT lines inside the track

    // Where INDEX 01 is in its file (every track has one).
    std::uint32_t start() const;
};

struct cue_file {
    std::string name;  // as written in the sheet
    std::string type;  // WAVE, FLAC, BINARY, ...
};

struct cue_sheet {
    std::vector<cue_file> files;
    std::vector<cue_track> tracks;
    // The disc's own fields (lines before the first TRACK).
    std::string title, performer, date, genre;
    std::vector<std::string> comments;
};

// Reads the text of the cue sheet `name` (named in errors). Malformed lines raise
// exception_bad_cuesheet with a text naming `name` and the line's number.
cue_sheet parse_cue_sheet(const std::string& text, const std::string& name);

// The tags a cue sheet holds for track `track` (0-based): "album", "album artist" (when the
// disc's performer is not the track's), "artist", "title", "date", "genre", "comment",
// "tracknumber" and "totaltracks".
tag_record cue_track_tags(const cue_sheet& sheet, std::size_t track);

// The text of the cue sheet with track `track`'s tags replaced by `tags`: the disc's TITLE,
// PERFORMER, REM DATE, REM GENRE and REM COMMENT lines and the track's TITLE and PERFORMER.
// Every other line stays as it was, where it was.
std::string with_track_tags(const std::string& text, const std::string& name, std::size_t track,
                            const tag_record& tags);

} // namespace linux_cue
