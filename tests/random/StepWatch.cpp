#include "tests/random/StepWatch.h"

#include "kalimkit/host/headless/HeadlessEnvironment.h"
#include "kalimkit/shapes/MDrawText.h"
#include "kalimkit/tool/ToolClass.h"
#include "kalimkit/ui/gesture/RotationGestureRecognizer.h"
#include "kalimkit/ui/window/Window.h"

namespace kalim::test {

// Drawing fits a text's box and font to each other, after the record and the content's measuring.
bool StepWatch::isText(const MDrawTool& tool) {
    return tool.toolClass().isKindOf(MDrawText::Class());
}

std::size_t StepWatch::takeAlerts() {
    return static_cast<HeadlessEnvironment&>(ui::Environment::current()).takeAlerts().size();
}

bool StepWatch::isTurning() const {
    const ui::GestureState state = _canvas.rotationGesture().state();
    return state == ui::GestureState::Began || state == ui::GestureState::Changed;
}

bool StepWatch::isQuiet() const {
    return _canvas.window()->activeTouches().empty() && !_canvas.curEdittingTextTool() &&
           !isTurning();
}

void StepWatch::countQuietTime(const JsonValue& step) {
    const JsonValue* seconds = step.find("wait");
    _quietTime = seconds && isQuiet() ? _quietTime + *seconds->number() : 0;
}

StepWatch::Fault StepWatch::checkNothingIsMade() const {
    if (!isAtRest()) return std::nullopt;
    for (const ToolRef& tool : _canvas.tools())
        if (tool->isNewBuild()) return tool->name() + " is still being made";
    if (_canvas.handingTool()) {
        return "the canvas still holds " + _canvas.handingTool()->name() + " as being made";
    }
    return std::nullopt;
}

// Rotations are kept in single precision, so an extent may lie a little beyond.
StepWatch::Fault StepWatch::checkContent(const std::set<ToolRef>& exempt) const {
    if (_canvas.clipsToPicture()) return std::nullopt;
    const gfx::Rect room = _canvas.ctxRect().inset(-0.001, -0.001);
    for (const ToolRef& tool : _canvas.tools()) {
        if (tool->isNewBuild() || tool->toolClass().layer() == ToolLayer::Ground || isText(*tool))
            continue;
        if (exempt.contains(tool)) continue;
        if (!room.contains(tool->frameIncludeLineWidth())) {
            return tool->name() + " reaches beyond ctxRect";
        }
    }
    return std::nullopt;
}

}  // namespace kalim::test
