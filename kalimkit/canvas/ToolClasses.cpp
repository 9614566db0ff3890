#include "kalimkit/canvas/ToolClasses.h"

#include "kalimkit/canvas/ToolType.h"
#include "kalimkit/shapes/MDrawAngle.h"
#include "kalimkit/shapes/MDrawArc.h"
#include "kalimkit/shapes/MDrawArrow.h"
#include "kalimkit/shapes/MDrawComment.h"
#include "kalimkit/shapes/MDrawEllipse.h"
#include "kalimkit/shapes/MDrawFatArrow.h"
#include "kalimkit/shapes/MDrawFreeline.h"
#include "kalimkit/shapes/MDrawLine.h"
#include "kalimkit/shapes/MDrawMosiac.h"
#include "kalimkit/shapes/MDrawPolyline.h"
#include "kalimkit/shapes/MDrawRect.h"
#include "kalimkit/shapes/MDrawRoundedRect.h"
#include "kalimkit/shapes/MDrawText.h"

namespace kalim {

namespace {

constexpr std::size_t typeCount = ToolType::Arrow + 1;

// By tool-type number.
std::array<const ToolClass*, typeCount> makeTypeClasses() {
    std::array<const ToolClass*, typeCount> classes{};
    classes[ToolType::Rectangle] = &MDrawRect::Class();
    classes[ToolType::RoundedRectangle] = &MDrawRoundedRect::Class();
    classes[ToolType::Ellipse] = &MDrawEllipse::Class();
    classes[ToolType::Text] = &MDrawText::Class();
    classes[ToolType::Freehand] = &MDrawFreeline::Class();
    classes[ToolType::Mosaic] = &MDrawMosiac::Class();
    classes[ToolType::Line] = &MDrawLine::Class();
    classes[ToolType::Arrow] = &MDrawArrow::Class();
    return classes;
}

const std::array<const ToolClass*, typeCount>& arrTypeClass() {
    static const auto classes = makeTypeClasses();
    return classes;
}

}  // namespace

const ToolClass* getClassForToolType(std::int64_t type) {
    if (type < 0 || type >= static_cast<std::int64_t>(typeCount)) return nullptr;
    return arrTypeClass()[static_cast<std::size_t>(type)];
}

std::int64_t getToolTypeForClass(const MDrawTool* tool) {
    if (!tool) return -1;
    const auto& classes = arrTypeClass();
    for (std::size_t type = 0; type < classes.size(); ++type) {
        if (classes[type] == &tool->toolClass()) return static_cast<std::int64_t>(type);
    }
    return toolTypeNotFound;
}

bool isMosaic(const MDrawTool& tool) {
    return tool.toolClass().isKindOf(MDrawMosiac::Class());
}

std::span<const ToolClass* const> toolClasses() {
    static const std::array classes{
        &MDrawRect::Class(),     &MDrawRoundedRect::Class(), &MDrawEllipse::Class(),
        &MDrawText::Class(),     &MDrawFreeline::Class(),    &MDrawMosiac::Class(),
        &MDrawLine::Class(),     &MDrawArrow::Class(),       &MDrawFatArrow::Class(),
        &MDrawPolyline::Class(), &MDrawAngle::Class(),       &MDrawArc::Class(),
        &MDrawComment::Class()};
    return classes;
}

const ToolClass* toolClassNamed(std::string_view name) {
    for (const ToolClass* toolClass : toolClasses()) {
        if (toolClass->name == name) return toolClass;
    }
    return nullptr;
}

}  // namespace kalim
