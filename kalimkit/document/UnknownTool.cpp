#include "kalimkit/document/UnknownTool.h"

#include <algorithm>
#include <map>
#include <string>

#include "kalimkit/gfx/text/TextLayout.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

namespace {

constexpr gfx::Color plate{1, 1, 1, 0.6};
constexpr gfx::Color ink{0.35, 0.35, 0.35, 1};
// Points.
constexpr double frameWidth = 2;
constexpr double largestFontSize = 17;
constexpr double smallestFontSize = 6;

// There is one class per name, which outlives every canvas.
const ToolClass& unknownClass(const std::string& name) {
    static std::map<std::string, ToolClass> classes;
    const auto [entry, isNew] = classes.try_emplace(name);
    if (isNew) {
        entry->second.name = entry->first;
        entry->second.base = &MDrawRect::Class();
        entry->second.row = {.label = "{color}图形", .span = ToolSpan::Free, .keepsToFrame = true};
    }
    return entry->second;
}

}  // namespace

std::shared_ptr<UnknownTool> UnknownTool::initWithDescription(const DocumentTool& described) {
    const std::shared_ptr<UnknownTool> tool = makeAt<UnknownTool>(described.startPoint);
    tool->_toolClass = &unknownClass(described.className);
    tool->setName(described.className);
    tool->_described = described;
    tool->setEndPoint(described.endPoint);
    return tool;
}

bool UnknownTool::hitTest(gfx::Point p) {
    return frame().contains(p);
}

MoveDirection UnknownTool::handleAt(gfx::Point p) {
    return hitTest(p) ? MoveDirection::Body : MoveDirection::None;
}

void UnknownTool::drawContent(gfx::Context& context) {
    const gfx::Rect box = frame();
    gfx::GraphicsStateGuard guard(context);
    context.setFillColor(plate);
    context.fillRect(box);
    context.setStrokeColor(ink);
    context.setLineWidth(std::min({frameWidth, box.size.width / 2, box.size.height / 2}));
    const double half = frameWidth / 2;
    context.beginPath();
    context.addRect(box.inset(half, half));
    context.stroke();
    gfx::Font font;
    font.size = std::clamp(box.size.height / 3, smallestFontSize, largestFontSize);
    const gfx::TextLayout name(ui::Environment::current().device(), _described.className, font,
                               {gfx::TextLayout::unlimited, gfx::TextLayout::unlimited});
    context.clipToRect(box);
    context.setFillColor(ink);
    const gfx::Size size = name.size();
    name.draw(context, {std::max(box.midX() - size.width / 2, box.minX() + 2 * frameWidth),
                        box.midY() - size.height / 2});
}

}  // namespace kalim
