#include "kalimkit/shapes/MDrawAngle.h"

#include <algorithm>

#include "kalimkit/shapes/MeasureText.h"
#include "kalimkit/shapes/outline/VertexMeasure.h"
#include "kalimkit/tool/QVGeometry.h"

namespace kalim {

namespace {

constexpr double largestArcRadius = 20;

}  // namespace

std::shared_ptr<MDrawAngle> MDrawAngle::initWithStartPoint(gfx::Point start) {
    return makeWithVertex<MDrawAngle>(start);
}

const ToolClass& MDrawAngle::Class() {
    static const ToolClass toolClass{"MDrawAngle",
                                     &MDrawPolyline::Class(),
                                     &MDrawPolyline::makeToolWithVertex<MDrawAngle>,
                                     {.label = "{color}角"}};
    return toolClass;
}

void MDrawAngle::init() {
    MDrawPolyline::init();
    _closePath = false;
}

void MDrawAngle::drawUp(gfx::Point p) {
    _movePoint = {};
    if (finalized()) return;
    if (!isOnFirstVertex(p)) _points.push_back(p);
    if (hasAllVertices()) finalize();
}

void MDrawAngle::drawContent(gfx::Context& context) {
    MDrawPolyline::drawContent(context);
    if (!finalized() || !hasAllVertices()) return;
    const gfx::Point vertex = _points[1];
    const double radius = std::min({QVPointDistance(_points[0], vertex),
                                    QVPointDistance(_points[2], vertex), largestArcRadius});
    gfx::GraphicsStateGuard guard(context);
    // The width is deliberately what is in force: that of the handles where those were drawn.
    useToolColor(context);
    context.beginPath();
    context.addArc(vertex, radius, directionOf(vertex, _points[0]), directionOf(vertex, _points[2]),
                   false);
    context.stroke();
}

std::string MDrawAngle::measureText() const {
    if (!hasAllVertices()) return {};
    return measureLabel("Degree") + " : " +
           measureValue(degreesBetween(_points[0], _points[1], _points[2]));
}

}  // namespace kalim
