#pragma once

#include "kalimkit/crop/CropEdge.h"
#include "kalimkit/crop/CropLimits.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Rect.h"

namespace kalim {

// The shortest side of a crop frame, points, unless it begins with a shorter one.
inline constexpr double leastCropSide = 60;

// What a finger at a point takes hold of: corners within 70 points in either direction, but no more
// than a third of the side, the top edge within 70, the other edges within 20.
KALIM_API CropEdge cropEdgeForPoint(gfx::Point p, const gfx::Rect& frame);

// Whether a drag that begins there belongs to the frame: in the band of 20 points on either side of
// its border.
KALIM_API bool isOnCropBorder(gfx::Point p, const gfx::Rect& frame);

// Does one drag of an edge or a corner, in points of the crop view.
struct KALIM_API CropDrag {
    // The frame with the finger at a point. `frame` is the one that the drag has made so far.
    gfx::Rect frameAt(gfx::Point p, const gfx::Rect& frame) const;

    CropEdge edge = CropEdge::None;
    // Where it began, and the frame at that time.
    gfx::Point touchPoint;
    gfx::Rect touchFrame;
    // The frame stays inside.
    gfx::Rect contentFrame;
    // The frame becomes, and stays, a square.
    bool isAspectRatioLocked = false;
    // As it is zoomed by now, and how far the drag may go into it. An empty one limits nothing.
    CropPicture picture;
    CropLimits limits;

private:
    bool movesLeft() const;
    bool movesTop() const;
    bool movesRight() const;
    bool movesBottom() const;
    bool movesAcross() const { return movesLeft() || movesRight(); }
    bool movesDown() const { return movesTop() || movesBottom(); }
    gfx::Size proposed(gfx::Point by) const;
    double proposedSide(gfx::Point by) const;
    gfx::Size room() const;
    gfx::Size limited(gfx::Size size) const;
    bool allows(gfx::Size size) const;
    gfx::Size allowed(gfx::Size from, gfx::Size wanted) const;
    gfx::Size allowedSquare(gfx::Size from, double wanted) const;
    gfx::Rect placed(gfx::Size size) const;
};

}  // namespace kalim
