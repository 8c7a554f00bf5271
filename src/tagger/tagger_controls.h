#pragma once
// The controls of the tagger's dialog template 103, by resource id.

namespace tagger_controls {

constexpr int dialog_template = 103;

constexpr int matches_group = 1010;  // group box retitled "Matches (N)"
constexpr int matches = 1011;        // list of matches, grouped by server
constexpr int artist = 1006;
constexpr int album = 1007;
constexpr int year = 1008;
constexpr int genre = 1009;
constexpr int various_artists = 1021;  // check box
constexpr int tracks = 1024;           // track list: "#", "Title", "Comment"
constexpr int wipe_tags = 1017;        // check box
constexpr int update_button = 1022;    // "&Update files"
constexpr int settings_button = 3;
constexpr int close_button = 2;        // also the window's close request

// Columns of the track list (column 0 is the track number, never edited).
constexpr int title_column = 1;
constexpr int comment_column = 2;
constexpr int track_columns = 3;

} // namespace tagger_controls
