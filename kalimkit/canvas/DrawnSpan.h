#pragma once

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Point.h"
#include "kalimkit/gfx/Rect.h"
#include "kalimkit/tool/MoveDirection.h"
#include "kalimkit/tool/ToolClass.h"
#include "kalimkit/ui/view/Modifiers.h"

namespace kalim {

// What keys make of a tool that is drawn, resized or turned: shift holds it to squares, steps of an
// angle or its proportions, alt has it grow about its middle.

// The two points of a tool that is drawn from one point to another.
struct DrawnSpan {
    gfx::Point start;
    gfx::Point end;

    bool operator==(const DrawnSpan&) const = default;
};
KALIM_API DrawnSpan drawnSpan(ToolSpan kind, gfx::Point from, gfx::Point to,
                              const ui::Modifiers& keys);

// The nearest of the angles that shift holds a turn to, radians: every 15 degrees.
KALIM_API double steppedAngle(double angle);
// The point as far from `fixed` in the nearest of the directions that shift holds a line to.
KALIM_API gfx::Point steppedPoint(gfx::Point fixed, gfx::Point p);
// The offset along the one of the two axes that it is longer on.
KALIM_API gfx::Point alongAxis(gfx::Point offset);

// Which sides a handle of a box moves: -1 the left or upper one, 1 the right or lower one, 0 none.
struct MovedSides {
    int x = 0;
    int y = 0;

    bool operator==(const MovedSides&) const = default;
};
KALIM_API MovedSides movedSides(MoveDirection handle);

// The box once one of its handles has been dragged by an offset; past the other side it turns over.
KALIM_API gfx::Rect resizedBox(const gfx::Rect& box, MoveDirection handle, gfx::Point offset,
                               const ui::Modifiers& keys);
// What of a box stays in its place meanwhile.
KALIM_API gfx::Point fixedPoint(const gfx::Rect& box, MoveDirection handle,
                                const ui::Modifiers& keys);

}  // namespace kalim
