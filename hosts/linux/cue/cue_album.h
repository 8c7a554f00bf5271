#pragma once
// The tracks of a disc given as a cue sheet or as a table of contents, as the component sees
// them: one list for the CDDB road and one for MusicBrainz (they differ on an enhanced disc).

#include <optional>
#include <string>

#include <tunehall/track.h>

namespace linux_cue {

struct album_tracks {
    track_list tracks;       // every track: the CDDB lookup and tagging
    track_list musicbrainz;  // the tracks the MusicBrainz id covers
};

// The tracks of the cue sheet at `path` and of the audio files it names (read now, so that a
// missing one stops everything, named). With one audio file the tracks are the sheet's (path
// the sheet, subsong the TRACK number) and keep their tags in it; with one file per track each
// track is its file. The first track's info record carries "pregap" and "index 02".."index 99".
// A malformed sheet raises exception_bad_cuesheet naming the file and line.
album_tracks read_cue_album(const std::string& path);

// The cue sheet an argument stands for: a .cue file, or a folder that holds exactly one; none
// for anything else. A folder with several cue sheets raises exception_io_data naming it.
std::optional<std::string> cue_sheet_of(const std::string& argument);

// Tracks without files ("track 1", ...) for the table of contents `toc` ("FIRST LAST LEADOUT
// OFFSET...", frames), `data_track` 1-based. exception_io_data when it is not a disc.
album_tracks toc_album(const std::string& toc, std::optional<unsigned> data_track);

// Whether `track` keeps its tags in a cue sheet (its path).
bool is_cue_track(const track_handle& track);

} // namespace linux_cue
