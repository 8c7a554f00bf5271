#include "tagger/tagger_controller.h"

#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <string>

#include <tunehall/console.h>
#include <tunehall/core.h>
#include <tunehall/preferences_page.h>
#include <tunehall/tag_update.h>
#include <tunehall/window_service.h>

#include "config/preferences_page_guid.h"
#include "config/settings.h"
#include "tagger/editing_model.h"
#include "tagger/tag_writer.h"
#include "tagger/tagger_controls.h"
#include "ui/table_edit.h"
#include "ui/view_factory.h"

using namespace tagger_controls;

namespace {

constexpr const char* caption = "discora tagger";
constexpr std::uint32_t error_box = 0x10;  // error icon, OK button
constexpr std::uint32_t label_tips = 0x4000, full_row_select = 0x20;

} // namespace

// The controller: all behaviour of the dialog; the view only binds the controls.
class tagger_dialog final : private dialog_events {
public:
    explicit tagger_dialog(service_ref<lookup_state> state) : state_(std::move(state)) {}
    ~tagger_dialog();
    tagger_dialog(const tagger_dialog&) = delete;
    tagger_dialog& operator=(const tagger_dialog&) = delete;

    // Creates the window from its template and fills it.
    void create(HWND parent);
    HWND window() const { return view_->handle(); }

private:
    class completion;

    void start();
    void fill_matches();
    // "Update files": checks, then hands the current match's tags to the host.
    void write_match();
    void update_finished(std::uint32_t result);
    // Destroys the window and this object.
    void destroy_dialog();

    void on_command(int id) override;
    void on_list_selection_changed(int id) override;
    void on_list_click(int id, std::size_t row, int column, bool double_click) override;
    void on_list_key(int id, unsigned key, bool shift) override;
    void on_cell_edit_commit(int id, std::size_t row, int column, const std::string& text, int end_code) override;
    void on_cell_edit_end(int id, std::size_t row, int column, int end_code) override;

    service_ref<lookup_state> state_;  // owns the records the match rows point at
    std::unique_ptr<dialog_view> view_;
    std::optional<current_match> match_;
    std::optional<table_edit_helper> cells_;
    service_ref<completion> pending_;  // the running update's notification, if any
};

// The host holds the notification until its update ends, which may be after the dialog closed:
// closing detaches it, so a late completion finds no dialog.
class tagger_dialog::completion : public completion_notification {
public:
    explicit completion(tagger_dialog* dialog) : dialog_(dialog) {}
    void detach() { dialog_ = nullptr; }
    void on_completion(std::uint32_t task_id, std::uint32_t result) override {
        if (dialog_ && task_id == tagger_update_task_id) dialog_->update_finished(result);
    }

private:
    tagger_dialog* dialog_;
};

void open_tagger_dialog(HWND parent, service_ref<lookup_state> state) {
    auto dialog = std::make_unique<tagger_dialog>(std::move(state));
    dialog->create(parent);
    host_service<modeless_window_manager>()->add(dialog->window(), caption);
    dialog.release();  // from now on its window's close deletes it
}

tagger_dialog::~tagger_dialog() {
    // The host may still hold the notification of an update in flight.
    if (pending_) pending_->detach();
}

void tagger_dialog::create(HWND parent) {
    view_ = create_dialog_view(dialog_template, parent, *this);
    start();
}

void tagger_dialog::start() {
    dialog_view& view = *view_;
    match_.emplace(view);
    cells_.emplace(view, tracks, track_columns, std::initializer_list<int>{title_column, comment_column});

    view.list_add_column(matches, "", 0, dialog_view::align::left);
    view.list_set_extended_style(matches, label_tips);
    view.set_check(wipe_tags, cfg_wipe_existing_tags.get() != 0);

    view.list_set_extended_style(tracks, full_row_select);
    view.list_add_column(tracks, "#", 25, dialog_view::align::right);
    view.list_add_column(tracks, "Title", 250, dialog_view::align::left);
    view.list_add_column(tracks, "Comment", 250, dialog_view::align::left);
    for (std::size_t i = 0; i < state_->tracks.size(); ++i) view.list_add_row(tracks, std::to_string(i + 1));

    const std::size_t n = state_->record_count();
    if (n == 0) {
        view.enable(update_button, false);
        view.show();
        return;
    }
    view.set_text(matches_group, "Matches (" + std::to_string(n) + ")");
    fill_matches();
    view.list_fit_column(matches, 0);

    for (std::size_t row = 0, rows = view.list_row_count(matches); row < rows; ++row) {
        if (auto* record = reinterpret_cast<disc_record*>(view.list_row_data(matches, row))) {
            view.list_select(matches, row);
            match_->switch_to(record);
            break;
        }
    }
    view.show();
}

void tagger_dialog::fill_matches() {
    dialog_view& view = *view_;
    // Group headers only help to tell servers apart.
    const bool grouped = state_->results.size() >= 2;
    if (grouped) view.list_enable_groups(matches, true);
    std::size_t group_id = 0;
    for (server_result& server : state_->results) {
        std::size_t group = dialog_view::no_group;
        if (grouped) {
            group = ++group_id;
            view.list_add_group(matches, group,
                                server.label + " (" + std::to_string(server.records.size()) + " matches)");
        }
        if (server.records.empty()) view.list_add_row(matches, "No matches found", 0, group);
        for (disc_record& record : server.records)
            view.list_add_row(matches, match_label(record), reinterpret_cast<std::intptr_t>(&record), group);
    }
}

void tagger_dialog::write_match() {
    disc_record* record = match_->get();
    if (!record) {
        view_->message_box("You need to select one of the matches first.", caption, error_box);
        return;
    }
    // What is written is what the controls show, an in-place edit just finished included.
    match_->store();
    if (!fits_album(*record, state_->tracks.size())) {
        console_print("Error: track count mismatch");
        return;
    }
    const bool wipe = view_->get_check(wipe_tags) == 1;
    pending_ = make_service<completion>(this);
    try {
        start_tag_update(*record, state_->tracks, wipe, view_->handle(), pending_);
    } catch (const std::exception& e) {
        pending_->detach();
        pending_.reset();
        view_->message_box(e.what(), caption, error_box);
        return;
    }
    // Nothing may change while the host writes; the completion enables the window again.
    view_->enable_window(false);
}

void tagger_dialog::update_finished(std::uint32_t result) {
    // The host calls a notification once: this update is over either way.
    if (pending_) {
        pending_->detach();
        pending_.reset();
    }
    if (result == completion_notification::result_success) {
        destroy_dialog();
        return;
    }
    // Failed or aborted: the host has told the user; the edits stay for another try.
    view_->enable_window(true);
}

void tagger_dialog::destroy_dialog() {
    host_service<modeless_window_manager>()->remove(view_->handle());
    view_->destroy();
    delete this;
}

void tagger_dialog::on_command(int id) {
    switch (id) {
    case update_button:
        write_match();
        break;
    case wipe_tags:
        cfg_wipe_existing_tags.set(view_->get_check(wipe_tags) == 1 ? 1 : 0);
        break;
    case settings_button:
        // The preferences window is the host's; a host without one has nothing to open.
        if (auto window = try_host_service<preferences_window>()) window->show_page(preferences_page_guid);
        break;
    case close_button:
        destroy_dialog();
        break;
    default:
        break;
    }
}

void tagger_dialog::on_list_selection_changed(int id) {
    if (id != matches) return;
    std::optional<std::size_t> row = view_->list_selection(matches);
    if (!row) return;
    // A "No matches found" row carries no record and changes nothing.
    match_->switch_to(reinterpret_cast<disc_record*>(view_->list_row_data(matches, *row)));
}

void tagger_dialog::on_list_click(int id, std::size_t row, int column, bool double_click) {
    // The first click of a double click already opened the editor.
    if (id == tracks && !double_click) cells_->start(row, column);
}

void tagger_dialog::on_list_key(int id, unsigned key, bool shift) {
    if (id != tracks || key != dialog_view::key_f2) return;
    if (std::optional<std::size_t> row = view_->list_focus(tracks)) cells_->start(*row, shift ? comment_column : title_column);
}

void tagger_dialog::on_cell_edit_commit(int id, std::size_t row, int column, const std::string& text, int end_code) {
    if (id == tracks) cells_->on_edit_commit(row, column, text, end_code);
}

void tagger_dialog::on_cell_edit_end(int id, std::size_t row, int column, int end_code) {
    if (id == tracks) cells_->on_edit_end(row, column, end_code);
}
