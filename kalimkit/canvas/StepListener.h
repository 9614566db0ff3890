#pragma once

#include <string>

#include "kalimkit/gfx/Export.h"

namespace kalim {

// Hears of every finished step on a canvas, as a text that MDrawView::replaySteps understands.
class KALIM_API StepListener {
public:
    virtual ~StepListener() = default;
    // A step is finished, or one was undone or redone. It comes at once, before anything of it is
    // displayed.
    virtual void canvasDidStep(const std::string& step) = 0;
    // There is another picture or document on the canvas, without steps: MDrawView::stepsSetUp is
    // another one, and what comes from now on has nothing to do with what came before.
    virtual void canvasDidRestart() = 0;
};

}  // namespace kalim
