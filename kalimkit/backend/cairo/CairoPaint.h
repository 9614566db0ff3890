#pragma once

#include "kalimkit/backend/cairo/CairoHandles.h"
#include "kalimkit/gfx/AffineTransform.h"
#include "kalimkit/gfx/Color.h"
#include "kalimkit/gfx/GraphicsState.h"
#include "kalimkit/gfx/Image.h"

namespace kalim::gfx {

// Gives the context a plain colour, its alpha multiplied. Components are clamped, NaN counts as 0.
void setSourceColor(cairo_t* context, const Color& color, double alpha);

// Gives the context, whose matrix is the identity, an image as its source. `toDevice` carries the
// raster's pixels to device pixels. Beyond its edges the image repeats as `extend` says. False,
// with nothing changed, for a transform with which nothing can be seen.
bool setSourceImage(cairo_t* context, const Image& image, const AffineTransform& toDevice,
                    Interpolation interpolation, cairo_extend_t extend);

// Clear is the operator of Copy with a transparent source: Cairo strokes its own clear operator
// wrongly.
cairo_operator_t operatorFor(BlendMode mode);
cairo_line_cap_t toCairo(LineCap cap);
cairo_line_join_t toCairo(LineJoin join);

}  // namespace kalim::gfx
