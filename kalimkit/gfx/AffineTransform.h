#pragma once

#include <optional>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Rect.h"
#include "kalimkit/gfx/Size.h"

namespace kalim::gfx {

// Maps (x, y) to (a x + c y + tx, b x + d y + ty).
struct KALIM_API AffineTransform {
    double a = 1;
    double b = 0;
    double c = 0;
    double d = 1;
    double tx = 0;
    double ty = 0;

    bool operator==(const AffineTransform&) const = default;

    static AffineTransform translation(double x, double y) { return {1, 0, 0, 1, x, y}; }
    static AffineTransform translation(Point by) { return translation(by.x, by.y); }
    static AffineTransform scaling(double x, double y) { return {x, 0, 0, y, 0, 0}; }
    // Radians; positive angles turn the x axis towards the y axis.
    static AffineTransform rotation(double angle);
    static AffineTransform rotation(double angle, Point about);
    // By quarters about the origin, counter-clockwise as seen where y points down; exact.
    static AffineTransform quarterTurn(int counterClockwise);

    // This transform with another step in front: points are translated (scaled, rotated) first and
    // then mapped by this one, in the way a drawing context accumulates its transform.
    AffineTransform translated(double x, double y) const;
    AffineTransform scaled(double x, double y) const;
    AffineTransform rotated(double angle) const;

    // The same about another point.
    AffineTransform about(Point center) const;

    // Applies this transform first and `next` after it.
    AffineTransform concat(const AffineTransform& next) const;

    double determinant() const { return a * d - b * c; }
    bool isInvertible() const;
    // The transform itself when it cannot be inverted.
    AffineTransform inverted() const;
    bool isIdentity() const { return *this == AffineTransform{}; }
    // True when axis-parallel rectangles stay axis-parallel and keep their orientation.
    bool isScaleAndTranslation() const { return b == 0 && c == 0 && a > 0 && d > 0; }

    // The largest factor by which any direction is stretched.
    double largestStretch() const;
    // For a transform of a picture's pixels to device pixels: itself without its rounding errors,
    // where it only moves, flips or turns by quarters pixels onto whole pixels, so that none needs
    // to be resampled. Nothing where it does more.
    std::optional<AffineTransform> wholePixels(PixelSize picture) const;

    Point apply(Point p) const { return {a * p.x + c * p.y + tx, b * p.x + d * p.y + ty}; }
    // Yields the bounding box of the mapped rectangle.
    Rect apply(const Rect& rect) const;
};

}  // namespace kalim::gfx
