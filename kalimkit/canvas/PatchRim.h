#pragma once

#include <functional>
#include <vector>

#include "kalimkit/gfx/Context.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Image.h"
#include "kalimkit/gfx/Polygon.h"
#include "kalimkit/gfx/Rect.h"

namespace kalim {

// A picture as it is drawn on the canvas. Canvas points.
struct DrawnPicture {
    // As it was handed in, and the copy of it that is drawn, which may be the same.
    gfx::ImageRef source;
    gfx::ImageRef copy;
    gfx::Rect rect;
    // What is filled under it, where it lets something through.
    gfx::Rect ground;
    gfx::Color groundColor;
    gfx::Interpolation interpolation = gfx::Interpolation::High;
};

// Carries a context's user space to the pixels of its surface.
KALIM_API gfx::AffineTransform toDevicePixels(const gfx::Context& context);

// How far from a patch a pixel of the drawn picture may have been mixed from pixels that the patch
// hides, canvas points: a picture that is drawn smaller or larger than it is mixes its neighbours.
// 0 where it is drawn pixel for pixel. `toPixels` carries canvas points to device pixels.
KALIM_API double rimWidth(const DrawnPicture& picture, const gfx::AffineTransform& toPixels);

// The sides of a patch, canvas points: together they hold all that is so near to it.
KALIM_API std::vector<gfx::Rect> rimSides(const gfx::Rect& patch, double width);
KALIM_API std::vector<gfx::Rect> rimSides(const gfx::Polygon& patch, double width);

// Draws the picture anew at the sides of a patch, which are so wide, out of its own pixels with the
// patches laid into them first: what a patch hides is then mixed into nothing that is seen beside
// it. The place under the patch itself is left to be covered. `layPatches` draws all the patches,
// canvas points, over the picture in a context where each of the picture's pixels is a device
// pixel.
KALIM_API void drawRim(gfx::Context& context, const DrawnPicture& picture,
                       const std::vector<gfx::Rect>& sides, double width,
                       const std::function<void(gfx::Context&)>& layPatches);

}  // namespace kalim
