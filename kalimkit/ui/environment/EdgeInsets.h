#pragma once

#include <algorithm>

#include "kalimkit/gfx/Rect.h"

namespace kalim::ui {

// How far content keeps from the edges of a rectangle, in points; negative amounts reach beyond.
struct EdgeInsets {
    double top = 0;
    double left = 0;
    double bottom = 0;
    double right = 0;

    bool operator==(const EdgeInsets&) const = default;
    double horizontal() const { return left + right; }
    double vertical() const { return top + bottom; }
    EdgeInsets mirrored() const { return {top, right, bottom, left}; }
    // What is left of a rectangle; no side is shorter than 0.
    gfx::Rect apply(const gfx::Rect& rect) const {
        return {rect.minX() + left, rect.minY() + top,
                std::max(rect.size.width - horizontal(), 0.0),
                std::max(rect.size.height - vertical(), 0.0)};
    }
};

}  // namespace kalim::ui
