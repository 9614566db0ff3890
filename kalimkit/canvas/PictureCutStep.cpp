#include "kalimkit/canvas/PictureCutStep.h"

#include <utility>

namespace kalim {

std::shared_ptr<PictureCutStep> PictureCutStep::make(const PictureCut& before,
                                                     const PictureCut& after, Show show) {
    const std::shared_ptr<PictureCutStep> step = makeAt<PictureCutStep>({});
    step->_before = before;
    step->_after = after;
    step->_show = std::move(show);
    return step;
}

const ToolClass& PictureCutStep::Class() {
    static const ToolClass toolClass{"PictureCut", &MDrawTool::Class(), nullptr};
    return toolClass;
}

ToolRef PictureCutStep::copyOfGroup() const {
    return std::const_pointer_cast<MDrawTool>(shared_from_this());
}

bool PictureCutStep::undo(const ToolStep& /*step*/) {
    _show(_before);
    return true;
}

bool PictureCutStep::redo(const ToolStep& /*step*/) {
    _show(_after);
    return true;
}

}  // namespace kalim
