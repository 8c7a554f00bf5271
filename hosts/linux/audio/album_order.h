#pragma once
// The order in which the audio files of a folder make an album.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <tunehall/tag_record.h>

namespace linux_audio {

// File names in natural order: digit runs compare as numbers ("2 x" before "10 x"), letters
// without regard to ASCII case.
bool natural_less(std::string_view a, std::string_view b);

// The album order of files given by name and current tags, as positions into both lists: by
// disc and track number when every file has a track number (and, for the disc, every file a
// disc number), equal numbers by name; otherwise by name.
std::vector<std::size_t> album_order(const std::vector<std::string>& names, const std::vector<tag_record>& tags);

} // namespace linux_audio
