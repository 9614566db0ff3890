#pragma once

#include <cstdint>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Rect.h"
#include "kalimkit/ui/environment/EdgeInsets.h"

namespace kalim {

// The crop editor's arithmetic. Points, except where said.

// How much is left free above a picture that fills the width of a view: half of what it leaves of
// the height, whole points. 0 for pictures wider than two to one or longer than the view.
KALIM_API double cropNaturalTopLength(gfx::Size image, gfx::Size view);

// The size at which a picture fits the content, whole points, at least one each way. Empty for an
// empty picture.
KALIM_API gfx::Size cropFittedSize(gfx::Size image, gfx::Size content);

// How far the picture may be moved from the edges of the view so that it covers the frame.
KALIM_API ui::EdgeInsets cropContentInset(const gfx::Rect& frame, gfx::Size view,
                                          double naturalTopLength, double safeAreaTop);

// Between what scales a picture can be zoomed.
struct CropZoomLimits {
    double minimum = 1;
    double maximum = 1;
};
// `image` is the picture's size at a zoom of 1, `pointsPerPixel` that of a pixel of its raster
// there. The smallest zoom just covers the frame; the largest is five times that, or shows a pixel
// as four points if that is more, but never beyond 15 and never below the smallest.
KALIM_API CropZoomLimits cropZoomLimits(gfx::Size image, gfx::Size frame, double pointsPerPixel);

// A frame brought to the middle of the content, as large as it fits there.
struct CropRecentring {
    gfx::Rect frame;
    // By how much it grew; the picture under it is zoomed as much.
    double factor = 1;
};
KALIM_API CropRecentring recentredCropFrame(const gfx::Rect& frame, const gfx::Rect& content);

// What is cut out of a picture's raster, pixels: `bright` in the unzoomed coordinates of the view
// that the picture fills, whose frame has that size at this zoom.
KALIM_API gfx::Rect cropCutRect(const gfx::Rect& bright, gfx::PixelSize raster, gfx::Size frame,
                                double zoomScale);

// ---- quarter turns

// Yields the orientation after a tap on the rotate button: 0 to 3, round and round.
KALIM_API std::int32_t nextCropOrientation(std::int32_t orientation);

// By how many quarters of a circle the picture is turned on its way from one orientation to
// another: -1, 2 or 1 as they lie; 0 for none, also where they are further apart than any turn.
KALIM_API std::int32_t cropQuarterTurns(std::int32_t from, std::int32_t to);

// The turns that lead back over a difference of orientations.
struct CropTurnsBack {
    int count = 0;
    // Each takes a quarter back, rather than going on to the next.
    bool isBackwards = false;

    bool operator==(const CropTurnsBack&) const = default;
};
KALIM_API CropTurnsBack cropTurnsBack(std::int32_t difference);

}  // namespace kalim
