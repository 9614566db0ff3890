#pragma once

#include "kalimkit/gfx/Export.h"

namespace kalim::ui {

// How far an animation has come, 0 to 1, when this share of its time has passed: slow at both ends,
// as the cubic Bezier curve with the controls (0.42, 0) and (0.58, 1). Shares outside of 0 to 1
// count as the nearer of the two.
KALIM_API double easeInOut(double share);

}  // namespace kalim::ui
