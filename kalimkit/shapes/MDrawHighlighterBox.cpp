#include "kalimkit/shapes/MDrawHighlighterBox.h"

namespace kalim {

namespace {

constexpr ToolProperty properties[] = {opacityProperty};

}  // namespace

std::shared_ptr<MDrawHighlighterBox> MDrawHighlighterBox::initWithStartPoint(gfx::Point start) {
    return makeAt<MDrawHighlighterBox>(start);
}

const ToolClass& MDrawHighlighterBox::Class() {
    static const ToolClass toolClass{
        "MDrawHighlighterBox",
        &MDrawField::Class(),
        &MDrawTool::makeToolAt<MDrawHighlighterBox>,
        {.label = "{color}荧光框", .blends = true, .toolType = 23, .properties = properties}};
    return toolClass;
}

void MDrawHighlighterBox::drawContent(gfx::Context& context) {
    const gfx::GraphicsStateGuard guard(context);
    context.setBlendMode(gfx::BlendMode::Multiply);
    context.setAlpha(number(opacityProperty.name));
    context.fillRect(frame());
}

}  // namespace kalim
