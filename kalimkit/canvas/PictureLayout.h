#pragma once

#include "kalimkit/gfx/AffineTransform.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Rect.h"

namespace kalim {

// Centres a size in a box.
KALIM_API gfx::Rect centredRect(gfx::Size size, const gfx::Rect& box);

// Carries canvas to view: view point = seenAt + scale * R(angle) * (canvas point - center). The
// angle is radians; the quarter turns, counter-clockwise, come before it and are exact.
KALIM_API gfx::AffineTransform canvasToView(gfx::Point center, gfx::Point seenAt, double scale,
                                            double angle, int quarterTurns = 0);

// Where to draw a raster that is shown pixel for pixel: the rectangle moved by less than a device
// pixel, so that pixels fall on pixels and nothing is resampled. `toSurface` is the context's
// transform, `scale` the surface's pixels per point. The rectangle itself where the raster is shown
// at another size, or turned by less than a quarter.
KALIM_API gfx::Rect pixelAlignedRect(const gfx::Rect& rect, const gfx::AffineTransform& toSurface,
                                     double scale, gfx::PixelSize raster);

// The device pixels that lie in a rectangle as a whole; the rectangle itself where it is turned by
// less than a quarter, or holds no pixel. `toPixels` carries its points to device pixels.
KALIM_API gfx::Rect pixelsInside(const gfx::Rect& rect, const gfx::AffineTransform& toPixels);

// The content's rectangle with the edges that it shares with the picture moved to where the picture
// is really shown, so that no rim of the background peeps out beside it.
KALIM_API gfx::Rect alongPicture(const gfx::Rect& content, const gfx::Rect& picture,
                                 const gfx::Rect& shownPicture);

// Whether a picture fills the view but for less than 4 points of width and 6 of height.
KALIM_API bool fillsView(gfx::Size picture, gfx::Size view);

}  // namespace kalim
