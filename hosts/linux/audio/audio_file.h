#pragma once
// Real audio files (FLAC, MP3, Ogg Vorbis, Opus, WAV, M4A) through TagLib: how long a track
// plays, its technical fields, its tags, and writing its tags. Paths are UTF-8.

#include <functional>
#include <optional>
#include <string>

#include <tunehall/track.h>

// Whether `path` names a file of a type read here, judged by its extension.
bool is_audio_file_name(const std::string& path);

// The file's info record: `length` in seconds (sample-exact for FLAC and WAV, to the
// millisecond for the others), technical fields ("codec", "samplerate", "channels",
// "bitrate" in kbit/s, "bitspersample" where the format has it) and its tags under the host's
// field names. A missing file raises exception_io_not_found, a file that cannot be read
// exception_io_data; both texts name the file.
track_info read_audio_file(const std::string& path);

// How tags are written. MP3 and WAV files get ID3v2.4, or ID3v2.3 for players that read only
// that (the date then goes into TYER and TDAT); an ID3v1 tag is removed either way.
struct tag_write_options {
    int id3v2_version = 4;  // 3 or 4
};

// Replaces the file's tags by exactly `tags`: a field absent from `tags` is removed from the
// file ("year" is never written). Pictures and other non-text data stay. A missing file
// raises exception_io_not_found, a read-only one exception_io_denied, before anything is
// changed; every text names the file.
void write_tags(const std::string& path, const tag_record& tags, const tag_write_options& options = {});

// Reads the file's tags, hands them to `change`, and when it returns a record writes that one as
// write_tags does, through the same opened file: one open per file instead of two. Failures as
// for read_audio_file and write_tags.
void update_tags(const std::string& path, const std::function<std::optional<tag_record>(const tag_record&)>& change,
                 const tag_write_options& options = {});
