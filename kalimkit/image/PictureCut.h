#pragma once

#include <optional>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Image.h"
#include "kalimkit/gfx/PixelRect.h"
#include "kalimkit/gfx/Rect.h"
#include "kalimkit/gfx/Size.h"

namespace kalim {

// Which part of an upright picture is shown, and how it is turned: geometry alone, no pixel of the
// picture changes. The crop comes first, then the turns.
struct PictureCut {
    // Pixels of the upright picture before any cut: whole numbers, not empty, inside the picture.
    // Nothing where all of it is shown.
    std::optional<gfx::Rect> crop;
    // Counter-clockwise, 0 to 3.
    int quarterTurns = 0;

    bool operator==(const PictureCut&) const = default;
};

// Whether it is a cut of an upright picture with so many pixels, as the fields say.
KALIM_API bool isCutOf(const PictureCut& cut, gfx::PixelSize picture);

// The pixels that it shows of such a picture, before they are turned.
KALIM_API gfx::Rect partOf(const PictureCut& cut, gfx::PixelSize picture);

// The same as whole numbers.
KALIM_API gfx::PixelRect pixelPartOf(const PictureCut& cut, gfx::PixelSize picture);

// Whether it leaves anything of such a picture away.
KALIM_API bool isCropOf(const PictureCut& cut, gfx::PixelSize picture);

// Where a part of a picture with so many pixels is in the picture after quarter turns; other turns
// lead back: those that are missing to a full circle.
KALIM_API gfx::Rect turnedPart(const gfx::Rect& part, gfx::PixelSize picture, int quarterTurns);

// A size after quarter turns.
KALIM_API gfx::Size turnedSize(gfx::Size size, int quarterTurns);

// How an upright raster is seen after so many quarter turns.
KALIM_API gfx::ImageOrientation orientationAfter(int quarterTurns);

// The same image with its upright pixels turned, exactly and at the same scale. The very same image
// for no turn; null for null.
KALIM_API gfx::ImageRef turnedImage(const gfx::ImageRef& image, int quarterTurns);

}  // namespace kalim
