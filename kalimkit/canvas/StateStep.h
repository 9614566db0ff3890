#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "kalimkit/tool/MDrawTool.h"

namespace kalim {

// An entry of the undo stacks for a change of something that is no tool. It stands there as a group
// without members does: it is on no canvas, and a step over it only shows the other state.
template <typename State>
class StateStep : public MDrawTool {
public:
    // Has the canvas show a state.
    using Show = std::function<void(const State& state)>;

    const State& before() const { return _before; }
    const State& after() const { return _after; }

    bool mutabaleToolObjType() const override { return true; }
    // The entry is the step itself, which nothing changes any more.
    ToolRef copyOfGroup() const override {
        return std::const_pointer_cast<MDrawTool>(shared_from_this());
    }
    bool undo(const ToolStep& /*step*/) override {
        _show(_before);
        return true;
    }
    bool redo(const ToolStep& /*step*/) override {
        _show(_after);
        return true;
    }
    bool updatefeature() override { return true; }
    bool hasUnrecordedChange() const override { return true; }
    void resetRedo() override {}
    void reset() override {}

protected:
    StateStep() = default;
    template <typename Step>
    static std::shared_ptr<Step> makeStep(State before, State after, Show show) {
        const std::shared_ptr<Step> step = makeAt<Step>({});
        StateStep& entry = *step;
        entry._before = std::move(before);
        entry._after = std::move(after);
        entry._show = std::move(show);
        return step;
    }

private:
    State _before;
    State _after;
    Show _show;
};

}  // namespace kalim
