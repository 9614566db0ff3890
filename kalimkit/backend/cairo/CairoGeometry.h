#pragma once

#include <cairo.h>

#include "kalimkit/gfx/AffineTransform.h"
#include "kalimkit/gfx/Path.h"

namespace kalim::gfx {

// Cairo keeps device coordinates in 24.8 fixed point and wraps around beyond; half of its range
// leaves room for pens and curves.
constexpr double largestCoordinate = 4e6;

// No side of a Cairo image surface is longer, in pixels.
constexpr int largestSide = 32767;

inline cairo_matrix_t toCairo(const AffineTransform& t) {
    return {t.a, t.b, t.c, t.d, t.tx, t.ty};
}

// False for transforms so degenerate or so far away that Cairo would refuse them, which puts its
// context out of order for good.
bool isUsable(const AffineTransform& transform);

// Makes the path the current one of a context whose matrix is the identity. The path is in points
// of a surface with this scale.
void tracePath(cairo_t* context, const Path& path, double scale);

// Boxes all points of the path in pixels, control points included.
Rect pointBounds(const Path& path, double scale);

// The box of what the context may paint, in its user space.
Rect clipBounds(cairo_t* context);

}  // namespace kalim::gfx
