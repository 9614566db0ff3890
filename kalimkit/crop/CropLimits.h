#pragma once

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Size.h"

namespace kalim {

// The largest zoom of a picture under the crop frame; a zoom of 1 fits the picture into the
// content.
inline constexpr double largestCropZoom = 15;
// What a drag leaves of a picture either way, pixels.
inline constexpr double leastCropPixels = 16;

// Describes the picture under a crop frame.
struct CropPicture {
    // The size counts points at a zoom of 1.
    gfx::Size size;
    gfx::PixelSize raster;
    double zoomScale = 1;
};

// What a frame over a picture comes to.
struct CropOutcome {
    // Of the picture once the frame has gone back to the middle of the content.
    double zoomScale = 1;
    // So many pixels of the picture's raster lie under the frame.
    gfx::Size pixels;
};
// Frame and content are points. A frame that is larger than the picture zooms it until it is
// covered. The default for an empty picture or frame.
KALIM_API CropOutcome cropOutcome(const CropPicture& picture, gfx::Size frame, gfx::Size content);

// How far a drag may go into a picture.
struct KALIM_API CropLimits {
    // The above; but what the frame has when the drag begins is always allowed.
    static CropLimits from(const CropOutcome& outcome);

    bool allow(const CropOutcome& outcome) const;

    double largestZoom = largestCropZoom;
    // It is in pixels of the raster.
    gfx::Size leastPixels;
};

}  // namespace kalim
