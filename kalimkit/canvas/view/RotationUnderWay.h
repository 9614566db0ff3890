#pragma once

#include <memory>

#include "kalimkit/canvas/view/MDrawMutableSelect.h"

namespace kalim {

// What two fingers turn at present.
struct RotationUnderWay {
    // The selection that the gesture turns; null when it turns none.
    std::shared_ptr<MDrawMutableSelect> tools;
    // So far, radians.
    double angle = 0;
    // The gesture goes on, but what it turned has been let go.
    bool isOver = false;
};

}  // namespace kalim
