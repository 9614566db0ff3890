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

AffineTransform AffineTransform::quarterTurn(int counterClockwise) {
    constexpr AffineTransform turns[] = {
        {1, 0, 0, 1, 0, 0}, {0, -1, 1, 0, 0, 0}, {-1, 0, 0, -1, 0, 0}, {0, 1, -1, 0, 0, 0}};
    return turns[(counterClockwise % 4 + 4) % 4];
}

AffineTransform AffineTransform::about(Point center) const {
    return translation({-center.x, -center.y}).concat(*this).concat(translation(center));
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
    const double value = determinant();
    if (!std::isfinite(value) || value == 0) return *this;
    return {d / value,
            -b / value,
            -c / value,
            a / value,
            (c * ty - d * tx) / value,
            (b * tx - a * ty) / value};
}

Rect AffineTransform::apply(const Rect& rect) const {
    // Two corners tell where the others are.
    if (b == 0 && c == 0) {
        const Point end{rect.origin.x + rect.size.width, rect.origin.y + rect.size.height};
        return Rect::spanning(apply(rect.origin), apply(end));
    }
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

double AffineTransform::largestStretch() const {
    const double first = a * a + b * b;
    const double second = c * c + d * d;
    const double mixed = a * c + b * d;
    return std::sqrt((first + second) / 2 + std::hypot((first - second) / 2, mixed));
}

std::optional<AffineTransform> AffineTransform::wholePixels(PixelSize picture) const {
    // Shares of a pixel by which no backend resamples; the finest, Cairo's, counts 256 to a pixel.
    constexpr double subpixel = 1.0 / 512;
    const AffineTransform rounded{std::round(a), std::round(b),  std::round(c),
                                  std::round(d), std::round(tx), std::round(ty)};
    const bool isUpright =
        rounded.b == 0 && rounded.c == 0 && std::abs(rounded.a) == 1 && std::abs(rounded.d) == 1;
    const bool isTurned =
        rounded.a == 0 && rounded.d == 0 && std::abs(rounded.b) == 1 && std::abs(rounded.c) == 1;
    if (!isUpright && !isTurned) return std::nullopt;
    const double w = picture.width;
    const double h = picture.height;
    for (const Point corner : {Point{0, 0}, Point{w, 0}, Point{0, h}, Point{w, h}}) {
        const Point off = apply(corner) - rounded.apply(corner);
        if (std::abs(off.x) > subpixel || std::abs(off.y) > subpixel) return std::nullopt;
    }
    return rounded;
}

}  // namespace kalim::gfx
