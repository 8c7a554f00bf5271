#include "ui/win32/dialog_traits.h"

#include "resources/resource.h"
#include "ui/edit_keys.h"

namespace {

// The size grip has no id in the template; the view gives it this one.
constexpr int size_grip_id = 0x7FF0;

const std::vector<dialog_traits>& all_traits() {
    static const std::vector<dialog_traits> traits = {
        {IDD_TAGGER,
         true,
         // The matches and the disc information share the width; year and genre split the
         // right half at three quarters; only the track list grows in height; the bottom row
         // stays at the bottom right.
         {{IDC_TAGGER_WIPE, 0, 1, 0, 1},
          {IDC_TAGGER_UPDATE, 1, 1, 1, 1},
          {IDC_TAGGER_SETTINGS, 1, 1, 1, 1},
          {IDC_TAGGER_CLOSE, 1, 1, 1, 1},
          {IDC_TAGGER_TRACK_GROUP, 0, 0, 1, 1},
          {IDC_TAGGER_TRACKS, 0, 0, 1, 1},
          {IDC_TAGGER_MATCHES_GROUP, 0, 0, 0.5, 0},
          {IDC_TAGGER_MATCHES, 0, 0, 0.5, 0},
          {IDC_TAGGER_DISC_GROUP, 0.5, 0, 1, 0},
          {IDC_TAGGER_ARTIST_LABEL, 0.5, 0, 0.5, 0},
          {IDC_TAGGER_ARTIST, 0.5, 0, 1, 0},
          {IDC_TAGGER_VARIOUS, 0.5, 0, 0.5, 0},
          {IDC_TAGGER_ALBUM_LABEL, 0.5, 0, 0.5, 0},
          {IDC_TAGGER_ALBUM, 0.5, 0, 1, 0},
          {IDC_TAGGER_YEAR_LABEL, 0.5, 0, 0.5, 0},
          {IDC_TAGGER_YEAR, 0.5, 0, 0.75, 0},
          {IDC_TAGGER_GENRE_LABEL, 0.75, 0, 0.75, 0},
          {IDC_TAGGER_GENRE, 0.75, 0, 1, 0},
          {size_grip_id, 1, 1, 1, 1}},
         270,
         170,
         true,
         {{IDC_TAGGER_ARTIST, "artist"}, {IDC_TAGGER_ALBUM, "album"}, {IDC_TAGGER_YEAR, "date"}, {IDC_TAGGER_GENRE, "genre"}},
         // Comments may run over several lines; Ctrl+Enter breaks a line there.
         {{IDC_TAGGER_TRACKS, 1, 0, "title"}, {IDC_TAGGER_TRACKS, 2, in_place::multi_line, "comment"}},
         {},
         false},
        // The release's texts: titles and artists suggest from the library while edited.
        {IDD_MUSICBRAINZ,
         false,
         {},
         0,
         0,
         false,
         {},
         {{IDC_MB_ALBUM, 1, 0, nullptr}, {IDC_MB_TRACKS, 1, 0, "title"}, {IDC_MB_TRACKS, 2, 0, "artist"}},
         {},
         false},
        // The preferences page: a child of the host's window, its two captions in bold.
        {IDD_PREFERENCES, false, {}, 0, 0, false, {}, {}, {IDC_PREFS_USER_CAPTION, IDC_PREFS_SERVER_CAPTION}, false},
        // The server editor is modal: its owner (the preferences window) waits disabled.
        {IDD_SERVER_EDITOR, true, {}, 0, 0, false, {}, {}, {}, true},
    };
    return traits;
}

} // namespace

int dialog_size_grip_id() { return size_grip_id; }

const dialog_traits& traits_of(int template_id) {
    for (const dialog_traits& t : all_traits())
        if (t.template_id == template_id) return t;
    static const dialog_traits plain{0, false, {}, 0, 0, false, {}, {}, {}, false};
    return plain;
}
