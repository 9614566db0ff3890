#pragma once

#include <cstdint>

// These are the tool-type numbers of the canvas's interface.
namespace kalim::ToolType {

enum Number : std::int64_t {
    Rectangle = 0,
    RoundedRectangle = 1,
    Ellipse = 2,
    Text = 3,
    Freehand = 4,
    Mosaic = 5,
    Line = 6,
    Arrow = 7,
};

}  // namespace kalim::ToolType
