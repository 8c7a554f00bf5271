#pragma once
// The host's track handle for an audio file on disk.

#include <optional>
#include <string>

#include <tunehall/track.h>

#include "staged_file_stream.h"

// A track for the audio file at `path` (UTF-8, kept as given), subsong 0. Its length and info
// record are read on first use and kept until the file changes on disk (a tag update, another
// program), so asking again costs no file read. Reading failures raise the i/o exception of
// read_audio_file, naming the file.
service_ref<track_handle> make_file_track(const std::string& path);

// Who the track's file was when it was first read (a track of make_file_track that was read);
// what a write checks the file against, so that it never gets tags worked out for another file.
std::optional<linux_audio::file_identity> identity_when_read(const track_ref& track);
// After the host itself wrote the track's file: the file as it is now is the one expected.
void note_own_write(const track_ref& track);
