#include "config/preferences_page.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include <tunehall/core.h>
#include <tunehall/dark_mode.h>
#include <tunehall/shared.h>

#include "config/preferences_controls.h"
#include "config/preferences_page_text_width.h"
#include "config/server_editor.h"
#include "config/server_list_retrieval.h"
#include "config/server_list_retrieval_filter.h"
#include "config/settings.h"
#include "ui/view_factory.h"

namespace {

using namespace preferences_controls;

// Measured only, to size the description column; no row carries it.
constexpr const char* description_sample = "Random discora server";
// Room for the column's padding beside the measured text.
constexpr int column_margin = 15;
constexpr std::uint32_t full_row_select = 0x20, double_buffer = 0x10000;

// The modal-dialog rule of the page's buttons: while the host has a modal dialog open, a button
// that would open another brings the open one forward instead.
bool may_open_modal_dialog() {
    if (ModalDialog_CanCreateNew()) return true;
    ModalDialog_PokeExisting();
    return false;
}

class server_preferences_page : public preferences_page_instance, private dialog_events {
public:
    server_preferences_page(HWND parent, service_ref<preferences_page_callback> callback)
        : parent_(parent), callback_(std::move(callback)) {
        view_ = create_dialog_view(dialog_template, parent, *this);
        initialise();
    }

    ~server_preferences_page() override {
        // Whatever was not applied is dropped with the working list.
        dark_mode_.reset();
        view_->destroy();
    }

    std::uint32_t get_state() override {
        return state_resettable | state_dark_mode_supported | (changed_ ? state_changed : 0u);
    }

    HWND get_wnd() override { return view_->handle(); }

    void apply() override {
        cfg_email.set(view_->get_text(email_field));
        save_server_list(servers_);
        changed_ = false;
    }

    void reset() override {
        view_->set_text(email_field, default_email);
        // A system edit control reports the new text itself; marking here as well is harmless
        // (the host hears of the first change only) and holds for every view.
        mark_changed();
        reset_server_list(servers_);
        fill_list();
    }

private:
    void initialise() {
        dialog_view& view = *view_;
        // The page lives in the host's window and follows its mode, where the host has one.
        if (auto dark = try_host_service<dark_mode_helper>()) dark_mode_ = dark->attach(view.handle());
        servers_ = load_server_list();

        server_record sample;
        default_server_record(sample);
        view.list_add_column(server_list_view, "Server",
                             list_text_width(view, server_list_view, sample.get_server()) + column_margin,
                             dialog_view::align::left);
        view.list_add_column(server_list_view, "Description",
                             list_text_width(view, server_list_view, description_sample) + column_margin,
                             dialog_view::align::left);
        view.list_set_extended_style(server_list_view, full_row_select | double_buffer);
        fill_list();

        // Put in before the page counts as initialised, so that its change notice is not a change.
        view.set_text(email_field, cfg_email.get());
        initialised_ = true;
    }

    // One row per server this component can reach, carrying the server's position in the list.
    void fill_list() {
        dialog_view& view = *view_;
        view.list_clear(server_list_view);
        supported_protocol_filter reachable;
        for (std::size_t i = 0; i < servers_.size(); ++i) {
            const server_record& server = servers_[i];
            if (!reachable.supports(server.get_protocol())) continue;
            std::size_t row = view.list_add_row(server_list_view, server.get_server(), static_cast<std::intptr_t>(i));
            view.list_set_cell(server_list_view, row, description_column, server.get_description());
        }
    }

    void mark_changed() {
        if (!initialised_ || changed_) return;
        changed_ = true;
        if (callback_) callback_->on_state_changed();
    }

    // The selected row's position, taken as an index into the working list (the rows and the
    // list agree whenever every server's protocol is supported), when it is one.
    std::optional<std::size_t> selected_index() const {
        std::optional<std::size_t> row = view_->list_selection(server_list_view);
        if (!row || *row >= servers_.size()) return std::nullopt;
        return row;
    }

    // Selects `row` when the list view has it.
    void select_row(std::size_t row) {
        if (row < view_->list_row_count(server_list_view)) view_->list_select(server_list_view, row);
    }

    void add_server() {
        if (!may_open_modal_dialog()) return;
        server_record added;
        default_server_record(added);
        if (!run_server_editor(parent_, added, server_editor_mode::add)) return;
        servers_.push_back(std::move(added));
        fill_list();
        select_row(servers_.size() - 1);
        mark_changed();
    }

    void edit_server() {
        std::optional<std::size_t> index = selected_index();
        if (!index) return;
        server_record edited = servers_[*index];
        if (!run_server_editor(parent_, edited, server_editor_mode::edit)) return;
        servers_[*index] = std::move(edited);
        fill_list();
        mark_changed();
    }

    void remove_server() {
        std::optional<std::size_t> index = selected_index();
        if (!index) return;
        if (*index < view_->list_row_count(server_list_view)) view_->list_delete_row(server_list_view, *index);
        servers_.erase(servers_.begin() + static_cast<std::ptrdiff_t>(*index));
        // Kept on purpose: removing any row but the last selects the last row; removing the last
        // row selects nothing (the position is past the end).
        if (!servers_.empty()) select_row(std::max(servers_.size() - 1, *index));
        mark_changed();
    }

    void retrieve_servers() {
        if (!may_open_modal_dialog()) return;
        std::optional<std::size_t> index = selected_index();
        if (!index) return;
        const server_record source = servers_[*index];
        std::optional<server_list> retrieved = retrieve_server_list(source, parent_, view_->handle());
        if (!retrieved) return;
        servers_ = std::move(*retrieved);
        fill_list();
        mark_changed();
    }

    void on_command(int id) override {
        switch (id) {
        case add_button:
            add_server();
            break;
        case edit_button:
            if (may_open_modal_dialog()) edit_server();
            break;
        case remove_button:
            remove_server();
            break;
        case retrieve_button:
            retrieve_servers();
            break;
        }
    }

    void on_edit_changed(int id) override {
        if (id == email_field) mark_changed();
    }

    void on_list_click(int id, std::size_t, int, bool double_click) override {
        // A double click edits at once: no dialog of this page can be open under the user's click.
        if (id == server_list_view && double_click) edit_server();
    }

    HWND parent_;
    service_ref<preferences_page_callback> callback_;
    service_ref<dark_mode_attachment> dark_mode_;  // held while the page exists
    std::unique_ptr<dialog_view> view_;
    server_list servers_;
    bool changed_ = false;
    bool initialised_ = false;
};

} // namespace

service_ref<preferences_page_instance> open_preferences_page(HWND parent, service_ref<preferences_page_callback> callback) {
    return make_service<server_preferences_page>(parent, std::move(callback));
}
