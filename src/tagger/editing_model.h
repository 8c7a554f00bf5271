#pragma once
// How the chosen match is shown in the tagger's controls and read back. The dialog has no model
// of its own: it edits the match's disc_record in place, and stores the controls into it before
// showing another match, so every match keeps its own edits for as long as the dialog is open.

#include <string>
#include <string_view>

#include "cddb/disc_record.h"
#include "ui/dialog_view.h"

// The parts of `text` around its first " / ". False, leaving both outputs untouched, when `text`
// has no separator.
bool split_artist_title(std::string_view text, std::string& first, std::string& second);

// The disc artist and album of `record`'s DTITLE; without a separator both are the whole title.
void disc_title_parts(const disc_record& record, std::string& artist, std::string& album);

// A match as the matches list shows it: "Artist / Album (category)".
std::string match_label(const disc_record& record);

// Whether `record` can be written to an album of `track_count` files: one track per file.
bool fits_album(const disc_record& record, std::size_t track_count);

// Fills the disc edits, the various-artists box and the Title and Comment cells of the track
// rows below the record's track count (other rows keep their text).
void load_match_into_dialog(const disc_record& record, dialog_view& view);
// The reverse: DTITLE is rebuilt as artist + " / " + album even when the user left both alone.
void store_dialog_into_match(const dialog_view& view, disc_record& record);

// The match the controls show (none at first).
class current_match {
public:
    explicit current_match(dialog_view& view) : view_(view) {}

    disc_record* get() const { return record_; }
    // Shows `record` after storing the controls into the previous match. Null (a row without a
    // match) or the match already shown changes nothing.
    void switch_to(disc_record* record);
    // Stores the controls into the current match, if there is one.
    void store();

private:
    dialog_view& view_;
    disc_record* record_ = nullptr;
};
