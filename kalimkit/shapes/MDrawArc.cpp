#include "kalimkit/shapes/MDrawArc.h"

#include "kalimkit/shapes/MeasureText.h"
#include "kalimkit/shapes/outline/VertexMeasure.h"
#include "kalimkit/tool/QVGeometry.h"

namespace kalim {

namespace {

constexpr double curveWidth = 3.0;

}  // namespace

std::shared_ptr<MDrawArc> MDrawArc::initWithStartPoint(gfx::Point start) {
    return makeWithVertex<MDrawArc>(start);
}

const ToolClass& MDrawArc::Class() {
    static const ToolClass toolClass{"MDrawArc",
                                     &MDrawAngle::Class(),
                                     &MDrawPolyline::makeToolWithVertex<MDrawArc>,
                                     {.label = "{}弧线"}};
    return toolClass;
}

void MDrawArc::drawUp(gfx::Point p) {
    _movePoint = {};
    if (finalized()) return;
    _points.push_back(QVMidPoint(_startPoint, p));
    _points.push_back(p);
    finalize();
}

void MDrawArc::drawContent(gfx::Context& context) {
    // Whoever makes it by taps sees where it goes.
    if (!finalized() && rules().forgiving) return MDrawAngle::drawContent(context);
    // An unfinished arc shows what any tool shows that has no content of its own.
    // NOLINTNEXTLINE(bugprone-parent-virtual-call)
    if (!finalized()) return MDrawTool::drawContent(context);
    if (!hasAllVertices()) return;
    gfx::GraphicsStateGuard guard(context);
    useToolColor(context);
    context.setLineWidth(curveWidth);
    context.beginPath();
    context.moveTo(_points[0]);
    context.quadTo(_points[1], _points[2]);
    context.stroke();
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
