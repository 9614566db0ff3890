#pragma once

#include <memory>

#include "kalimkit/canvas/MDrawMutableSelect.h"

namespace kalim {

// What two fingers turn at present.
struct RotationUnderWay {
    // The selection that the gesture turns; null when it turns none.
    std::shared_ptr<MDrawMutableSelect> tools;
    // The gesture has turned this far, in radians.
    double angle = 0;
    // The gesture goes on, but what it turned has been let go, or the fingers pinch instead.
    bool isOver = false;
    // The fingers turn the selection, and so do not pinch.
    bool holdsFingers = false;
};

}  // namespace kalim
