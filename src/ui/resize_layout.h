#pragma once
// Moving a dialog's controls when the window is resized: each edge of a control follows the
// window's size change by a fixed factor (left and right edges the width change, top and bottom
// the height change). Portable, so that the arithmetic is tested without a window system.

#include <vector>

struct anchor_factors {
    int id;  // control id
    double left, top, right, bottom;
};

struct layout_rect {
    int left, top, right, bottom;
    bool operator==(const layout_rect&) const = default;
};

// Where a control that sat at `original` (when the window's client area had its original size)
// goes when the client area has grown by (`grow_x`, `grow_y`) pixels (negative: shrunk).
layout_rect anchored_rect(const layout_rect& original, const anchor_factors& f, int grow_x, int grow_y);

// The factors of control `id` in `table`, or null when it does not move.
const anchor_factors* find_anchor(const std::vector<anchor_factors>& table, int id);
