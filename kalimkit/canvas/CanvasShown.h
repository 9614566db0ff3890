#pragma once

#include <memory>

#include "kalimkit/canvas/CanvasGlide.h"
#include "kalimkit/canvas/CanvasPicture.h"
#include "kalimkit/canvas/CanvasZoom.h"
#include "kalimkit/gfx/Rect.h"

namespace kalim {

// What a canvas's view shows: the picture, the content around it, and how their points become the
// view's.
struct CanvasShown {
    // Holds while fingers move the view, and while it is on its way.
    bool isMoving() const { return zoom.isHeld() || glide; }
    // Whether a part of the picture is all that is shown.
    bool isCropped() const { return picture.isCropped() && !showsUncropped; }
    // What is on the screen at this moment.
    gfx::AffineTransform transform() const { return glide ? glide->shown() : zoom.toView(); }
    // On the way from one cut of the picture to another; null where nothing but the zoom changes.
    const CutGlide* changingCut() const {
        return glide && !isExported ? glide->changingCut() : nullptr;
    }
    // View points per canvas point for what keeps its size on the screen; 1 where canvas points
    // stand for it.
    double touchScale() const { return picture.hasBasis() ? zoom.shownScale() : 1; }

    CanvasPicture picture;
    CanvasZoom zoom;
    // The content unites the picture's rectangle with every tool's extent, in canvas points. Where
    // the picture is cropped, and where what is drawn ends at the picture, it is the part shown.
    gfx::Rect content;
    // An export is drawn as a whole, and the part is cut out of it: so its pixels are the very
    // same.
    bool showsUncropped = false;
    // What is exported is cut as it is in the end, also while the view is on its way there.
    bool isExported = false;
    // On the way from an earlier zoom and move to those in force; null while the view rests.
    std::unique_ptr<CanvasGlide> glide;
};

}  // namespace kalim
