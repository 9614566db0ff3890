#pragma once

#include "kalimkit/gfx/AffineTransform.h"
#include "kalimkit/gfx/Color.h"
#include "kalimkit/gfx/Rect.h"

namespace kalim::ui {

// Where a view is in its superview.
struct ViewPlace {
    gfx::Point center;
    gfx::Rect bounds;
    // The transform turns and scales about the anchor point.
    gfx::AffineTransform transform;
    // What of the bounds lies at the centre, in terms of their sides.
    gfx::Point anchorPoint{0.5, 0.5};

    // Finds the anchor point of bounds of the view.
    gfx::Point anchorIn(const gfx::Rect& rect) const {
        return {rect.origin.x + rect.size.width * anchorPoint.x,
                rect.origin.y + rect.size.height * anchorPoint.y};
    }

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
