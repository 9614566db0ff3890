#pragma once

#include "kalimkit/gfx/AffineTransform.h"
#include "kalimkit/gfx/Color.h"
#include "kalimkit/gfx/Rect.h"

namespace kalim::ui {

// Where a view is in its superview.
struct ViewPlace {
    gfx::Point center;
    gfx::Rect bounds;
    // About the centre.
    gfx::AffineTransform transform;

    gfx::AffineTransform toSuperview() const;
    gfx::Rect frame() const { return toSuperview().apply(bounds); }
};

// All of a view that can be animated.
struct ViewLook {
    ViewPlace place;
    double alpha = 1;
    gfx::ColorRef backgroundColor;
};

}  // namespace kalim::ui
