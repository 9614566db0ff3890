#include "kalimkit/shapes/MDrawArrow.h"

#include <cmath>

#include "kalimkit/shapes/outline/ArrowOutline.h"
#include "kalimkit/tool/QVGeometry.h"

namespace kalim {

namespace {

constexpr gfx::Shadow arrowShadow{{1.0, 1.0}, 2.0, {0, 0, 0, 0.35}};

}  // namespace

std::shared_ptr<MDrawArrow> MDrawArrow::initWithStartPoint(gfx::Point start) {
    return makeAt<MDrawArrow>(start);
}

const ToolClass& MDrawArrow::Class() {
    static const ToolClass toolClass{"MDrawArrow",
                                     &MDrawLine::Class(),
                                     &MDrawTool::makeToolAt<MDrawArrow>,
                                     {.label = "{}箭头", .toolType = 7}};
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

bool MDrawArrow::hitTest(gfx::Point p) {
    // The rectangle is two points larger than the arrow; for a finger, two of the screen.
    const double margin = viewScale() > 0 ? 2 - onCanvas(2) : 0;
    return _hitRect.inset(0, margin).contains(_transform.inverted().apply(invertPoint(p)));
}

void MDrawArrow::rotateChangedWithAngle(double angle) {
    MDrawLine::rotateChangedWithAngle(angle);
    const gfx::Point middle = QVMidPoint(_startPoint, _endPoint);
    const auto turn = gfx::AffineTransform::rotation(angle - _preRotateAngle, middle);
    _startPoint = turn.apply(_startPoint);
    _endPoint = turn.apply(_endPoint);
    _preRotateAngle = angle;
}

void MDrawArrow::rotateEndedWithAngle(double angle) {
    MDrawLine::rotateEndedWithAngle(angle);
    _preRotateAngle = 0;
}

gfx::AffineTransform MDrawArrow::localFrame() const {
    const float angle = std::atan2(static_cast<float>(_startPoint.y - _endPoint.y),
                                   static_cast<float>(_startPoint.x - _endPoint.x));
    return gfx::AffineTransform::translation(_endPoint).rotated(static_cast<double>(angle));
}

gfx::Path MDrawArrow::outline() const {
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
