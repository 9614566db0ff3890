#include "kalimkit/ui/view/ViewLook.h"

namespace kalim::ui {

gfx::AffineTransform ViewPlace::toSuperview() const {
    const gfx::Point anchor = anchorIn(bounds);
    // Without a transform nothing but the two points is added, so that frames come out exact.
    if (transform.isIdentity()) return {1, 0, 0, 1, center.x - anchor.x, center.y - anchor.y};
    return gfx::AffineTransform::translation(-anchor).concat(transform).concat(
        gfx::AffineTransform::translation(center));
}

}  // namespace kalim::ui
