#pragma once
// Host tag records to and from MP4 metadata atoms (M4A).

#include <taglib/mp4tag.h>

#include <tunehall/tag_record.h>

namespace linux_audio {

// Table atoms under their host names (trkn and disk as number and total), free-form
// "----:<namespace>:NAME" atoms under NAME. Other atoms (cover art, flags) are not fields.
tag_record read_mp4(const TagLib::MP4::Tag& tag);
// Replaces the table and free-form atoms of `tag` by the fields of `tags`; other atoms stay. A
// field outside the table keeps the free-form key it had, a new one gets the host's namespace.
void write_mp4(TagLib::MP4::Tag& tag, const tag_record& tags);

} // namespace linux_audio
