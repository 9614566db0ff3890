#include "kalimkit/shapes/MDrawFatArrow.h"

#include <cmath>

#include "kalimkit/shapes/outline/ArrowOutline.h"

namespace kalim {

namespace {

constexpr ToolProperty properties[] = {opacityProperty};

constexpr gfx::Shadow fatArrowShadow{{0.0, 1.0}, 3.0, {0, 0, 0, 0.3}};

void setBothColors(gfx::Context& context, const gfx::ColorRef& color) {
    const gfx::Color paint = color ? *color : gfx::Color{0, 0, 0, 0};
    context.setStrokeColor(paint);
    context.setFillColor(paint);
}

}  // namespace

std::shared_ptr<MDrawFatArrow> MDrawFatArrow::initWithStartPoint(gfx::Point start) {
    return makeAt<MDrawFatArrow>(start);
}

const ToolClass& MDrawFatArrow::Class() {
    static const ToolClass toolClass{"MDrawFatArrow",
                                     &MDrawLine::Class(),
                                     &MDrawTool::makeToolAt<MDrawFatArrow>,
                                     {.label = "{color}箭头", .properties = properties}};
    return toolClass;
}

bool MDrawFatArrow::hitTest(gfx::Point p) {
    return frame().contains(p);
}

void MDrawFatArrow::drawContent(gfx::Context& context) {
    // Set before the save on purpose: what is drawn after the content keeps the shadow.
    context.setShadow(fatArrowShadow);
    gfx::GraphicsStateGuard guard(context);
    setBothColors(context, color());
    context.setLineWidth(lineWidth());
    context.beginPath();
    context.translate(_startPoint.x, _startPoint.y);
    context.rotate(
        static_cast<double>(std::atan2(static_cast<float>(_endPoint.y - _startPoint.y),
                                       static_cast<float>(_endPoint.x - _startPoint.x))));
    context.addPath(fatArrowOutline(length()));
    context.fill();
    // The fill has consumed the path, so this adds nothing; the order is kept as it is.
    context.stroke();
}

void MDrawFatArrow::drawContentHandle(gfx::Context& context) {
    gfx::GraphicsStateGuard guard(context);
    setBothColors(context, color());
    MDrawLine::drawContentHandle(context);
}

}  // namespace kalim
