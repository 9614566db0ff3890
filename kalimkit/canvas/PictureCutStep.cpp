#include "kalimkit/canvas/PictureCutStep.h"

#include <utility>

namespace kalim {

std::shared_ptr<PictureCutStep> PictureCutStep::make(const PictureCut& before,
                                                     const PictureCut& after, Show show) {
    return makeStep<PictureCutStep>(before, after, std::move(show));
}

const ToolClass& PictureCutStep::Class() {
    static const ToolClass toolClass{"PictureCut", &MDrawTool::Class(), nullptr};
    return toolClass;
}

}  // namespace kalim
