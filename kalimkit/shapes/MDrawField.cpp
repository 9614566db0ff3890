#include "kalimkit/shapes/MDrawField.h"

#include "kalimkit/tool/QVGeometry.h"

namespace kalim {

namespace {

constexpr double minimumDiagonal = 5;
constexpr double hitMargin = 3;

}  // namespace

const ToolClass& MDrawField::Class() {
    static const ToolClass toolClass{
        "MDrawField", &MDrawRect::Class(), nullptr, {.keepsToFrame = true}};
    return toolClass;
}

bool MDrawField::isDrawVaild() const {
    return !frame().isEmpty() && length() > minimumDiagonal;
}

bool MDrawField::hitTest(gfx::Point p) {
    const double margin = onCanvas(hitMargin);
    return frame().inset(-margin, -margin).contains(invertPoint(p));
}

// By the angle itself: the transform is that of the last drawing.
gfx::Polygon MDrawField::area() const {
    const gfx::Point middle = QVMidPoint(startPoint(), endPoint());
    return gfx::cornersOf(frame(), gfx::AffineTransform::rotation(rotateAngle(), middle));
}

}  // namespace kalim
