#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "kalimkit/canvas/StateStep.h"
#include "kalimkit/gfx/Export.h"

namespace kalim {

// A tool and where it lies in the drawing order.
struct ToolPlacement {
    ToolRef tool;
    std::size_t place = 0;

    bool operator==(const ToolPlacement&) const = default;
};
// Lowest first.
using ToolPlacements = std::vector<ToolPlacement>;

// An entry of the undo stacks for a change of the drawing order.
class KALIM_API ToolOrderStep : public StateStep<ToolPlacements> {
public:
    // `lay` takes the tools out of the order and lays each at its place, from the lowest.
    static std::shared_ptr<ToolOrderStep> make(ToolPlacements before, ToolPlacements after,
                                               Show lay);
    static const ToolClass& Class();
    const ToolClass& toolClass() const override { return Class(); }

protected:
    ToolOrderStep() = default;
};

}  // namespace kalim
