#pragma once

#include <functional>
#include <memory>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/loop/RunLoop.h"

namespace kalim::ui {

// Calls back at every display tick, or at every few of them, while it lives and is not paused. It
// starts paused. It may be destroyed within its own callback.
class KALIM_API DisplayLink {
public:
    // The callback gets the tick's time. A link that outlives its loop just never ticks again.
    DisplayLink(RunLoop& loop, std::function<void(Time)> tick);
    ~DisplayLink();
    DisplayLink(const DisplayLink&) = delete;
    DisplayLink& operator=(const DisplayLink&) = delete;

    bool isPaused() const { return _paused; }
    void setPaused(bool paused) { _paused = paused; }
    // Display ticks per call: with 3, every third tick calls. Numbers below 1 count as 1. A new
    // interval starts counting with the next tick.
    int frameInterval() const { return _frameInterval; }
    void setFrameInterval(int ticks);

private:
    friend class RunLoop;

    void fire(Time time);

    // Null once the loop is gone.
    RunLoop* _loop;
    // Shared, so that it survives the link while it runs.
    std::shared_ptr<const std::function<void(Time)>> _tick;
    bool _paused = true;
    int _frameInterval = 1;
    // Since the last call.
    int _ticks = 0;
};

}  // namespace kalim::ui
