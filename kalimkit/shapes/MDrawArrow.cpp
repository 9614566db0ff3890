#include "kalimkit/shapes/MDrawArrow.h"

#include <algorithm>
#include <cmath>

#include "kalimkit/shapes/ShapeProperties.h"
#include "kalimkit/shapes/outline/ArrowOutline.h"
#include "kalimkit/tool/QVGeometry.h"

namespace kalim {

namespace {

constexpr ToolProperty::Choice headChoices[] = {
    {"end", "终点箭头"}, {"both", "双向箭头"}, {"none", "无箭头"}, {"start", "起点箭头"}};
constexpr ToolProperty headsProperty{.name = "heads",
                                     .type = ToolProperty::Type::Choice,
                                     .text = "箭头样式",
                                     .choices = headChoices};
constexpr ToolProperty bendProperty{
    .name = "bend", .text = "弯曲", .least = -1, .most = 1, .isHidden = true};
constexpr ToolProperty properties[] = {headsProperty, dashProperty, opacityProperty, bendProperty};

// Not used by the lines that an arrow derives from.
constexpr auto middleHandle = MoveDirection::Top;
// Points of the screen: an arrow that is bent by less is straight.
constexpr double straightReach = 5;
constexpr gfx::Shadow arrowShadow{{1.0, 1.0}, 2.0, {0, 0, 0, 0.35}};

}  // namespace

std::shared_ptr<MDrawArrow> MDrawArrow::initWithStartPoint(gfx::Point start) {
    return makeAt<MDrawArrow>(start);
}

const ToolClass& MDrawArrow::Class() {
    static const ToolClass toolClass{
        "MDrawArrow",
        &MDrawLine::Class(),
        &MDrawTool::makeToolAt<MDrawArrow>,
        {.label = "{color}箭头", .toolType = 7, .properties = properties}};
    return toolClass;
}

double MDrawArrow::getTailWidth() const {
    struct Tail {
        double lineWidth;
        double tailWidth;
    };
    constexpr Tail tails[] = {{2, 2}, {7, 3}, {12, 4}, {18, 4.5}, {28, 5}};
    for (const Tail& tail : tails) {
        if (tail.lineWidth == lineWidth()) return tail.tailWidth;
    }
    return 0;
}

double MDrawArrow::getArrowBottomHalfWidth() const {
    return lineWidth() + 5;
}

bool MDrawArrow::isDrawVaild() const {
    if (_startPoint == _endPoint) return false;
    return length() >= 2 * getArrowBottomHalfWidth() + 10;
}

void MDrawArrow::limitValidFeatrue() {
    MDrawLine::limitValidFeatrue();
    if (isNewBuild() && _startPoint == _endPoint) return;
    const double minimum = keptLength();
    const double current = length();
    if (!(current > 0) || minimum <= current) return;
    const gfx::Point stretched = (_endPoint - _startPoint) * (minimum / current);
    if (_moveDirection == MoveDirection::End) {
        _endPoint = _startPoint + stretched;
    } else if (_moveDirection == MoveDirection::Start) {
        _startPoint = _endPoint - stretched;
    }
}

void MDrawArrow::growToLineWidth() {
    if (isDrawVaild() || _startPoint == _endPoint) return;
    _endPoint = _startPoint + (_endPoint - _startPoint) * (keptLength() / length());
}

// Deliberately larger than what isDrawVaild() asks for.
double MDrawArrow::keptLength() const {
    return 2 * getArrowBottomHalfWidth() + 30;
}

// ---- curves, heads and dashes

CurvedArrow MDrawArrow::shape() const {
    const std::string heads = text(headsProperty.name);
    CurvedArrow arrow{.length = length(),
                      .bend = number(bendProperty.name),
                      .headHalfWidth = getArrowBottomHalfWidth(),
                      .tailWidth = getTailWidth(),
                      .lineWidth = lineWidth(),
                      .hasHeadAtEnd = heads == "end" || heads == "both",
                      .hasHeadAtStart = heads == "start" || heads == "both",
                      .dashes = {}};
    arrow.dashes = dashesNamed(text(dashProperty.name), shaftWidth(arrow));
    return arrow;
}

bool MDrawArrow::isPlain() const {
    return chosenProperties().empty() ||
           (number(bendProperty.name) == 0 && text(headsProperty.name) == headChoices[0].name &&
            text(dashProperty.name) == dashChoices[0].name);
}

gfx::Point MDrawArrow::middle() const {
    return localFrame().apply(middleOf(shape()));
}

gfx::Rect MDrawArrow::frameIncludeLineWidth() const {
    if (isPlain()) return frame();
    return frame().unionWith(outline().transformed(localFrame()).boundingBox());
}

// On a canvas that is not forgiving an arrow is dragged by its middle as ever.
bool MDrawArrow::hasMiddleHandle() const {
    return number(bendProperty.name) != 0 || rules().fineHandles;
}

MoveDirection MDrawArrow::handleAt(gfx::Point p) {
    const MoveDirection handle = MDrawLine::handleAt(p);
    if (handle == MoveDirection::Start || handle == MoveDirection::End) return handle;
    return hasMiddleHandle() && isPointOnHandle(invertPoint(p), middle()) ? middleHandle : handle;
}

void MDrawArrow::moveByOffsetEndPoint(gfx::Point offset, gfx::Point end) {
    if (_moveDirection != middleHandle) return MDrawLine::moveByOffsetEndPoint(offset, end);
    const double aside = localFrame().inverted().apply(end).y;
    const double bend = std::abs(aside) < onCanvas(straightReach) ? 0 : aside / length();
    setProperty(bendProperty.name, std::clamp(bend, bendProperty.least, bendProperty.most));
}

void MDrawArrow::drawContentHandle(gfx::Context& context) {
    MDrawLine::drawContentHandle(context);
    if (hasMiddleHandle()) drawHandleAtPoint(context, middle());
}

bool MDrawArrow::hitTest(gfx::Point p) {
    if (!isPlain()) {
        const gfx::Point own = localFrame().inverted().apply(invertPoint(p));
        return distanceFrom(shape(), own) <= getArrowBottomHalfWidth() + onCanvas(2);
    }
    // The rectangle is two points larger than the arrow; for a finger, two of the screen.
    const double margin = viewScale() > 0 ? 2 - onCanvas(2) : 0;
    return _hitRect.inset(0, margin).contains(_transform.inverted().apply(invertPoint(p)));
}

gfx::AffineTransform MDrawArrow::localFrame() const {
    const float angle = std::atan2(static_cast<float>(_startPoint.y - _endPoint.y),
                                   static_cast<float>(_startPoint.x - _endPoint.x));
    return gfx::AffineTransform::translation(_endPoint).rotated(static_cast<double>(angle));
}

gfx::Path MDrawArrow::outline() const {
    if (!isPlain()) return curvedArrowOutline(shape());
    return arrowOutline(length(), getArrowBottomHalfWidth(), getTailWidth());
}

void MDrawArrow::drawContent(gfx::Context& context) {
    if (_startPoint == _endPoint) return;
    if (selected()) context.setLineWidth(1.0);
    gfx::GraphicsStateGuard guard(context);
    context.beginPath();
    _transform = localFrame();
    context.concat(_transform);
    const double halfWidth = getArrowBottomHalfWidth();
    _hitRect = {-1, -2 - halfWidth, length() + 2, 2 * halfWidth + 4};
    context.setShadow(arrowShadow);
    context.addPath(outline());
    context.fill();
}

void MDrawArrow::drawSlectedStateContent(gfx::Context& context) {
    context.setLineWidth(onCanvas(2));
    if (_startPoint == _endPoint) return;
    gfx::GraphicsStateGuard guard(context);
    context.concat(localFrame());
    context.beginPath();
    context.addPath(outline());
    context.stroke();
}

}  // namespace kalim
