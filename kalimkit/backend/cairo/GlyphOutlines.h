#pragma once

#include <cairo.h>

#include "kalimkit/backend/cairo/DeviceBox.h"
#include "kalimkit/backend/cairo/ShapedText.h"

namespace kalim::gfx {

// How text is outlined and filled of which some has colours of its own, such as emoji. All draw it
// through the context's matrix from its origin on.

// Adds the outlines of everything that takes the colour in force.
void traceInkedGlyphs(cairo_t* context, const ShapedText& text);
// Draws what has colours of its own in these.
void showColorGlyphs(cairo_t* context, const ShapedText& text, double alpha);
// What a pen of so many device pixels to either side leaves around what has colours of its own, in
// the source in force. The box, in device pixels, holds all of it.
void strokeColorGlyphs(cairo_t* context, const ShapedText& text, double reach,
                       const DeviceBox& box);

}  // namespace kalim::gfx
