#include "kalimkit/shapes/MDrawArc.h"

#include <algorithm>

#include "kalimkit/shapes/MeasureText.h"
#include "kalimkit/shapes/outline/VertexMeasure.h"
#include "kalimkit/tool/QVGeometry.h"

namespace kalim {

namespace {

constexpr double curveWidth = 3.0;

struct Range {
    double low;
    double high;
};

// Between what a curve's coordinate goes from `start` to `end`; it turns where its derivative is 0.
Range rangeOf(double start, double vertex, double end) {
    Range range{std::min(start, end), std::max(start, end)};
    if (vertex >= range.low && vertex <= range.high) return range;
    const double turn = (start - vertex) / (start - 2 * vertex + end);
    const double place = start + turn * (vertex - start);
    return {std::min(range.low, place), std::max(range.high, place)};
}

}  // namespace

std::shared_ptr<MDrawArc> MDrawArc::initWithStartPoint(gfx::Point start) {
    return makeWithVertex<MDrawArc>(start);
}

const ToolClass& MDrawArc::Class() {
    static const ToolClass toolClass{"MDrawArc",
                                     &MDrawAngle::Class(),
                                     &MDrawPolyline::makeToolWithVertex<MDrawArc>,
                                     {.label = "{color}弧线"}};
    return toolClass;
}

void MDrawArc::drawUp(gfx::Point p) {
    _movePoint = {};
    if (finalized()) return;
    if (rules().forgiving && hasAllVertices()) {
        _points[1] = vertexFor(p);
        return finalize();
    }
    if (rules().forgiving && isOnFirstVertex(p)) return;
    _points.push_back(QVMidPoint(_startPoint, p));
    _points.push_back(p);
    if (!rules().forgiving) finalize();
}

// The end and the vertex have come together.
bool MDrawArc::takeBackPoint() {
    if (!finalized() && hasAllVertices()) _points.pop_back();
    return MDrawAngle::takeBackPoint();
}

// The vertex with which the curve passes a point halfway.
gfx::Point MDrawArc::vertexFor(gfx::Point middle) const {
    return middle * 2 - QVMidPoint(_points.front(), _points.back());
}

gfx::Rect MDrawArc::shownFrame() const {
    if (!rules().forgiving || !hasAllVertices()) return MDrawAngle::shownFrame();
    const Range x = rangeOf(_points[0].x, _points[1].x, _points[2].x);
    const Range y = rangeOf(_points[0].y, _points[1].y, _points[2].y);
    return {x.low, y.low, x.high - x.low, y.high - y.low};
}

void MDrawArc::drawContent(gfx::Context& context) {
    // Whoever makes it by taps sees where it goes.
    if (!finalized() && rules().forgiving && !hasAllVertices())
        return MDrawAngle::drawContent(context);
    // An unfinished arc shows what any tool shows that has no content of its own.
    // NOLINTNEXTLINE(bugprone-parent-virtual-call)
    if (!finalized() && !rules().forgiving) return MDrawTool::drawContent(context);
    if (!hasAllVertices()) return;
    const bool isBeingBent = !finalized() && _movePoint != gfx::Point{};
    gfx::GraphicsStateGuard guard(context);
    useToolColor(context);
    context.setLineWidth(rules().forgiving ? lineWidth() : curveWidth);
    context.beginPath();
    context.moveTo(_points[0]);
    context.quadTo(isBeingBent ? vertexFor(_movePoint) : _points[1], _points[2]);
    context.stroke();
    if (finalized()) return;
    for (const gfx::Point end : {_points[0], _points[2]})
        drawHandleAtPoint(context, end);
}

void MDrawArc::drawContentHandle(gfx::Context& context) {
    for (const gfx::Point point : _points)
        drawHandleAtPoint(context, point);
}

std::string MDrawArc::measureText() const {
    if (!hasAllVertices()) return {};
    const auto value = [this](double length) {
        return measureValue(unitConvertIsSquare(length, false)) + " " + unit();
    };
    const float length = lengthOfQuadCurve(_points[0], _points[1], _points[2]);
    return measureLabel("Length") + ": " + value(length) + "\n" + measureLabel("Distance") + ": " +
           value(QVPointDistance(_points[0], _points[2]));
}

}  // namespace kalim
