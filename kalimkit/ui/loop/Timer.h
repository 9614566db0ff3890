#pragma once

#include <cstdint>
#include <functional>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/loop/RunLoop.h"

namespace kalim::ui {

// A timer that its owner keeps: it fires while this object lives and is running. Destroying it,
// also from within its own callback, stops it.
class KALIM_API Timer {
public:
    explicit Timer(RunLoop& loop) : _loop(loop) {}
    ~Timer() { stop(); }
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;

    // Starts over where it was running. Repeating timers keep their grid: a late host gets every
    // missed firing at its due time. An interval that is not positive counts as 0.1 ms.
    void start(double interval, bool repeats, std::function<void()> fire);
    void stop();
    bool isRunning() const { return _id != 0; }

private:
    void schedule(double delay);

    RunLoop& _loop;
    std::uint64_t _id = 0;
    Time _due = 0;
    double _interval = 0;
    bool _repeats = false;
    std::function<void()> _fire;
};

}  // namespace kalim::ui
