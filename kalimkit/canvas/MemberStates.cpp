#include "kalimkit/canvas/MemberStates.h"

#include <memory>

namespace kalim {

MemberStates::MemberStates(const ToolList& tools) {
    for (const ToolRef& tool : tools) {
        _states.push_back({tool, std::make_shared<const Feature>(tool->getFeature()),
                           tool->startPoint(), tool->endPoint(), tool->lineWidth(),
                           tool->rotateAngle(), tool->lastRotateAngle()});
    }
}

// A snapshot keeps widths and angles in single precision, and not where the next turn begins.
void MemberStates::restore() const {
    for (const State& state : _states) {
        state.tool->setFeature(state.feature);
        if (state.tool->lineWidth() != state.lineWidth) state.tool->setLineWidth(state.lineWidth);
        state.tool->setStartPoint(state.start);
        state.tool->setEndPoint(state.end);
        state.tool->setRotateAngle(state.angle);
        state.tool->setLastRotateAngle(state.lastAngle);
        state.tool->refreshTransform();
    }
}

}  // namespace kalim
