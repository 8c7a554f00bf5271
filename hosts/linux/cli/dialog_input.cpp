#include "cli/dialog_input.h"

#include <cstdlib>

#include <tunehall/exceptions.h>

#include "cli/command_line.h"

namespace tessellon_cli {

cell_edit parse_cell_edit(const std::string& option, const std::string& value, std::size_t rows) {
    const auto eq = value.find('=');
    const std::string number = value.substr(0, eq);
    char* end = nullptr;
    const unsigned long n = eq == std::string::npos ? 0 : std::strtoul(number.c_str(), &end, 10);
    if (eq == std::string::npos || n == 0 || *end != '\0' || n > rows)
        throw usage_error{option + " " + value + ": expected N=TEXT with N from 1 to " + std::to_string(rows)};
    return {n - 1, value.substr(eq + 1)};
}

void edit_cell(headless_view& view, int list, std::size_t row, int column, const std::string& text, bool double_click) {
    view.click_cell(list, row, column, double_click);
    if (!view.editing())
        throw tunehall_io::exception_io("The dialog did not open row " + std::to_string(row + 1) + " for editing");
    view.finish_edit(text, 3);  // Enter
}

} // namespace tessellon_cli
