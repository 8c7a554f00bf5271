#pragma once
// The tracks a command works on: audio files and folders given as arguments, a cue sheet (or a
// folder holding one), lengths given with --lengths or a table of contents given with --toc
// (tracks without files, each with an info record).

#include <tunehall/track.h>

#include "cli/arguments.h"

namespace tessellon_cli {

// The album's tracks for the CDDB road and tagging, and those its MusicBrainz id covers (the
// same tracks unless the disc has a data track).
struct album_input {
    track_list tracks;
    track_list musicbrainz;
};

// Reads the album the user named; usage_error when none is named or the forms are mixed, the
// host's i/o errors (naming the file) when a file cannot be read.
album_input read_album(const option_reader& options);

// The album's tracks for the CDDB road and tagging.
track_list read_tracks(const option_reader& options);

} // namespace tessellon_cli
