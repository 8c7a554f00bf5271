#pragma once
// The host's tag field names and what each tag format calls them: one table for every format,
// so that reading and writing agree on every name.

#include <cstddef>
#include <string>
#include <string_view>

#include <tunehall/tag_record.h>

namespace linux_audio {

// One host field and its name in each format ("" where a format has no such field).
struct field_names {
    std::string_view host;
    std::string_view vorbis;  // Vorbis comment key (FLAC, Ogg Vorbis, Opus)
    std::string_view id3v2;   // ID3v2.4 frame; number pairs share "TRCK"/"TPOS"
    std::string_view mp4;     // MP4 atom; number pairs share "trkn"/"disk"
    bool written = true;      // false: read so that a rewrite drops it, never written
};

inline constexpr field_names field_table[] = {
    {"title", "TITLE", "TIT2", "\xa9nam"},
    {"artist", "ARTIST", "TPE1", "\xa9" "ART"},
    {"album", "ALBUM", "TALB", "\xa9" "alb"},
    {"genre", "GENRE", "TCON", "\xa9gen"},
    {"album artist", "ALBUMARTIST", "TPE2", "aART"},
    {"date", "DATE", "TDRC", "\xa9" "day"},
    {"tracknumber", "TRACKNUMBER", "TRCK", "trkn"},
    {"totaltracks", "TRACKTOTAL", "TRCK", "trkn"},
    {"discnumber", "DISCNUMBER", "TPOS", "disk"},
    {"totaldiscs", "DISCTOTAL", "TPOS", "disk"},
    {"comment", "COMMENT", "COMM", "\xa9" "cmt"},
    {"year", "YEAR", "TYER", "", false},
};

// The field of `host_name` (ASCII case ignored), or null for a field outside the table.
const field_names* find_host_field(std::string_view host_name);

// The host name that a Vorbis comment key stands for, the common alternatives included
// ("TOTALTRACKS", "ALBUM ARTIST", "DESCRIPTION", ...); empty for a key outside the table.
std::string_view host_name_of_vorbis_key(std::string_view key);
// The host name of an ID3v2 frame id outside the number pairs; empty when not in the table.
std::string_view host_name_of_id3v2_frame(std::string_view frame_id);
// The host name of an MP4 atom outside the number pairs; empty when not in the table.
std::string_view host_name_of_mp4_atom(std::string_view atom);

// Names in the case a format keeps them (ASCII letters only; other bytes stay).
std::string lower_ascii(std::string text);
std::string upper_ascii(std::string text);

// Where a field goes in the order readers show: the table's fields first, in table order, then
// the others by name. Files keep fields in orders of their own (some none at all), and readers
// should all show one order.
struct field_order {
    std::size_t rank;       // in the table; past its end for the others
    std::string_view name;  // lower case; the caller keeps the text alive
    bool operator<(const field_order& o) const { return rank != o.rank ? rank < o.rank : name < o.name; }
};
// The order of the field called `lower_name` (already in lower case).
field_order field_order_of(std::string_view lower_name);

// `tags` in the order above. Fields without values are left out.
tag_record in_table_order(const tag_record& tags);

} // namespace linux_audio
