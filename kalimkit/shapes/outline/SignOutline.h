#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Path.h"

namespace kalim {

// A stamp's sign in the square from (-1, -1) to (1, 1).
struct Sign {
    // What is filled with the colour.
    gfx::Path area;
    // What is drawn on it: lines with round ends, and an area.
    gfx::Path inkLines;
    gfx::Path inkArea;
    double inkWidth = 0;
};

// "check", "cross", "warning", "question", "heart" and "arrow", which points to the right; nothing
// for any other name.
KALIM_API std::optional<Sign> signNamed(std::string_view name);

}  // namespace kalim
