#pragma once
// Host tag records to and from Vorbis comments (FLAC, Ogg Vorbis, Opus).

#include <taglib/xiphcomment.h>

#include <tunehall/tag_record.h>

namespace linux_audio {

// Every field of `comment`: table keys under their host names, other keys lower-cased.
tag_record read_vorbis_comment(const TagLib::Ogg::XiphComment& comment);
// Replaces every field of `comment` by the fields of `tags`; pictures are not fields and stay.
void write_vorbis_comment(TagLib::Ogg::XiphComment& comment, const tag_record& tags);

} // namespace linux_audio
