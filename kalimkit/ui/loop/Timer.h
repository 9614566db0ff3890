#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/loop/RunLoop.h"

namespace kalim::ui {

// A timer that its owner keeps: it fires while this object lives and is running. Stopping,
// restarting or destroying it from within its own callback is fine.
class KALIM_API Timer {
public:
    // The loop must outlive the timer.
    explicit Timer(RunLoop& loop) : _loop(loop) {}
    ~Timer() { stop(); }
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;

    // Starts over where it was running. Repeating timers keep their grid: a late host gets every
    // missed firing at its due time. An interval that is not positive counts as 0.1 ms.
    void start(double interval, bool repeats, std::function<void()> fire);
    void stop();
    // Within the callback of a timer that does not repeat, it no longer is.
    bool isRunning() const { return _id != 0; }

private:
    void schedule();
    void fire();

    RunLoop& _loop;
    // The number of the scheduled firing; 0 stands for none.
    std::uint64_t _id = 0;
    Time _start = 0;
    double _interval = 0;
    // Firings since the start; the next one is due at start + (count + 1) * interval.
    std::uint64_t _count = 0;
    bool _repeats = false;
    // Shared, so that it survives the timer while it runs.
    std::shared_ptr<const std::function<void()>> _fire;
};

}  // namespace kalim::ui
