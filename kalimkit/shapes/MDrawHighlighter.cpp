#include "kalimkit/shapes/MDrawHighlighter.h"

#include <algorithm>
#include <vector>

#include "kalimkit/shapes/outline/SegmentHit.h"
#include "kalimkit/shapes/outline/StraightStroke.h"

namespace kalim {

namespace {

// A marker pen is wider than a pencil.
constexpr double widthsOfLine = 3;
constexpr double hitMargin = 4;

constexpr ToolProperty properties[] = {opacityProperty};

}  // namespace

std::shared_ptr<MDrawHighlighter> MDrawHighlighter::initWithStartPoint(gfx::Point start) {
    return makeAt<MDrawHighlighter>(start);
}

const ToolClass& MDrawHighlighter::Class() {
    static const ToolClass toolClass{"MDrawHighlighter",
                                     &MDrawFreeline::Class(),
                                     &MDrawTool::makeToolAt<MDrawHighlighter>,
                                     {.label = "{color}荧光笔",
                                      .recorder = ToolRecorder::Touch,
                                      .blends = true,
                                      .toolType = 22,
                                      .properties = properties}};
    return toolClass;
}

void MDrawHighlighter::init() {
    MDrawFreeline::init();
    strokes().setShowsTails(true);
}

double MDrawHighlighter::penWidth() const {
    return lineWidth() * widthsOfLine;
}

void MDrawHighlighter::drawMove(gfx::Point p) {
    _isStraight = false;
    if (linePoints().empty()) addNewPoint(invertPoint(startPoint()));
    addNewPoint(invertPoint(p));
}

void MDrawHighlighter::drawUp(gfx::Point p) {
    if (!_isStraight) {
        MDrawFreeline::drawUp(p);
    } else {
        drawStraight(p);
    }
    finalize();
}

bool MDrawHighlighter::drawStraight(gfx::Point p) {
    _isStraight = true;
    if (linePoints().empty()) addNewPoint(invertPoint(startPoint()));
    const gfx::Point first = linePoints().front().front();
    takeDetail("linePoints", PointLines{{first, straightEnd(first, invertPoint(p))}});
    // A finger that goes on freely goes on from there.
    setNeedNewLine(false);
    rebuildBoundBox();
    return true;
}

bool MDrawHighlighter::hitTest(gfx::Point p) {
    const gfx::Point own = invertPoint(p);
    const double margin = onCanvas(hitMargin);
    const double reach = penWidth() / 2 + margin;
    if (!hasEnoughPoints() || !frame().inset(-reach, -reach).contains(own)) return false;
    return std::ranges::any_of(linePoints(), [&](const std::vector<gfx::Point>& line) {
        for (std::size_t i = 1; i < line.size(); ++i) {
            if (hitsFreehandSegment(own, line[i - 1], line[i], penWidth(), margin)) return true;
        }
        return false;
    });
}

void MDrawHighlighter::drawContent(gfx::Context& context) {
    const gfx::GraphicsStateGuard guard(context);
    context.setBlendMode(gfx::BlendMode::Multiply);
    context.setAlpha(number(opacityProperty.name));
    // Curves meet in round ends.
    if (strokes().pointCount() == 2) context.setLineCap(gfx::LineCap::Butt);
    context.setLineWidth(penWidth());
    context.beginPath();
    strokes().addCurvesInSight(context);
    context.stroke();
}

void MDrawHighlighter::drawSlectedStateContent(gfx::Context& context) {
    context.beginPath();
    strokes().addCurvesInSight(context);
    context.stroke();
}

std::optional<gfx::Rect> MDrawHighlighter::takeAddedExtent() {
    const std::optional<gfx::Rect> added = MDrawFreeline::takeAddedExtent();
    if (!added || added->isEmpty()) return added;
    const double further = (penWidth() - lineWidth()) / 2;
    return added->inset(-further, -further);
}

void MDrawHighlighter::setRules(const ToolRules& rules) {
    MDrawFreeline::setRules(rules);
    strokes().setShowsTails(true);
}

}  // namespace kalim
