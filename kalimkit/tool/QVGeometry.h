#pragma once

#include <cstdint>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Path.h"
#include "kalimkit/gfx/Point.h"
#include "kalimkit/gfx/Rect.h"
#include "kalimkit/gfx/Size.h"

namespace kalim {

// The phases of a touch, as the canvas's touch-count state takes them.
KALIM_API extern const std::int32_t TOUCH_PHASE_BEGAN;
KALIM_API extern const std::int32_t TOUCH_PHASE_MOVED;
KALIM_API extern const std::int32_t TOUCH_PHASE_ENDED;
KALIM_API extern const std::int32_t TOUCH_PHASE_CANCELED;

// The opacity of a freehand stroke's colour unless the host chooses another.
KALIM_API extern const double Freeline_default_alpha;

KALIM_API gfx::Point QVMidPoint(gfx::Point p1, gfx::Point p2);

// Radians, measured from the direction straight down (0 when p2 lies below p1); to the right is
// -pi/2. Single precision.
KALIM_API double QVPointAngle(gfx::Point p1, gfx::Point p2);

// Computes in single precision and widens the result.
KALIM_API double QVPointDistance(gfx::Point p1, gfx::Point p2);

// Equal within one point in every coordinate; a difference of exactly one is too much.
KALIM_API bool QVPointApproximateEqual(gfx::Point p1, gfx::Point p2);
KALIM_API bool QVSizeApproximateEqual(gfx::Size s1, gfx::Size s2);
KALIM_API bool QVRectApproximateEqual(const gfx::Rect& r1, const gfx::Rect& r2);

// The nearest size of whole device pixels on the current environment's screen, ties to even. One
// pixel per point where there is no environment.
KALIM_API gfx::Size QVMakeScreenCompatibleSize(gfx::Size size);

// Moves every point to m + (p - m) * factor, m being the centre of the path's tight bounding box.
KALIM_API gfx::Path CGPath_ZRCreateCopyByScalingPathAroundCentre(const gfx::Path& path,
                                                                 float factor);

}  // namespace kalim
