#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

#include "kalimkit/gfx/Context.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Point.h"
#include "kalimkit/gfx/Rect.h"
#include "kalimkit/shapes/outline/PenInk.h"
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
    // How a pen touched at each point: as many as the line has, or none where nobody knows. False,
    // and nothing happens, for lists that do not fit the lines.
    bool setTouches(Lines touches);
    const Lines& touches() const { return _touches; }
    bool hasTouches() const;
    // The next point starts a stroke.
    void beginLine();
    // Adds to the last stroke, to a first one where there is none. Answers the box of what the
    // point has changed, without the width of the pen: of the curve that it has completed, and of
    // the tails before and after where they are shown.
    std::optional<gfx::Rect> addPoint(gfx::Point p,
                                      const std::optional<PenTouch>& touch = std::nullopt);
    // The last stroke goes.
    void dropLine();
    // Replaces every point, in order.
    void mapPoints(const std::function<gfx::Point(gfx::Point)>& mapping);

    // Adds the curves that a pen of the context's width shows within its clip to the context's
    // path, each as a subpath of its own: leaving out others changes nothing that is seen.
    void addCurvesInSight(gfx::Context& context) const;

    // (FreehandInk.cpp) The same as areas to be filled as one, as wide as the pen was pressed: the
    // context's width at the most.
    void addInkInSight(gfx::Context& context) const;
    // Of the last point, 1 where nobody knows.
    double lastShare() const;

    // All curves; those of one stroke follow each other without a gap.
    gfx::Path curves() const;

    const Lines& lines() const { return _lines; }
    std::size_t pointCount() const { return _pointCount; }
    // Bounds the points; its size has single precision and is zero without points.
    gfx::Rect frame() const;

private:
    // The shares of the pen's width that a curve begins and ends with.
    struct Shares {
        double start = 1;
        double end = 1;
    };

    std::optional<SmoothedCurve> derive(gfx::Point p);
    double shareAt(std::size_t first, std::size_t end) const;
    Shares curveShares();
    Shares tailShares() const;
    void deriveAll();
    void keep(const SmoothedCurve& curve, Shares shares);
    void endLine();
    std::optional<SmoothedCurve> shownTail() const;

    Lines _lines;
    // Never more of them than lines.
    Lines _touches;
    bool _showsTails = false;
    std::size_t _pointCount = 0;
    gfx::Point _low;
    gfx::Point _high;
    StrokeSmoothing _smoothing;
    std::vector<SmoothedCurve> _curves;
    // Of each curve, as soon as any line has touches; and of the line whose points are derived: its
    // place, how many of its points have been, and the share that its last curve ends with.
    std::vector<Shares> _shares;
    std::size_t _line = 0;
    std::size_t _linePoints = 0;
    double _lastShare = 1;
    // Of each run of curvesPerChunk curves.
    std::vector<gfx::Rect> _chunkBoxes;
};

}  // namespace kalim
