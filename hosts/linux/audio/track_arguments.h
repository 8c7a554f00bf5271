#pragma once
// The tracks a user names on the command line: files, and folders standing for their albums.

#include <string>
#include <vector>

#include <tunehall/track.h>

// One track per audio file argument, and for a folder argument one per audio file in it
// (.flac .mp3 .ogg .opus .wav .m4a, any case) in album order; in argument order. Every file is
// read before this returns, so a missing or unreadable one raises its i/o exception, naming
// it, before anything else happens.
track_list tracks_from_arguments(const std::vector<std::string>& args);
