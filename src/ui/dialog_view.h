#pragma once
// What a dialog controller may do with its window: controls addressed by their resource ids.
// The Win32 view is a real dialog made from its resource template; the headless view keeps the
// same controls in memory for the command line and the native tests. Controllers hold all the
// behaviour; views only bind controls.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include <tunehall/platform.h>

// What happens in the window, reported to the controller (main thread).
class dialog_events {
public:
    // A button was pressed (or the window's close request: id 2).
    virtual void on_command(int id) = 0;
    // The text of edit control `id` changed.
    virtual void on_edit_changed(int id) { (void)id; }
    // The selected row of list `id` changed.
    virtual void on_list_selection_changed(int id) { (void)id; }
    // A click (`double_click` false) or double click on a cell of list `id`.
    virtual void on_list_click(int id, std::size_t row, int column, bool double_click) {
        (void)id; (void)row; (void)column; (void)double_click;
    }
    // A key went down in list `id` (virtual-key code; whether Shift was held).
    virtual void on_list_key(int id, unsigned key, bool shift) { (void)id; (void)key; (void)shift; }
    // The in-place editor on (row, column) of list `id` is ending with `end_code` (0 cancelled,
    // 1 Tab, 2 Shift+Tab, 3 Enter) and holds `text`. Told before anything else reaches the window
    // (such as the click that took the focus from the editor and selects another row), so that
    // the text lands in the cell while that cell still shows what it was typed for.
    virtual void on_cell_edit_commit(int id, std::size_t row, int column, const std::string& text, int end_code) {
        (void)id; (void)row; (void)column; (void)text; (void)end_code;
    }
    // Then, once the editor is gone: the same end, for where editing goes next.
    virtual void on_cell_edit_end(int id, std::size_t row, int column, int end_code) {
        (void)id; (void)row; (void)column; (void)end_code;
    }

protected:
    ~dialog_events() = default;
};

class dialog_view {
public:
    enum class align { left, right, center };
    static constexpr unsigned key_f2 = 0x71;
    static constexpr std::size_t no_group = static_cast<std::size_t>(-1);

    virtual ~dialog_view() = default;

    // The window (a real HWND on Windows, an opaque handle of the headless view elsewhere).
    virtual HWND handle() const = 0;
    // The window's title, and any control's text.
    virtual void set_title(const std::string& text) = 0;
    virtual std::string get_text(int id) const = 0;
    virtual void set_text(int id, const std::string& text) = 0;
    // Check boxes: 0 unchecked, 1 checked, 2 indeterminate.
    virtual int get_check(int id) const = 0;
    virtual void set_check(int id, bool checked) = 0;
    virtual void enable(int id, bool enabled) = 0;
    virtual bool is_enabled(int id) const = 0;
    // The whole window.
    virtual void enable_window(bool enabled) = 0;
    virtual void show() = 0;
    // Destroys the window; the controller must not touch the view afterwards.
    virtual void destroy() = 0;
    // A modal message box owned by the window; returns the button pressed (1 for OK).
    virtual int message_box(const std::string& text, const std::string& caption, std::uint32_t flags) = 0;

    // Drop-down lists.
    virtual void combo_add(int id, const std::string& text) = 0;
    virtual void combo_select(int id, int index) = 0;

    // List views (report view).
    virtual void list_add_column(int id, const std::string& title, int width, align alignment) = 0;
    virtual void list_clear(int id) = 0;
    // Appends a row whose first cell is `text`, carrying `data`, in group `group` (no_group:
    // none); returns its index.
    virtual std::size_t list_add_row(int id, const std::string& text, std::intptr_t data = 0, std::size_t group = no_group) = 0;
    virtual void list_delete_row(int id, std::size_t row) = 0;
    virtual std::size_t list_row_count(int id) const = 0;
    virtual void list_set_cell(int id, std::size_t row, int column, const std::string& text) = 0;
    virtual std::string list_get_cell(int id, std::size_t row, int column) const = 0;
    virtual std::intptr_t list_row_data(int id, std::size_t row) const = 0;
    // Grouping: on, and a group with its header (group ids count from 1).
    virtual void list_enable_groups(int id, bool enabled) = 0;
    virtual void list_add_group(int id, std::size_t group, const std::string& header) = 0;
    // Selects, focuses and scrolls to `row`; std::nullopt clears the selection.
    virtual void list_select(int id, std::optional<std::size_t> row) = 0;
    virtual std::optional<std::size_t> list_selection(int id) const = 0;
    // The focused row (F2 edits it).
    virtual std::optional<std::size_t> list_focus(int id) const = 0;
    // Extended list styles (full-row select 0x20, grid lines 0x1, double buffering 0x10000,
    // label tips 0x4000).
    virtual void list_set_extended_style(int id, std::uint32_t style) = 0;
    // Sizes `column` to fit its contents and its header.
    virtual void list_fit_column(int id, int column) = 0;
    // Opens the in-place editor over (row, column); the view reports its end through
    // dialog_events::on_cell_edit_commit and then on_cell_edit_end.
    virtual void list_start_edit(int id, std::size_t row, int column) = 0;
    // Ends the open in-place editor now, keeping what it holds, as the focus leaving it does
    // (nothing when none is open). List views may report a click's new selection before the
    // editor loses the focus: a controller about to read the cells calls this first.
    virtual void list_finish_edit() = 0;
};
