#pragma once

#include "kalimkit/gfx/Export.h"

namespace kalim {

// What a finger that lands on the canvas, or moves there, is for. Decided on values alone, so that
// the rules can be read, and tried, in one place. `forgiving` is MDrawView::forgiving().

struct TouchDown {
    bool forgiving = false;
    // Of what lies under the finger: the selection, or else a finished tool.
    bool isOnSelection = false;
    bool isOnTool = false;
    // Something is selected, anywhere.
    bool hasSelection = false;
    // Whether there is a class of new tools, and whether they begin where a finger lands.
    bool hasClass = false;
    bool beginsAtOnce = false;
    // A key asks for a rectangle that picks what it meets.
    bool wantsMarquee = false;
};

struct TouchMeaning {
    // The selection is dragged.
    bool dragsSelection = false;
    // A drag makes a new tool. Where it does not, and the selection is not dragged, it picks the
    // tool under the finger and moves it.
    bool draws = false;
    // The new tool is made before the finger moves.
    bool createsAtOnce = false;
    // A drag spans a rectangle that picks what it meets.
    bool spansMarquee = false;

    bool operator==(const TouchMeaning&) const = default;
};

KALIM_API TouchMeaning meaningOf(const TouchDown& down);

struct TouchMove {
    bool forgiving = false;
    // The finger has already gone too far for a tap.
    bool isMoved = false;
    bool hasSelection = false;
    // The finger landed on the selection.
    bool isOnSelection = false;
    // These count from where the finger landed, in canvas points and view points.
    double canvasDistance = 0;
    double viewDistance = 0;
};

// Whether a finger that has moved so may still be tapping, and moves nothing. By itself the rule is
// for fingers beside the selection, and counts canvas points; a forgiving canvas has it for every
// finger until it has gone too far, and counts what the finger sees: view points.
KALIM_API bool isStillTapping(const TouchMove& move);

}  // namespace kalim
