#include "tagger/editing_model.h"

#include <algorithm>

#include "cddb/xmcd_parser.h"
#include "tagger/tagger_controls.h"

namespace {

constexpr std::string_view separator = " / ";

// Track rows the record and the list have in common: a match may have fewer tracks than the
// lookup had files (the writer refuses that later), or more.
std::size_t shared_rows(const disc_record& record, const dialog_view& view) {
    return std::min(record.get_track_count(), view.list_row_count(tagger_controls::tracks));
}

} // namespace

bool split_artist_title(std::string_view text, std::string& first, std::string& second) {
    std::size_t at = text.find(separator);
    if (at == std::string_view::npos) return false;
    first.assign(text.substr(0, at));
    second.assign(text.substr(at + separator.size()));
    return true;
}

void disc_title_parts(const disc_record& record, std::string& artist, std::string& album) {
    // The same split that decided the various-artists flag when the entry was read.
    artist_and_album parts = split_dtitle(record.get_field(disc_record::dtitle));
    artist.assign(parts.artist);
    album.assign(parts.album);
}

std::string match_label(const disc_record& record) {
    std::string artist, album;
    disc_title_parts(record, artist, album);
    return artist + " / " + album + " (" + record.get_field(disc_record::category) + ")";
}

bool fits_album(const disc_record& record, std::size_t track_count) { return record.get_track_count() == track_count; }

void load_match_into_dialog(const disc_record& record, dialog_view& view) {
    using namespace tagger_controls;
    std::string disc_artist, disc_album;
    disc_title_parts(record, disc_artist, disc_album);
    view.set_text(artist, disc_artist);
    view.set_text(album, disc_album);
    view.set_text(year, record.get_field(disc_record::dyear));
    view.set_text(genre, record.get_field(disc_record::dgenre));
    view.set_check(various_artists, record.get_various_artists());
    for (std::size_t i = 0, n = shared_rows(record, view); i < n; ++i) {
        view.list_set_cell(tracks, i, title_column, record.get_track_field(i, disc_record::ttitle));
        view.list_set_cell(tracks, i, comment_column, record.get_track_field(i, disc_record::extt));
    }
}

void store_dialog_into_match(const dialog_view& view, disc_record& record) {
    using namespace tagger_controls;
    std::string dtitle = view.get_text(artist);
    dtitle += separator;
    dtitle += view.get_text(album);
    record.set_field(disc_record::dtitle, dtitle.c_str(), dtitle.size());
    std::string text = view.get_text(year);
    record.set_field(disc_record::dyear, text.c_str(), text.size());
    text = view.get_text(genre);
    record.set_field(disc_record::dgenre, text.c_str(), text.size());
    // An indeterminate box is not a yes.
    record.set_various_artists(view.get_check(various_artists) == 1);
    for (std::size_t i = 0, n = shared_rows(record, view); i < n; ++i) {
        text = view.list_get_cell(tracks, i, title_column);
        record.set_track_field(i, disc_record::ttitle, text.c_str(), text.size());
        text = view.list_get_cell(tracks, i, comment_column);
        record.set_track_field(i, disc_record::extt, text.c_str(), text.size());
    }
}

void current_match::switch_to(disc_record* record) {
    if (!record || record == record_) return;
    store();
    record_ = record;
    load_match_into_dialog(*record_, view_);
}

void current_match::store() {
    if (!record_) return;
    // An edit still open in a track cell belongs to this match.
    view_.list_finish_edit();
    store_dialog_into_match(view_, *record_);
}
