#include "musicbrainz/release_dialog.h"

#include <exception>
#include <optional>
#include <string>
#include <utility>

#include <tunehall/core.h>
#include <tunehall/window_service.h>

#include "musicbrainz/release_dialog_controls.h"
#include "musicbrainz/release_text.h"
#include "musicbrainz/tag_mapping.h"
#include "ui/open_dialogs.h"
#include "ui/table_edit.h"
#include "ui/view_factory.h"

using namespace release_dialog_controls;

namespace {

constexpr const char* caption = "MusicBrainz Lookup";
constexpr std::uint32_t error_box = 0x10;  // error icon, OK button
constexpr std::uint32_t list_styles = 0x10021;  // grid lines, full-row select, double buffering

} // namespace

// The controller: all behaviour of the dialog; the view only binds the controls.
class release_dialog final : private dialog_events, public open_dialog {
public:
    release_dialog(HWND parent, const track_list& tracks, std::shared_ptr<const musicbrainz_release> release,
                   service_ref<tagging_done> done)
        : parent_(parent), tracks_(tracks), release_(std::move(release)), done_(std::move(done)) {}
    release_dialog(const release_dialog&) = delete;
    release_dialog& operator=(const release_dialog&) = delete;

    void create();
    HWND window() const { return view_->handle(); }
    void close_now() override { finish(); }

private:
    void fill();
    void save();
    // Destroys the window and this object; `report` tells the caller that nothing was written.
    void finish(bool report = true);
    table_edit_helper* cells_of(int list);
    // The editor for a cell of `row`, or null when the row is not edited.
    table_edit_helper* editor_for(int list, std::size_t row);

    void on_command(int id) override;
    void on_list_click(int id, std::size_t row, int column, bool double_click) override;
    void on_list_key(int id, unsigned key, bool shift) override;
    void on_cell_edit_commit(int id, std::size_t row, int column, const std::string& text, int end_code) override;
    void on_cell_edit_end(int id, std::size_t row, int column, int end_code) override;

    HWND parent_;
    track_list tracks_;
    std::shared_ptr<const musicbrainz_release> release_;
    service_ref<tagging_done> done_;
    std::unique_ptr<dialog_view> view_;
    std::optional<table_edit_helper> album_cells_, track_cells_;
    bool closed_ = false;
};

void open_release_dialog(HWND parent, const track_list& tracks, std::shared_ptr<const musicbrainz_release> release,
                         service_ref<tagging_done> done) {
    auto dialog = std::make_unique<release_dialog>(parent, tracks, std::move(release), std::move(done));
    dialog->create();
    if (auto windows = try_host_service<modeless_window_manager>()) windows->add(dialog->window(), caption);
    open_dialogs::add(dialog.get());
    dialog.release();  // from now on its closing deletes it
}

musicbrainz_release release_from_lists(const dialog_view& view, const musicbrainz_release& base) {
    musicbrainz_release r = base;
    r.title = view.list_get_cell(album_list, title_row, value_column);
    r.album_artist = split_artists(view.list_get_cell(album_list, artist_row, value_column));
    r.date = view.list_get_cell(album_list, date_row, value_column);
    read_disc_text(view.list_get_cell(album_list, disc_row, value_column), r);
    r.matched_by_toc = view.list_row_count(album_list) > match_row;
    const std::size_t rows = view.list_row_count(tracks);
    r.tracks.resize(rows);
    for (std::size_t i = 0; i < rows; ++i) {
        r.tracks[i].title = view.list_get_cell(tracks, i, title_column);
        r.tracks[i].artist = split_artists(view.list_get_cell(tracks, i, artist_column));
    }
    return r;
}

void release_dialog::create() {
    view_ = create_dialog_view(dialog_template, parent_, *this);
    album_cells_.emplace(*view_, album_list, album_columns, std::initializer_list<int>{value_column});
    track_cells_.emplace(*view_, tracks, track_columns, std::initializer_list<int>{title_column, artist_column});
    fill();
    view_->show();
}

void release_dialog::fill() {
    dialog_view& view = *view_;
    const musicbrainz_release& r = *release_;
    view.list_set_extended_style(album_list, list_styles);
    view.list_set_extended_style(tracks, list_styles);

    view.list_add_column(album_list, "Name", 100, dialog_view::align::left);
    view.list_add_column(album_list, "Value", 200, dialog_view::align::left);
    const std::pair<const char*, std::string> album_rows[] = {
        {"Title", r.title}, {"Artist", join_artists(r.album_artist)}, {"Date", r.date}, {"Disc", disc_text(r)}};
    for (auto& [name, value] : album_rows) {
        std::size_t row = view.list_add_row(album_list, name);
        view.list_set_cell(album_list, row, value_column, value);
    }
    if (r.matched_by_toc) {
        std::size_t row = view.list_add_row(album_list, match_row_name);
        view.list_set_cell(album_list, row, value_column, match_by_toc_text);
    }

    view.list_add_column(tracks, "No", 50, dialog_view::align::left);
    view.list_add_column(tracks, "Title", 150, dialog_view::align::left);
    view.list_add_column(tracks, "Artist", 100, dialog_view::align::left);
    for (std::size_t i = 0; i < r.tracks.size(); ++i) {
        std::size_t row = view.list_add_row(tracks, std::to_string(i + 1));
        view.list_set_cell(tracks, row, title_column, r.tracks[i].title);
        view.list_set_cell(tracks, row, artist_column, join_artists(r.tracks[i].artist));
    }
}

void release_dialog::save() {
    closed_ = true;
    std::shared_ptr<const musicbrainz_release> edited;
    try {
        edited = std::make_shared<const musicbrainz_release>(release_from_lists(*view_, *release_));
    } catch (const std::exception& e) {
        // A "Disc" text that is not a number: nothing is written and the user may correct it.
        closed_ = false;
        view_->message_box(e.what(), caption, error_box);
        return;
    }
    try {
        // From here on the update tells the caller how the writing went.
        apply_musicbrainz_release(tracks_, std::move(edited), parent_, make_service<update_reporter>(done_));
    } catch (const std::exception& e) {
        closed_ = false;
        view_->message_box(e.what(), caption, error_box);
        return;
    }
    finish(/*report=*/false);
}

void release_dialog::finish(bool report) {
    closed_ = true;
    open_dialogs::remove(this);
    if (auto windows = try_host_service<modeless_window_manager>()) windows->remove(view_->handle());
    view_->destroy();
    service_ref<tagging_done> done = std::move(done_);
    delete this;
    if (done && report) done->on_outcome(tagging_outcome::aborted);
}

table_edit_helper* release_dialog::editor_for(int list, std::size_t row) {
    if (list == album_list && row > disc_row) return nullptr;  // the match row only informs
    return cells_of(list);
}

table_edit_helper* release_dialog::cells_of(int list) {
    if (list == album_list) return &*album_cells_;
    if (list == tracks) return &*track_cells_;
    return nullptr;
}

void release_dialog::on_command(int id) {
    if (closed_) return;
    if (id == save_button) save();
    else if (id == cancel_button) finish();
}

void release_dialog::on_list_click(int id, std::size_t row, int column, bool double_click) {
    if (!double_click) return;
    if (table_edit_helper* cells = editor_for(id, row)) cells->start(row, column);
}

void release_dialog::on_list_key(int id, unsigned key, bool shift) {
    if (key != dialog_view::key_f2) return;
    if (std::optional<std::size_t> row = view_->list_focus(id))
        if (table_edit_helper* cells = editor_for(id, *row))
            cells->start(*row, id == tracks && shift ? artist_column : title_column);
}

void release_dialog::on_cell_edit_commit(int id, std::size_t row, int column, const std::string& text, int end_code) {
    if (table_edit_helper* cells = cells_of(id)) cells->on_edit_commit(row, column, text, end_code);
}

void release_dialog::on_cell_edit_end(int id, std::size_t row, int column, int end_code) {
    if (table_edit_helper* cells = cells_of(id)) cells->on_edit_end(row, column, end_code);
}
