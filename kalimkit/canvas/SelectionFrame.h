#pragma once

#include <vector>

#include "kalimkit/gfx/AffineTransform.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Point.h"
#include "kalimkit/gfx/Rect.h"
#include "kalimkit/tool/MoveDirection.h"

namespace kalim {

// The box around a selection and the handles on it: which there are, where they lie, and how far
// each reaches without getting in the way of the others or of the body, on small boxes as well.
struct KALIM_API SelectionFrame {
    // Unturned, and from there to the canvas.
    gfx::Rect box;
    gfx::AffineTransform turn;
    // So many canvas points are one of the screen.
    double screenPoint = 1;
    bool hasCorners = false;
    // Whether they reach as far as a fingertip.
    bool isForFingers = false;
    bool hasSides = false;
    // The handle that turns lies above the box, or below it where it would be out of sight above.
    bool hasTurn = false;
    bool turnsBelow = false;

    // Where a handle lies on the canvas.
    gfx::Point placeOf(MoveDirection handle) const;
    // The one that lies under a canvas point; None for none.
    MoveDirection handleAt(gfx::Point p) const;
    // Those that the box is large enough for.
    std::vector<MoveDirection> handles() const;

private:
    gfx::Point ownPlaceOf(MoveDirection handle) const;
    bool reaches(MoveDirection handle, gfx::Point own) const;
};

}  // namespace kalim
