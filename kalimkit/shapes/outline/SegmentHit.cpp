#include "kalimkit/shapes/outline/SegmentHit.h"

#include <cmath>

#include "kalimkit/gfx/Rect.h"
#include "kalimkit/shapes/outline/LineDistance.h"
#include "kalimkit/tool/QVGeometry.h"

namespace kalim {

namespace {

constexpr double minimumSide = 4;

double tolerance(double lineWidth, double margin) {
    return lineWidth * 0.5 + margin;
}

// Where both ends have the same coordinate, they move apart by half the reach.
void spread(double& from, double& to, double reach) {
    if (from != to) return;
    const double half = std::trunc(reach / 2);
    from -= half;
    to += half;
}

}  // namespace

bool hitsFreehandSegment(gfx::Point p, gfx::Point from, gfx::Point to, double lineWidth,
                         double margin) {
    // Two equal points yield NaN and so always go on.
    if (tolerance(lineWidth, margin) < distanceFromLine(p, from, to)) return false;
    // The truncation to whole points is meant.
    const double reach = std::trunc(tolerance(lineWidth, margin));
    spread(from.x, to.x, reach);
    spread(from.y, to.y, reach);
    const auto side = [reach](double length) { return length < minimumSide ? reach : length; };
    return gfx::Rect(from, {side(to.x - from.x), side(to.y - from.y)}).contains(p) ||
           QVPointDistance(p, from) <= reach || QVPointDistance(p, to) <= reach;
}

double freehandHitReach(double lineWidth, double margin) {
    return tolerance(lineWidth, margin) * 2;
}

}  // namespace kalim
