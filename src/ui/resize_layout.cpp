#include "ui/resize_layout.h"

#include <cmath>

namespace {
int moved(int edge, double factor, int grow) { return edge + static_cast<int>(std::lround(factor * grow)); }
} // namespace

layout_rect anchored_rect(const layout_rect& original, const anchor_factors& f, int grow_x, int grow_y) {
    return {moved(original.left, f.left, grow_x), moved(original.top, f.top, grow_y),
            moved(original.right, f.right, grow_x), moved(original.bottom, f.bottom, grow_y)};
}

const anchor_factors* find_anchor(const std::vector<anchor_factors>& table, int id) {
    for (const anchor_factors& f : table)
        if (f.id == id) return &f;
    return nullptr;
}
