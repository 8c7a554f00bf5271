#pragma once
// The tags of a cue sheet's tracks (an album kept as one audio file), read from and written
// into the sheet itself.

#include <functional>
#include <optional>
#include <string>

#include <tunehall/tag_record.h>

namespace linux_cue {

// The tags of TRACK `number` of the cue sheet at `path`.
tag_record read_cue_tags(const std::string& path, unsigned number);

// Reads TRACK `number`'s tags, lets `change` decide, and when it returns a record writes it into
// the sheet, replacing the whole file at once (a crash leaves the old or the new sheet). A
// read-only sheet raises exception_io_denied before anything changes; texts name the file.
void update_cue_tags(const std::string& path, unsigned number,
                     const std::function<std::optional<tag_record>(const tag_record&)>& change);

} // namespace linux_cue
