#pragma once
// Host tag records to and from ID3v2 tags (MP3, WAV).

#include <taglib/id3v2tag.h>

#include <tunehall/tag_record.h>

namespace linux_audio {

// The text and comment frames of `tag`: table frames under their host names (TRCK and TPOS
// split into number and total), other text frames under their frame id, user text frames
// (TXXX) under their description. Other frames (pictures, ids, lyrics) are not fields.
tag_record read_id3v2(const TagLib::ID3v2::Tag& tag);
// Replaces the text and comment frames of `tag` by the fields of `tags`; other frames stay.
void write_id3v2(TagLib::ID3v2::Tag& tag, const tag_record& tags);

} // namespace linux_audio
