#pragma once

#include "kalimkit/gfx/Export.h"

namespace kalim::ui {

// How an animation's pace changes: cubic Bezier curves with the controls (0, 0) (1, 1), (0.42, 0)
// (1, 1), (0, 0) (0.58, 1) and (0.42, 0) (0.58, 1).
enum class TimingCurve { Linear, EaseIn, EaseOut, EaseInOut };

// How far an animation has come, 0 to 1, when this share of its time has passed. Shares outside of
// 0 to 1 count as the nearer of the two, one that is no number as 0.
KALIM_API double ease(TimingCurve curve, double share);
KALIM_API double easeInOut(double share);

}  // namespace kalim::ui
