#include "kalimkit/canvas/ToolOrderStep.h"

#include <utility>

namespace kalim {

std::shared_ptr<ToolOrderStep> ToolOrderStep::make(ToolPlacements before, ToolPlacements after,
                                                   Lay lay) {
    const std::shared_ptr<ToolOrderStep> step = makeAt<ToolOrderStep>({});
    step->_before = std::move(before);
    step->_after = std::move(after);
    step->_lay = std::move(lay);
    return step;
}

const ToolClass& ToolOrderStep::Class() {
    static const ToolClass toolClass{"ToolOrder", &MDrawTool::Class(), nullptr};
    return toolClass;
}

ToolRef ToolOrderStep::copyOfGroup() const {
    return std::const_pointer_cast<MDrawTool>(shared_from_this());
}

bool ToolOrderStep::undo(const ToolStep& /*step*/) {
    _lay(_before);
    return true;
}

bool ToolOrderStep::redo(const ToolStep& /*step*/) {
    _lay(_after);
    return true;
}

}  // namespace kalim
