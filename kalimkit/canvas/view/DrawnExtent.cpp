#include "kalimkit/canvas/view/DrawnExtent.h"

#include "kalimkit/canvas/view/ToolClasses.h"
#include "kalimkit/gfx/ExtentContext.h"
#include "kalimkit/ui/loop/Environment.h"

namespace kalim {

gfx::Rect drawnExtent(MDrawTool& tool) {
    // Patches are painted by the canvas.
    if (isMosaic(tool)) return tool.frame();
    gfx::ExtentContext context(ui::Environment::current().device());
    tool.draw(context);
    tool.drawMeasurement(context);
    return context.extent();
}

}  // namespace kalim
