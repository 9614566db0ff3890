#pragma once

#include <functional>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/loop/RunLoop.h"

namespace kalim::ui {

// Calls back at every display tick while it lives and is not paused. It starts paused.
class KALIM_API DisplayLink {
public:
    // The callback gets the tick's time.
    DisplayLink(RunLoop& loop, std::function<void(Time)> tick);
    ~DisplayLink();
    DisplayLink(const DisplayLink&) = delete;
    DisplayLink& operator=(const DisplayLink&) = delete;

    bool isPaused() const { return _paused; }
    void setPaused(bool paused) { _paused = paused; }

private:
    friend class RunLoop;

    RunLoop& _loop;
    std::function<void(Time)> _tick;
    bool _paused = true;
};

}  // namespace kalim::ui
