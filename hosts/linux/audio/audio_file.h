#pragma once
// Real audio files (FLAC, MP3, Ogg Vorbis, Opus, WAV, M4A) through TagLib: how long a track
// plays, its technical fields, its tags, and writing its tags. Paths are UTF-8.

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include <tunehall/track.h>

#include "staged_file_stream.h"

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

// How tags are written. MP3 and WAV files get ID3v2.4, or ID3v2.3 for players that read only
// that (the date then goes into TYER and TDAT); an ID3v1 tag is removed either way.
struct tag_write_options {
    int id3v2_version = 4;  // 3 or 4
};

struct opened_file;

// A tag write worked out but not yet in the file: the file's new content is known, the file is
// unchanged until commit(), which leaves it either as it was or as intended, whenever the process
// is killed.
class prepared_tag_write {
public:
    prepared_tag_write(std::string path, std::unique_ptr<opened_file> file);
    prepared_tag_write(prepared_tag_write&&) noexcept;
    ~prepared_tag_write();
    const std::string& path() const { return path_; }
    // Whether the file's bytes would change at all.
    bool changes_file();
    std::int64_t new_size();
    // The file as it is now, described from the written file: what restore_content() needs to
    // put it back byte for byte.
    linux_audio::content_layout undo_layout();
    void commit();

private:
    std::string path_;
    std::unique_ptr<opened_file> file_;
};

// Works out the write of `tags` as write_tags does, without changing the file. Failures as for
// write_tags.
prepared_tag_write prepare_tag_write(const std::string& path, const tag_record& tags,
                                     const tag_write_options& options = {});

// Rebuilds the file at `path` from `layout` (pieces of the file as it is now and bytes), safely
// as commit() writes.
void restore_content(const std::string& path, const linux_audio::content_layout& layout);

// Replaces the file's tags by exactly `tags`: a field absent from `tags` is removed from the
// file ("year" is never written). Pictures and other non-text data stay. A missing file
// raises exception_io_not_found, a read-only one exception_io_denied, before anything is
// changed; every text names the file.
void write_tags(const std::string& path, const tag_record& tags, const tag_write_options& options = {});
