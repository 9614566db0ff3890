#pragma once

#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/motion/AnimationOptions.h"

namespace kalim::ui {

// How far a spring has come when this share of its duration (seconds) has passed: 0 at the start, 1
// at the end, beyond 1 where it swings over.
KALIM_API double springShare(const Spring& spring, double share, double duration);

}  // namespace kalim::ui
