#pragma once

#include <cstdint>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Rect.h"

namespace kalim {

// A share is the part of a picture that is under the crop frame, in terms of the picture's sides:
// {0, 0, 1, 1} is all of it.
inline gfx::Rect wholePicture() {
    return {0, 0, 1, 1};
}

// The nearest share that the picture has, in the same proportion.
KALIM_API gfx::Rect coveredCropShare(const gfx::Rect& share);

// Turns the same part of the picture by quarters of a circle: -1, 1 or 2; positive ones go
// clockwise as seen.
KALIM_API gfx::Rect turnedCropShare(const gfx::Rect& share, std::int32_t quarterTurns);

// Where picture and frame are once the frame rests in the middle of the content. Points of the crop
// view.
struct KALIM_API CropPlacement {
    // Any measure of the picture will do that has its proportions. The share must not be empty.
    static CropPlacement settled(gfx::Size image, const gfx::Rect& share, const gfx::Rect& content);

    // Of the picture at a zoom of 1: as large as it fits the content.
    gfx::Size imageSize;
    double zoomScale = 1;
    // The zoomed picture lies there.
    gfx::Rect image;
    gfx::Rect frame;
};

}  // namespace kalim
