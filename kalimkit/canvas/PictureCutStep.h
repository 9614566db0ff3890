#pragma once

#include <functional>
#include <memory>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/image/PictureCut.h"
#include "kalimkit/tool/MDrawTool.h"

namespace kalim {

// An entry of the undo stacks for a change of the picture's cut. It stands there as a group without
// members does: it is on no canvas, and a step over it only shows the other cut.
class KALIM_API PictureCutStep : public MDrawTool {
public:
    // `show` has the canvas show a cut.
    using Show = std::function<void(const PictureCut& cut)>;
    static std::shared_ptr<PictureCutStep> make(const PictureCut& before, const PictureCut& after,
                                                Show show);
    static const ToolClass& Class();
    const ToolClass& toolClass() const override { return Class(); }

    const PictureCut& before() const { return _before; }
    const PictureCut& after() const { return _after; }

    bool mutabaleToolObjType() const override { return true; }
    // The entry is the step itself, which nothing changes any more.
    ToolRef copyOfGroup() const override;
    bool undo(const ToolStep& step) override;
    bool redo(const ToolStep& step) override;
    bool updatefeature() override { return true; }
    bool hasUnrecordedChange() const override { return true; }
    void resetRedo() override {}
    void reset() override {}

protected:
    PictureCutStep() = default;

private:
    PictureCut _before;
    PictureCut _after;
    Show _show;
};

}  // namespace kalim
