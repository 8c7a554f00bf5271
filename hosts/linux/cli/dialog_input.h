#pragma once
// Acting on a headless dialog as its user would, for the commands that drive one: cell edits
// given as "N=TEXT", and typing into a list cell through its in-place editor.

#include <string>

#include "ui/headless/headless_view.h"

namespace tessellon_cli {

struct cell_edit {
    std::size_t row;  // from 0
    std::string text;
};

// "N=TEXT" with N from 1 to `rows`; usage_error naming `option` otherwise.
cell_edit parse_cell_edit(const std::string& option, const std::string& value, std::size_t rows);

// Opens the editor on the cell (a click, or a double click where the dialog edits on those),
// types `text` and presses Enter. Fails when the dialog does not open the cell for editing.
void edit_cell(headless_view& view, int list, std::size_t row, int column, const std::string& text, bool double_click);

} // namespace tessellon_cli
