#pragma once

#include <memory>

#include "kalimkit/canvas/StateStep.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/image/PictureCut.h"

namespace kalim {

// An entry of the undo stacks for a change of the picture's cut.
class KALIM_API PictureCutStep : public StateStep<PictureCut> {
public:
    static std::shared_ptr<PictureCutStep> make(const PictureCut& before, const PictureCut& after,
                                                Show show);
    static const ToolClass& Class();
    const ToolClass& toolClass() const override { return Class(); }

protected:
    PictureCutStep() = default;
};

}  // namespace kalim
