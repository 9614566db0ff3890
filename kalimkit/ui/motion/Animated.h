#pragma once

#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/loop/RunLoop.h"

namespace kalim::ui {

// What an animator moves.
class KALIM_API Animated {
public:
    virtual ~Animated() = default;

    // Shows the moment. False when nothing moves any more. It runs nobody else's code.
    virtual bool advanceMotion(Time time) = 0;
};

}  // namespace kalim::ui
