#include "ui/table_edit.h"

table_edit_helper::table_edit_helper(dialog_view& view, int list, int column_count, std::initializer_list<int> editable)
    : view_(view), list_(list), editable_(static_cast<std::size_t>(column_count > 0 ? column_count : 0), false) {
    for (int c : editable)
        if (c >= 0 && c < column_count) editable_[static_cast<std::size_t>(c)] = true;
}

bool table_edit_helper::is_editable(int column) const {
    return column >= 0 && static_cast<std::size_t>(column) < editable_.size() && editable_[static_cast<std::size_t>(column)];
}

bool table_edit_helper::start(std::size_t row, int column) {
    if (!is_editable(column) || row >= view_.list_row_count(list_)) return false;
    view_.list_start_edit(list_, row, column);
    return true;
}

void table_edit_helper::on_edit_commit(std::size_t row, int column, const std::string& text, int code) {
    // The rows may have changed while the editor was open; a vanished cell takes nothing.
    if (code == cancelled || row >= view_.list_row_count(list_)) return;
    view_.list_set_cell(list_, row, column, text);
}

void table_edit_helper::on_edit_end(std::size_t row, int column, int code) {
    if (row >= view_.list_row_count(list_)) return;
    std::optional<cell> to;
    if (code == next_cell) to = after(row, column);
    else if (code == previous_cell) to = before(row, column);
    if (to) view_.list_start_edit(list_, to->row, to->column);
}

std::optional<table_edit_helper::cell> table_edit_helper::after(std::size_t row, int column) const {
    const int columns = static_cast<int>(editable_.size());
    const std::size_t rows = view_.list_row_count(list_);
    for (int c = column + 1;; ++c) {
        if (c >= columns) {
            c = 0;
            if (++row >= rows) return std::nullopt;
        }
        if (is_editable(c)) return cell{row, c};
    }
}

std::optional<table_edit_helper::cell> table_edit_helper::before(std::size_t row, int column) const {
    const int columns = static_cast<int>(editable_.size());
    for (int c = column - 1;; --c) {
        if (c < 0) {
            if (row == 0) return std::nullopt;
            --row;
            c = columns - 1;
        }
        if (is_editable(c)) return cell{row, c};
    }
}
