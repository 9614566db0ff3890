#pragma once

#include <cstddef>
#include <cstdint>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Point.h"
#include "kalimkit/tool/MDrawTool.h"

namespace kalim {

// What the canvas knows of the touches under way, canvas points.
struct KALIM_API CanvasTouch {
    // The phase is one of the numbers of MoveDirection.h, the count that of all fingers.
    void updateDrawStateTouches(std::int32_t phase, std::size_t touchCount);
    bool isSingleFinger() const { return (drawState & 1U) != 0; }

    // The gesture makes a new tool.
    bool drawing = false;
    bool isMoved = false;
    // The gesture has done its work, such as ending the editing of a text.
    bool abortTouch = false;
    bool inHandleLastSeletedTools = false;
    // The unselected tool that was under the finger at touch-down.
    ToolRef LastSeletedTestSrcPoint;
    // The selection that the finger has dragged so far; null when it drags none.
    ToolRef dragged;
    gfx::Point lastMouseDownPoint;
    gfx::Point lastMouseMovePoint;
    // Where a drag goes on from: how far the selection has followed the finger.
    gfx::Point lastTakenPoint;
    // Where the finger landed, view points.
    gfx::Point downPlace;
    // This touch ends the editing of a text.
    bool endsTyping = false;
    // Bit 0 stays set while a gesture has had a single finger throughout.
    unsigned drawState = 0;
};

}  // namespace kalim
