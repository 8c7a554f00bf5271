#pragma once
// The controls of the MusicBrainz dialog template, by resource id.

#include <cstddef>

#include "resources/resource.h"

namespace release_dialog_controls {

constexpr int dialog_template = IDD_MUSICBRAINZ;

constexpr int album_list = IDC_MB_ALBUM;  // "Name" / "Value": Title, Artist, Date, Disc (, Match)
constexpr int tracks = IDC_MB_TRACKS;     // "No" / "Title" / "Artist"
constexpr int save_button = IDC_MB_SAVE;
constexpr int cancel_button = IDC_MB_CANCEL;  // also the window's close request

// Rows of the album list, in order. The match row is there only for a release matched by its
// table of contents, to tell the user it is a guess; it is not edited and not written.
enum album_row : std::size_t { title_row = 0, artist_row = 1, date_row = 2, disc_row = 3, match_row = 4 };
constexpr const char* match_row_name = "Match";
constexpr const char* match_by_toc_text = "by table of contents (the disc id is unknown)";
constexpr int value_column = 1;
constexpr int album_columns = 2;
constexpr int title_column = 1;
constexpr int artist_column = 2;
constexpr int track_columns = 3;

} // namespace release_dialog_controls
