#pragma once

#include <functional>
#include <memory>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/loop/RunLoop.h"

namespace kalim::ui {

// Calls back at every display tick while it lives and is not paused. It starts paused. It may be
// destroyed within its own callback.
class KALIM_API DisplayLink {
public:
    // The callback gets the tick's time. The loop must outlive the link.
    DisplayLink(RunLoop& loop, std::function<void(Time)> tick);
    ~DisplayLink();
    DisplayLink(const DisplayLink&) = delete;
    DisplayLink& operator=(const DisplayLink&) = delete;

    bool isPaused() const { return _paused; }
    void setPaused(bool paused) { _paused = paused; }

private:
    friend class RunLoop;

    void fire(Time time);

    RunLoop& _loop;
    // Shared, so that it survives the link while it runs.
    std::shared_ptr<const std::function<void(Time)>> _tick;
    bool _paused = true;
};

}  // namespace kalim::ui
