#include "kalimkit/canvas/CanvasTouch.h"

#include "kalimkit/tool/QVGeometry.h"

namespace kalim {

void CanvasTouch::updateDrawStateTouches(std::int32_t phase, std::size_t touchCount) {
    const bool isKnownPhase = phase >= TOUCH_PHASE_BEGAN && phase <= TOUCH_PHASE_CANCELED;
    if (touchCount == 0 || touchCount > 2 || !isKnownPhase) {
        drawState = 0;
        return;
    }
    const unsigned mask = touchCount == 1 ? 15U : 12U;
    drawState = phase == TOUCH_PHASE_BEGAN ? mask : drawState & mask;
}

}  // namespace kalim
