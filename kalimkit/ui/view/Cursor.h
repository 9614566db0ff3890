#pragma once

namespace kalim::ui {

// What a pointer looks like, so that it tells what a press would do. A host shows what its system
// has for it, and the arrow where that has nothing.
enum class Cursor {
    Arrow,
    // Over what is followed, as a link.
    Hand,
    Cross,
    Text,
    Move,
    // Sides and corners that are dragged: up and down, sideways, and along either diagonal.
    ResizeNS,
    ResizeEW,
    ResizeNWSE,
    ResizeNESW,
    Rotate,
    // What can be taken hold of to move it, and what is held.
    Grab,
    Grabbing,
    NotAllowed,
};

}  // namespace kalim::ui
