#pragma once
// The controls of the tagger's dialog template, by resource id.

#include "resources/resource.h"

namespace tagger_controls {

constexpr int dialog_template = IDD_TAGGER;

constexpr int matches_group = IDC_TAGGER_MATCHES_GROUP;  // group box retitled "Matches (N)"
constexpr int matches = IDC_TAGGER_MATCHES;              // list of matches, grouped by server
constexpr int artist = IDC_TAGGER_ARTIST;
constexpr int album = IDC_TAGGER_ALBUM;
constexpr int year = IDC_TAGGER_YEAR;
constexpr int genre = IDC_TAGGER_GENRE;
constexpr int various_artists = IDC_TAGGER_VARIOUS;  // check box
constexpr int tracks = IDC_TAGGER_TRACKS;            // track list: "#", "Title", "Comment"
constexpr int wipe_tags = IDC_TAGGER_WIPE;           // check box
constexpr int update_button = IDC_TAGGER_UPDATE;     // "&Update files"
constexpr int settings_button = IDC_TAGGER_SETTINGS;
constexpr int close_button = IDC_TAGGER_CLOSE;  // also the window's close request

// Columns of the track list (column 0 is the track number, never edited).
constexpr int title_column = 1;
constexpr int comment_column = 2;
constexpr int track_columns = 3;

} // namespace tagger_controls
