#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <vector>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/tool/MDrawTool.h"

namespace kalim {

// A tool and where it lies in the drawing order.
struct ToolPlacement {
    ToolRef tool;
    std::size_t place = 0;

    bool operator==(const ToolPlacement&) const = default;
};
// Lowest first.
using ToolPlacements = std::vector<ToolPlacement>;

// An entry of the undo stacks for a change of the drawing order. It stands there as a group without
// members does: a step over it only lays its tools at the other places.
class KALIM_API ToolOrderStep : public MDrawTool {
public:
    // `lay` takes the tools out of the order and lays each at its place, from the lowest.
    using Lay = std::function<void(const ToolPlacements& placements)>;
    static std::shared_ptr<ToolOrderStep> make(ToolPlacements before, ToolPlacements after,
                                               Lay lay);
    static const ToolClass& Class();
    const ToolClass& toolClass() const override { return Class(); }

    const ToolPlacements& after() const { return _after; }

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
    ToolOrderStep() = default;

private:
    ToolPlacements _before;
    ToolPlacements _after;
    Lay _lay;
};

}  // namespace kalim
