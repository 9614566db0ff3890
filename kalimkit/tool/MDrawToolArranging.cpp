#include <cmath>

#include "kalimkit/tool/MDrawTool.h"
#include "kalimkit/tool/QVGeometry.h"

// What is done to a tool as a whole: moved, turned and scaled along with others.

namespace kalim {

gfx::AffineTransform MDrawTool::turning() const {
    if (!isTurnedByContext()) return {};
    const gfx::Point middle = QVMidPoint(_startPoint, _endPoint);
    if (isTurnedByQuarters())
        return gfx::AffineTransform::quarterTurn(-quarterTurns()).about(middle);
    return gfx::AffineTransform::rotation(_rotateAngle, middle);
}

void MDrawTool::mapPoints(const PointMap& map) {
    _startPoint = map(_startPoint);
    _endPoint = map(_endPoint);
}

void MDrawTool::moveBy(gfx::Point offset) {
    mapPoints([offset](gfx::Point p) { return p + offset; });
    refreshTransform();
}

void MDrawTool::turnBy(gfx::Point center, double angle) {
    const auto turn = gfx::AffineTransform::rotation(angle, center);
    if (!isSupportGestureRotate()) {
        const gfx::Point middle = frame().center();
        return moveBy(turn.apply(middle) - middle);
    }
    _rotateAngle += angle;
    _lastRotateAngle = _rotateAngle;
    if (!isTurnedByContext()) return mapPoints([&turn](gfx::Point p) { return turn.apply(p); });
    const gfx::Point middle = QVMidPoint(_startPoint, _endPoint);
    moveBy(turn.apply(middle) - middle);
}

void MDrawTool::scaleBy(gfx::Point fixed, gfx::Size factors) {
    const gfx::Point middle = frame().center();
    const gfx::Point moved{fixed.x + (middle.x - fixed.x) * factors.width,
                           fixed.y + (middle.y - fixed.y) * factors.height};
    const gfx::AffineTransform turn = turning();
    // So much longer a step along each of the tool's own axes becomes.
    const double width = std::hypot(turn.a * factors.width, turn.b * factors.height);
    const double height = std::hypot(turn.c * factors.width, turn.d * factors.height);
    mapPoints([=](gfx::Point p) {
        return gfx::Point{moved.x + (p.x - middle.x) * width, moved.y + (p.y - middle.y) * height};
    });
    refreshTransform();
}

}  // namespace kalim
