#pragma once
// The host's track handle for an audio file on disk.

#include <string>

#include <tunehall/track.h>

// A track for the audio file at `path` (UTF-8, kept as given), subsong 0. Its length and info
// record are read on first use and kept until the file changes on disk (a tag update, another
// program), so asking again costs no file read. Reading failures raise the i/o exception of
// read_audio_file, naming the file.
service_ref<track_handle> make_file_track(const std::string& path);
