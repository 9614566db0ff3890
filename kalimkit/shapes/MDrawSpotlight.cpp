#include "kalimkit/shapes/MDrawSpotlight.h"

namespace kalim {

namespace {

constexpr ToolProperty properties[] = {{.name = "dark",
                                        .type = ToolProperty::Type::Number,
                                        .text = "暗度",
                                        .least = 0.1,
                                        .most = 0.95,
                                        .step = 0.05,
                                        .usual = 0.6}};

}  // namespace

std::shared_ptr<MDrawSpotlight> MDrawSpotlight::initWithStartPoint(gfx::Point start) {
    return makeAt<MDrawSpotlight>(start);
}

const ToolClass& MDrawSpotlight::Class() {
    static const ToolClass toolClass{
        "MDrawSpotlight",
        &MDrawField::Class(),
        &MDrawTool::makeToolAt<MDrawSpotlight>,
        {.label = "聚光灯", .layer = ToolLayer::Shade, .toolType = 25, .properties = properties}};
    return toolClass;
}

double MDrawSpotlight::shade() const {
    return number("dark");
}

}  // namespace kalim
