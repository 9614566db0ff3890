#include "kalimkit/canvas/ToolOrderStep.h"

#include <utility>

namespace kalim {

std::shared_ptr<ToolOrderStep> ToolOrderStep::make(ToolPlacements before, ToolPlacements after,
                                                   Show lay) {
    return makeStep<ToolOrderStep>(std::move(before), std::move(after), std::move(lay));
}

const ToolClass& ToolOrderStep::Class() {
    static const ToolClass toolClass{"ToolOrder", &MDrawTool::Class(), nullptr};
    return toolClass;
}

}  // namespace kalim
