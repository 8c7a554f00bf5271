#pragma once
// The tags the tagger writes: one record per track, built from the edited match.

#include <cstddef>
#include <vector>

#include <tunehall/tag_record.h>

#include "cddb/disc_record.h"

// One tag record for each of the first `track_count` tracks of `record` (at most its track
// count), fields in this order: "album"; "date" and "genre" when set; "artist" and "title" (a
// various-artists disc: "album artist", then the track's own artist and title split from its
// title, falling back to the disc artist and the whole title); "tracknumber" and "totaltracks"
// (`track_count`); "comment" with the disc comment and then the track comment, each when set.
std::vector<tag_record> build_track_tag_sets(const disc_record& record, std::size_t track_count);
