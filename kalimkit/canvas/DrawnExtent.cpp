#include "kalimkit/canvas/DrawnExtent.h"

#include "kalimkit/gfx/ExtentContext.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

namespace {

gfx::Rect extentWith(MDrawTool& tool, double scale, gfx::ExtentContext::Shadows shadows) {
    gfx::ExtentContext context(ui::Environment::current().device(), shadows);
    const auto toSurface = gfx::AffineTransform::scaling(scale, scale);
    context.concat(toSurface);
    tool.draw(context);
    tool.drawMeasurement(context);
    return toSurface.inverted().apply(context.extent());
}

}  // namespace

gfx::Rect drawnExtent(MDrawTool& tool, double scale) {
    if (tool.toolClass().layer() == ToolLayer::Ground) return gfx::boundsOf(tool.area());
    return extentWith(tool, scale, gfx::ExtentContext::Shadows::Counted);
}

gfx::Rect shapeExtent(MDrawTool& tool) {
    if (tool.toolClass().keepsToFrame() && !tool.isTurnedByQuarters()) return tool.frame();
    return extentWith(tool, 1, gfx::ExtentContext::Shadows::LeftOut);
}

}  // namespace kalim
