#include "kalimkit/shapes/MDrawRoundedRect.h"

namespace kalim {

std::shared_ptr<MDrawRoundedRect> MDrawRoundedRect::initWithStartPoint(gfx::Point start) {
    return makeAt<MDrawRoundedRect>(start);
}

const ToolClass& MDrawRoundedRect::Class() {
    static const ToolClass toolClass{"MDrawRoundedRect",
                                     &MDrawRect::Class(),
                                     &MDrawTool::makeToolAt<MDrawRoundedRect>,
                                     {.label = "{color}圆角矩形", .toolType = 1}};
    return toolClass;
}

void MDrawRoundedRect::init() {
    MDrawRect::init();
    setRectArcRadius(usualArcRadius());
}

}  // namespace kalim
