#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

#include "kalimkit/gfx/Context.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Point.h"
#include "kalimkit/gfx/Rect.h"
#include "kalimkit/shapes/outline/StrokeSmoothing.h"

namespace kalim {

// Freehand strokes as lists of points, with what is derived from them: their number, their bounding
// box and the smoothed curves. All of it is kept up while points arrive, so that a point costs the
// same however long the strokes are; changing points that are there derives it anew.
class KALIM_API FreehandStrokes {
public:
    using Lines = std::vector<std::vector<gfx::Point>>;

    // Whether the points that no smoothed curve takes in yet are shown, too: the end of each
    // stroke, and all of a short one. Off at first.
    void setShowsTails(bool shows);
    void setLines(Lines lines);
    // The next point starts a stroke.
    void beginLine();
    // Adds to the last stroke, to a first one where there is none. Answers the box of what the
    // point has changed, without the width of the pen: of the curve that it has completed, and of
    // the tails before and after where they are shown.
    std::optional<gfx::Rect> addPoint(gfx::Point p);
    // Replaces every point, in order.
    void mapPoints(const std::function<gfx::Point(gfx::Point)>& mapping);

    // Adds the curves that a pen of the context's width shows within its clip to the context's
    // path, each as a subpath of its own: leaving out others changes nothing that is seen.
    void addCurvesInSight(gfx::Context& context) const;

    // All curves; those of one stroke follow each other without a gap.
    gfx::Path curves() const;

    const Lines& lines() const { return _lines; }
    std::size_t pointCount() const { return _pointCount; }
    // Bounds the points; its size has single precision and is zero without points.
    gfx::Rect frame() const;

private:
    std::optional<SmoothedCurve> derive(gfx::Point p);
    void deriveAll();
    void keep(const SmoothedCurve& curve);
    void endLine();
    std::optional<SmoothedCurve> shownTail() const;

    Lines _lines;
    bool _showsTails = false;
    std::size_t _pointCount = 0;
    gfx::Point _low;
    gfx::Point _high;
    StrokeSmoothing _smoothing;
    std::vector<SmoothedCurve> _curves;
    // Of each run of curvesPerChunk curves.
    std::vector<gfx::Rect> _chunkBoxes;
};

}  // namespace kalim
