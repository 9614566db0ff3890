#include <cmath>
#include <memory>

#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/editor/screen/TesselViewController.h"
#include "kalimkit/shapes/MDrawArrow.h"
#include "kalimkit/shapes/MDrawEllipse.h"
#include "kalimkit/shapes/MDrawLine.h"
#include "kalimkit/shapes/MDrawRect.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/window/Window.h"

// What the benchmark asks of the module beside what a page asks.

#define KALIM_EXPORT(name) __attribute__((export_name(name)))

namespace {

kalim::MDrawView& canvas() {
    kalim::ui::Window* const window = kalim::ui::Environment::current().keyWindow();
    auto& editor = dynamic_cast<kalim::TesselViewController&>(*window->rootViewController());
    return *editor.drawView();
}

kalim::ToolRef makeTool(int kind, kalim::gfx::Point start) {
    switch (kind) {
        case 0:
            return kalim::MDrawRect::initWithStartPoint(start);
        case 1:
            return kalim::MDrawEllipse::initWithStartPoint(start);
        case 2:
            return kalim::MDrawLine::initWithStartPoint(start);
        default:
            return kalim::MDrawArrow::initWithStartPoint(start);
    }
}

}  // namespace

// Adds a shape between two points: rectangle, ellipse, line, arrow.
KALIM_EXPORT("bench_add")
void add(int kind, double x, double y, double endX, double endY, double width, double red,
         double green, double blue) {
    const kalim::ToolRef tool = makeTool(kind, {x, y});
    tool->setEndPoint({endX, endY});
    tool->setLineWidth(width);
    tool->setColor(kalim::gfx::makeColor(red, green, blue));
    canvas().addTool(tool);
}

// The place among all, from the bottom, of the selected shape; -1 when there is none, or when its
// width is not this.
KALIM_EXPORT("bench_selected") int selected(double width) {
    const auto& tools = canvas().tools();
    for (std::size_t i = 0; i < tools.size(); ++i) {
        if (!tools[i]->selected()) continue;
        const double now = std::abs(tools[i]->endPoint().x - tools[i]->startPoint().x);
        return std::abs(now - width) < 1e-6 ? static_cast<int>(i) : -1;
    }
    return -1;
}
