#pragma once

#include <optional>

#include "kalimkit/canvas/MDrawMutableSelect.h"

namespace kalim {

// A handle of a selection, and where it lies, canvas points.
struct FoundHandle {
    MoveDirection part = MoveDirection::None;
    gfx::Point place;
    // Of the frame around the selection, not of the one tool that is selected.
    bool isOfFrame = false;
};

// The one that a press at a canvas point takes hold of while no finger holds any; nothing where
// that is none, or the body.
std::optional<FoundHandle> handleUnder(MDrawMutableSelect& group, gfx::Point p);

// Whether a drag of that part moves a point, and not the whole.
bool isHandle(MoveDirection part);

}  // namespace kalim
