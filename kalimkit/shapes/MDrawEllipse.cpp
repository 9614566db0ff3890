#include "kalimkit/shapes/MDrawEllipse.h"

#include <cmath>
#include <numbers>

#include "kalimkit/shapes/MeasureText.h"

namespace kalim {

std::shared_ptr<MDrawEllipse> MDrawEllipse::initWithStartPoint(gfx::Point start) {
    return makeAt<MDrawEllipse>(start);
}

const ToolClass& MDrawEllipse::Class() {
    static const ToolClass toolClass{"MDrawEllipse",
                                     &MDrawRect::Class(),
                                     &MDrawTool::makeToolAt<MDrawEllipse>,
                                     {.label = "{color}圆形", .toolType = 2}};
    return toolClass;
}

void MDrawEllipse::drawMove(gfx::Point p) {
    const gfx::Point own = invertPoint(p);
    if (std::abs(_startPoint.x - own.x) > 2 && std::abs(_startPoint.y - own.y) > 2) _endPoint = own;
}

bool MDrawEllipse::hitTest(gfx::Point p) {
    const gfx::Point own = invertPoint(p);
    const gfx::Rect box = frame();
    const double small = onCanvas(12);
    const double margin = onCanvas(6);
    if (box.size.height <= small || box.size.width <= small)
        return box.inset(-onCanvas(2), -onCanvas(2)).contains(own);
    if (!box.inset(-margin, -margin).contains(own)) return false;
    return isArea() || !box.inset(box.size.width * 0.25, box.size.height * 0.25).contains(own);
}

void MDrawEllipse::drawContent(gfx::Context& context) {
    gfx::Path outline;
    outline.addEllipse(frame());
    paintOutline(context, outline);
}

void MDrawEllipse::drawSlectedStateContent(gfx::Context& context) {
    gfx::GraphicsStateGuard guard(context);
    context.strokeEllipse(frame());
}

std::string MDrawEllipse::measureText() const {
    // The vertical extent is ignored on purpose.
    const double radius = uprightFrame().size.width * 0.5;
    const double area = unitConvertIsSquare(radius * radius * std::numbers::pi, true);
    const double perimeter = unitConvertIsSquare(std::abs(radius) * 2 * std::numbers::pi, false);
    return measureLabel("Radius") + ": " +
           measureValue(unitConvertIsSquare(std::abs(radius), false)) + " " + unit() + "\n" +
           measureLabel("Area") + ": " + measureValue(area) + " sq" + unit() + "\n" +
           measureLabel("Perimeter") + ": " + measureValue(perimeter) + " " + unit();
}

}  // namespace kalim
