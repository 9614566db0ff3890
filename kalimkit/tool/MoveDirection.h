#pragma once

namespace kalim {

// What of a tool the current drag has grabbed. The numbers are part of the interface; vertex shapes
// use further ones.
enum class MoveDirection : unsigned {
    None = 0,
    Body = 1,
    TopLeft = 2,
    Top = 3,
    TopRight = 4,
    Right = 5,
    BottomRight = 6,
    Bottom = 7,
    BottomLeft = 8,
    Left = 9,
    Start = 10,
    End = 11,
    // A line that is dragged with a group of several: no move of its own answers to it.
    GroupedLine = 12,
    // Scales about the tool's centerPoint by its zoomScale.
    Scale = 13,
    // Another place that the tool is about.
    Place = 14,
    // The handle of a selection that turns it.
    Turn = 15,
};

}  // namespace kalim
