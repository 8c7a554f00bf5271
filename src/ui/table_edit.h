#pragma once
// In-place editing of a list's cells: which columns the user may edit, writing the finished text
// into the cell, and where the editor goes next after Tab or Shift+Tab. The view draws the editor;
// this helper decides what its end means. Any dialog with an editable track list uses one.

#include <cstddef>
#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

#include "ui/dialog_view.h"

class table_edit_helper {
public:
    // How the view's editor ended.
    enum end_code : int { cancelled = 0, next_cell = 1, previous_cell = 2, accepted = 3 };

    // Edits cells of list `list` (with `column_count` columns) in the `editable` columns only.
    table_edit_helper(dialog_view& view, int list, int column_count, std::initializer_list<int> editable);

    int list() const { return list_; }
    bool is_editable(int column) const;
    // Opens the editor on (row, column) when that row exists and the column is editable; true
    // when it did.
    bool start(std::size_t row, int column);
    // The editor on (row, column) is ending with `text`: cancelled keeps the cell as it was; the
    // other codes write `text` into it at once.
    void on_edit_commit(std::size_t row, int column, const std::string& text, int code);
    // The editor on (row, column) is gone: Tab / Shift+Tab open it on the next / previous editable
    // cell (row by row; after the last or before the first cell editing just ends).
    void on_edit_end(std::size_t row, int column, int code);

private:
    struct cell {
        std::size_t row;
        int column;
    };
    std::optional<cell> after(std::size_t row, int column) const;
    std::optional<cell> before(std::size_t row, int column) const;

    dialog_view& view_;
    int list_;
    std::vector<bool> editable_;  // per column
};
