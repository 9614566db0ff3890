#include "kalimkit/shapes/WholePixels.h"

#include <algorithm>
#include <cmath>

namespace kalim {

namespace {

// In pixels; forgives what transforms and their inverses lose.
constexpr double tolerance = 1e-4;

// Whether the sides stay on the axes, turned by quarters or flipped at most.
bool keepsAxes(gfx::Size size, const gfx::AffineTransform& t) {
    const auto isSmall = [](double offset) { return std::abs(offset) < tolerance; };
    return (isSmall(t.b * size.width) && isSmall(t.c * size.height)) ||
           (isSmall(t.a * size.width) && isSmall(t.d * size.height));
}

// At least one pixel: a sliver narrower than the tolerance still hides what it lies on.
gfx::Rect roundedOut(const gfx::Rect& pixels) {
    const double left = std::floor(pixels.minX() + tolerance);
    const double top = std::floor(pixels.minY() + tolerance);
    const double right = std::max(std::ceil(pixels.maxX() - tolerance), left + 1);
    const double bottom = std::max(std::ceil(pixels.maxY() - tolerance), top + 1);
    return {left, top, right - left, bottom - top};
}

}  // namespace

gfx::Rect wholePixels(const gfx::Rect& rect, const gfx::AffineTransform& toPixels) {
    if (!toPixels.isInvertible()) return rect;
    if (keepsAxes(rect.size, toPixels)) {
        return toPixels.inverted().apply(roundedOut(toPixels.apply(rect)));
    }
    // How far apart, in user space, two lines along a side are that lie a device pixel apart.
    const double area = std::abs(toPixels.determinant());
    return rect.inset(-std::hypot(toPixels.c, toPixels.d) / area,
                      -std::hypot(toPixels.a, toPixels.b) / area);
}

}  // namespace kalim
