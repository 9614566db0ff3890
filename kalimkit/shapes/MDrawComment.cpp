#include "kalimkit/shapes/MDrawComment.h"

namespace kalim {

std::shared_ptr<MDrawComment> MDrawComment::initWithStartPoint(gfx::Point start) {
    return makeAt<MDrawComment>(start);
}

std::shared_ptr<MDrawComment> MDrawComment::initWithViewStartPoint(
    const std::shared_ptr<ui::View>& view, gfx::Point start) {
    return makeInView<MDrawComment>(view, start);
}

const ToolClass& MDrawComment::Class() {
    static const ToolClass toolClass{"MDrawComment",
                                     &MDrawText::Class(),
                                     &MDrawTool::makeToolAt<MDrawComment>,
                                     {.label = "{color}批注"}};
    return toolClass;
}

void MDrawComment::drawContentHandle(gfx::Context& context) {
    const gfx::Rect box = frame();
    const gfx::Point middle = box.center();
    drawHandleAtPoint(context, box.origin);
    drawHandleAtPoint(context, {middle.x, box.minY()});
    drawHandleAtPoint(context, {box.maxX(), box.minY()});
    drawHandleAtPoint(context, {box.maxX(), middle.y});
    drawHandleAtPoint(context, {box.maxX(), box.maxY()});
    drawHandleAtPoint(context, {middle.x, box.maxY()});
    drawHandleAtPoint(context, {box.minX(), box.maxY()});
    drawHandleAtPoint(context, {box.minX(), middle.y});
}

}  // namespace kalim
