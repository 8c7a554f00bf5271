#pragma once
// The tracks a command works on: audio files and folders given as arguments, or lengths given
// with --lengths (tracks without files, each with an empty info record).

#include <tunehall/track.h>

#include "cli/arguments.h"

namespace tessellon_cli {

// Reads the tracks the user named; usage_error when none are named, the host's i/o errors
// (naming the file) when a file cannot be read.
track_list read_tracks(const option_reader& options);

} // namespace tessellon_cli
