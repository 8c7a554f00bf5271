#pragma once
// A dialog without a window system: the template's controls kept in memory. The controller
// draws through the dialog_view side; a host or a test acts as the user through the other side
// (typing, clicking, selecting rows, editing cells) and reads back what the controls show.

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "ui/dialog_view.h"
#include "ui/headless/dialog_templates.h"

class headless_view final : public dialog_view {
public:
    struct message {
        std::string text, caption;
        std::uint32_t flags;
    };
    struct column {
        std::string title;
        int width;
        align alignment;
    };
    struct edit_position {
        int list;
        std::size_t row;
        int column;
    };

    headless_view(const dialog_template& t, HWND parent, dialog_events& events);
    ~headless_view() override;

    // The view behind a handle this class gave out (null for any other handle).
    static headless_view* from_handle(HWND handle);

    // dialog_view: what the controller does.
    HWND handle() const override;
    void set_title(const std::string& text) override { title_ = text; }
    std::string get_text(int id) const override { return at(id).text; }
    void set_text(int id, const std::string& text) override { at(id).text = text; }
    int get_check(int id) const override { return at(id).check; }
    void set_check(int id, bool checked) override { at(id).check = checked ? 1 : 0; }
    void enable(int id, bool enabled) override { at(id).enabled = enabled; }
    bool is_enabled(int id) const override { return at(id).enabled; }
    void enable_window(bool enabled) override { window_enabled_ = enabled; }
    void show() override { shown_ = true; }
    void destroy() override { destroyed_ = true; }
    int message_box(const std::string& text, const std::string& caption, std::uint32_t flags) override;
    void combo_add(int id, const std::string& text) override { at(id).items.push_back(text); }
    void combo_select(int id, int index) override { at(id).selected_item = index; }
    void list_add_column(int id, const std::string& title, int width, align alignment) override;
    void list_clear(int id) override;
    std::size_t list_add_row(int id, const std::string& text, std::intptr_t data, std::size_t group) override;
    void list_delete_row(int id, std::size_t row) override;
    std::size_t list_row_count(int id) const override { return at(id).rows.size(); }
    void list_set_cell(int id, std::size_t row, int column, const std::string& text) override;
    std::string list_get_cell(int id, std::size_t row, int column) const override;
    std::intptr_t list_row_data(int id, std::size_t row) const override { return row_at(id, row).data; }
    void list_enable_groups(int id, bool enabled) override { at(id).groups_enabled = enabled; }
    void list_add_group(int id, std::size_t group, const std::string& header) override { at(id).groups[group] = header; }
    void list_select(int id, std::optional<std::size_t> row) override;
    std::optional<std::size_t> list_selection(int id) const override { return at(id).selection; }
    std::optional<std::size_t> list_focus(int id) const override { return at(id).focus; }
    void list_set_extended_style(int id, std::uint32_t style) override { at(id).extended_style |= style; }
    void list_fit_column(int id, int column) override;
    void list_start_edit(int id, std::size_t row, int column) override;
    void list_finish_edit() override { leave_editor(); }

    // The user's side.
    void type_text(int id, const std::string& text);
    // Presses a button; a check box toggles first, as a click on it does.
    void click(int id);
    // The window's close request (the title bar's close button, or Escape).
    void close() { events_.on_command(2); }
    // Selects a row (std::nullopt: none) as a click on it would.
    void select_row(int id, std::optional<std::size_t> row);
    void click_cell(int id, std::size_t row, int column, bool double_click = false);
    void press_key(int id, unsigned key, bool shift = false);
    // The open in-place editor, if any; typing into it; ending it with `text` and `end_code`.
    // Acting on any other control first ends an open editor with what it holds, as the focus
    // leaving a real one does.
    std::optional<edit_position> editing() const { return editing_; }
    void type_in_editor(const std::string& text);
    void finish_edit(const std::string& text, int end_code);

    // What the window shows.
    const std::string& title() const { return title_; }
    bool window_enabled() const { return window_enabled_; }
    bool shown() const { return shown_; }
    bool destroyed() const { return destroyed_; }
    const std::vector<message>& messages() const { return messages_; }
    const std::vector<column>& columns(int id) const { return at(id).columns; }
    bool groups_enabled(int id) const { return at(id).groups_enabled; }
    // The header of the group row `row` belongs to (empty when it has none).
    std::string row_group_header(int id, std::size_t row) const;
    std::uint32_t extended_style(int id) const { return at(id).extended_style; }
    const std::vector<std::string>& combo_items(int id) const { return at(id).items; }
    int combo_selection(int id) const { return at(id).selected_item; }
    // The answer the next message boxes give (1: OK).
    void set_message_box_answer(int button) { answer_ = button; }

private:
    struct row {
        std::vector<std::string> cells;
        std::intptr_t data = 0;
        std::size_t group = no_group;
    };
    struct control {
        control_kind kind = control_kind::label;
        std::string text;
        int check = 0;
        bool enabled = true;
        std::vector<std::string> items;
        int selected_item = -1;
        std::vector<column> columns;
        std::vector<row> rows;
        bool groups_enabled = false;
        std::map<std::size_t, std::string> groups;
        std::optional<std::size_t> selection, focus;
        std::uint32_t extended_style = 0;
    };
    control& at(int id);
    const control& at(int id) const;
    const row& row_at(int id, std::size_t r) const;
    void end_editor(int end_code);
    void leave_editor();

    dialog_events& events_;
    std::map<int, control> controls_;
    std::string title_;
    bool window_enabled_ = true, shown_ = false, destroyed_ = false;
    std::vector<message> messages_;
    int answer_ = 1;
    std::optional<edit_position> editing_;
    std::string editor_text_;
};
