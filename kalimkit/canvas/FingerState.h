#pragma once

namespace kalim {

// What the one finger on a canvas is doing.
enum class FingerState {
    // There is no finger, or there are several: those are the view's and the selection's.
    Idle,
    // It is down and has not gone far enough for more than a tap.
    Tapping,
    // It has moved, and makes a new tool.
    Drawing,
    // It has moved, and takes along what it has hold of, if anything.
    Dragging,
    // It is down still, but has done its work: it ended the editing of a text, or what it drew or
    // dragged was settled from elsewhere.
    Aborted,
};

}  // namespace kalim
