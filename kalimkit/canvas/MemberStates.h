#pragma once

#include <vector>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/tool/MDrawTool.h"

namespace kalim {

// How tools were at one moment, to the last digit, so that what is done with them can be begun
// anew. Of tools under forgiving rules: others leave some of their points out of snapshots.
class KALIM_API MemberStates {
public:
    MemberStates() = default;
    explicit MemberStates(const ToolList& tools);

    bool isEmpty() const { return _states.empty(); }
    void restore() const;

private:
    struct State {
        ToolRef tool;
        FeatureRef feature;
        gfx::Point start;
        gfx::Point end;
        double lineWidth = 0;
        double angle = 0;
        double lastAngle = 0;
    };
    std::vector<State> _states;
};

}  // namespace kalim
