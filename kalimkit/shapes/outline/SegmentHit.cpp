#include "kalimkit/shapes/outline/SegmentHit.h"

#include <cmath>

#include "kalimkit/canvas/model/QVGeometry.h"
#include "kalimkit/gfx/Rect.h"
#include "kalimkit/shapes/outline/LineDistance.h"

namespace kalim {

namespace {

constexpr double hitMargin = 8;
constexpr double minimumSide = 4;

double tolerance(double lineWidth) {
    return lineWidth * 0.5 + hitMargin;
}

// Where both ends have the same coordinate, they move apart by half the reach.
void spread(double& from, double& to, double reach) {
    if (from != to) return;
    const double half = std::trunc(reach / 2);
    from -= half;
    to += half;
}

}  // namespace

bool hitsFreehandSegment(gfx::Point p, gfx::Point from, gfx::Point to, double lineWidth) {
    // Two equal points yield NaN and so always go on.
    if (tolerance(lineWidth) < distanceFromLine(p, from, to)) return false;
    // Deliberately truncated to whole points.
    const double reach = std::trunc(tolerance(lineWidth));
    spread(from.x, to.x, reach);
    spread(from.y, to.y, reach);
    const auto side = [reach](double length) { return length < minimumSide ? reach : length; };
    return gfx::Rect(from, {side(to.x - from.x), side(to.y - from.y)}).contains(p) ||
           QVPointDistance(p, from) <= reach || QVPointDistance(p, to) <= reach;
}

double freehandHitReach(double lineWidth) {
    return tolerance(lineWidth) * 2;
}

}  // namespace kalim
