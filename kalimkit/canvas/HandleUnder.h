#pragma once

#include <optional>

#include "kalimkit/canvas/MDrawMutableSelect.h"
#include "kalimkit/ui/view/Cursor.h"

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
inline bool isHandle(MoveDirection part) {
    return part != MoveDirection::None && part != MoveDirection::Body &&
           part != MoveDirection::GroupedLine;
}

// What the pointer looks like over a part of a tool that is selected, or while it is held.
ui::Cursor partCursor(const MDrawTool& tool, MoveDirection part, const gfx::AffineTransform& toView,
                      bool isHeld);

}  // namespace kalim
