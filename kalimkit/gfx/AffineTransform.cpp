#include "kalimkit/gfx/AffineTransform.h"

#include <algorithm>
#include <cmath>

namespace kalim::gfx {

AffineTransform AffineTransform::rotation(double angle) {
    const double cosine = std::cos(angle);
    const double sine = std::sin(angle);
    return {cosine, sine, -sine, cosine, 0, 0};
}

AffineTransform AffineTransform::rotation(double angle, Point about) {
    return translation(about).rotated(angle).translated(-about.x, -about.y);
}

AffineTransform AffineTransform::translated(double x, double y) const {
    return translation(x, y).concat(*this);
}

AffineTransform AffineTransform::scaled(double x, double y) const {
    return scaling(x, y).concat(*this);
}

AffineTransform AffineTransform::rotated(double angle) const {
    return rotation(angle).concat(*this);
}

AffineTransform AffineTransform::concat(const AffineTransform& next) const {
    return {a * next.a + b * next.c,
            a * next.b + b * next.d,
            c * next.a + d * next.c,
            c * next.b + d * next.d,
            tx * next.a + ty * next.c + next.tx,
            tx * next.b + ty * next.d + next.ty};
}

bool AffineTransform::isInvertible() const {
    const double value = determinant();
    return std::isfinite(value) && value != 0;
}

AffineTransform AffineTransform::inverted() const {
    if (!isInvertible()) return *this;
    const double value = determinant();
    return {d / value,
            -b / value,
            -c / value,
            a / value,
            (c * ty - d * tx) / value,
            (b * tx - a * ty) / value};
}

Rect AffineTransform::apply(const Rect& rect) const {
    const Point corners[] = {apply(rect.origin), apply(Point{rect.maxX(), rect.minY()}),
                             apply(Point{rect.maxX(), rect.maxY()}),
                             apply(Point{rect.minX(), rect.maxY()})};
    Point low = corners[0];
    Point high = corners[0];
    for (const Point corner : corners) {
        low = {std::min(low.x, corner.x), std::min(low.y, corner.y)};
        high = {std::max(high.x, corner.x), std::max(high.y, corner.y)};
    }
    return Rect::spanning(low, high);
}

}  // namespace kalim::gfx
