#pragma once

#include <cstddef>
#include <optional>
#include <set>
#include <string>

#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/host/headless/JsonValue.h"

namespace kalim::test {

// Follows the steps of a scenario and tells what the canvas got wrong.
class StepWatch {
public:
    // What is wrong, one sentence.
    using Fault = std::optional<std::string>;

    // The canvas must be new, and outlive the watch.
    explicit StepWatch(MDrawView& canvas) : _canvas(canvas) {}
    virtual ~StepWatch() = default;
    StepWatch(const StepWatch&) = delete;
    StepWatch& operator=(const StepWatch&) = delete;

    // Around every step.
    virtual void willPlay() = 0;
    virtual Fault didPlay(const JsonValue& step) = 0;
    // Whether a tool must look as before when all is undone and redone.
    virtual bool comesBack(const ToolRef& tool) const = 0;

protected:
    static bool isText(const MDrawTool& tool);
    static std::size_t takeAlerts();
    bool isTurning() const;
    // No fingers, nothing typed or turned.
    bool isQuiet() const;
    void countQuietTime(const JsonValue& step);
    // Fingers, texts and freehand drawings have had the time to come to rest.
    bool isAtRest() const { return isQuiet() && _quietTime >= 3; }
    Fault checkNothingIsMade() const;
    Fault checkContent(const std::set<ToolRef>& exempt) const;

    MDrawView& _canvas;

private:
    // Seconds.
    double _quietTime = 0;
};

}  // namespace kalim::test
