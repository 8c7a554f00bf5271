#pragma once
// Real audio files (FLAC, MP3, Ogg Vorbis, Opus, WAV, M4A) through TagLib: how long a track
// plays, its technical fields, its tags, and writing its tags. Paths are UTF-8.

#include <functional>
#include <optional>
#include <string>

#include <tunehall/track.h>

// Whether `path` names a file of a type read here, judged by its extension.
bool is_audio_file_name(const std::string& path);

// The info field that says how `length` was found: "exact" where the file states the samples
// that a gapless decoder outputs (FLAC, WAV, Ogg Vorbis, Opus; MP3 with a LAME tag; M4A with
// an iTunSMPB comment or an edit list), else "estimated" (to the millisecond; an MP3 or AAC
// file then counts its encoder's delay and padding).
inline constexpr const char* length_kind_field = "length_kind";

// The file's info record: `length` in seconds, length_kind_field, technical fields ("codec", "samplerate", "channels",
// "bitrate" in kbit/s, "bitspersample" where the format has it) and its tags under the host's
// field names. A missing file raises exception_io_not_found, a file that cannot be read
// exception_io_data; both texts name the file.
track_info read_audio_file(const std::string& path);

// Replaces the file's tags by exactly `tags`: a field absent from `tags` is removed from the
// file ("year" is never written). Pictures and other non-text data stay. A missing file
// raises exception_io_not_found, a read-only one exception_io_denied, before anything is
// changed; every text names the file.
void write_tags(const std::string& path, const tag_record& tags);

// Reads the file's tags, hands them to `change`, and when it returns a record writes that one as
// write_tags does, through the same opened file: one open per file instead of two. Failures as
// for read_audio_file and write_tags.
void update_tags(const std::string& path, const std::function<std::optional<tag_record>(const tag_record&)>& change);
