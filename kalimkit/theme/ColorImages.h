#pragma once

#include "kalimkit/gfx/Color.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Image.h"
#include "kalimkit/gfx/Size.h"

namespace kalim {

// Images made from a colour, and copies of images. Sizes are points, and what is made from a colour
// is so at the screen's scale. Null for a missing colour or image, and for a size that no image can
// have.

// The picture is 1 x 1.
KALIM_API gfx::ImageRef imageWithColor2(const gfx::ColorRef& color);
// The zero size counts as 1 x 1.
KALIM_API gfx::ImageRef imageWithColor2AndSize(const gfx::ColorRef& color, gfx::Size size);
// The light grey behind a pressed button, 1 x 1; the same object while the environment stays.
KALIM_API gfx::ImageRef highlightBackgroundImage2();

// The picture is 4 x 4.
KALIM_API gfx::ImageRef imageWithColor(const gfx::ColorRef& color);
// A radius of 0 or below, in points, leaves the corners square.
KALIM_API gfx::ImageRef imageWithColorSizeCornerRadius(const gfx::ColorRef& color, gfx::Size size,
                                                       double cornerRadius);

// A copy of the same size and scale in the one colour, as opaque as the image at each place.
KALIM_API gfx::ImageRef imageWithTintColor(const gfx::ImageRef& image, const gfx::ColorRef& color);
// Makes a copy of the same size and scale, faded as a whole to 0 to 1.
KALIM_API gfx::ImageRef imageWithAlpha(const gfx::ImageRef& image, double alpha);

}  // namespace kalim
