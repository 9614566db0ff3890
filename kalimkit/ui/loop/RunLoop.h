#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "kalimkit/gfx/Export.h"

namespace kalim::ui {

class DisplayLink;
class Timer;

// Seconds on the run loop's clock. The clock starts at 0 and moves only when the host tells it.
using Time = double;

// Owns time: the main queue, delayed calls, timers and display links. Everything runs on the host's
// one thread, inside advanceTo() and drain().
//
// Ordering: work runs in the order of its due time, and in the order of scheduling where two are
// due at the same time; the clock reads the due time while it runs. Display links tick on a fixed
// grid of frames (multiples of the frame interval from time zero), after all other work that is due
// by that moment.
class KALIM_API RunLoop {
public:
    using Work = std::function<void()>;

    // Frames per second of the display grid.
    explicit RunLoop(double frameRate = 60);
    ~RunLoop();
    RunLoop(const RunLoop&) = delete;
    RunLoop& operator=(const RunLoop&) = delete;

    // ---- for everyone
    Time now() const { return _now; }
    double frameInterval() const { return _frameInterval; }
    // Runs at the next drain() or advanceTo(), after what is queued already.
    void async(Work work);
    // Runs once, `delay` seconds from now (at once where negative). The returned number cancels it.
    std::uint64_t after(double delay, Work work);
    // A number already run or never given is ignored.
    void cancel(std::uint64_t id);

    // ---- for the host
    // Runs the main queue until it is empty, without moving the clock.
    void drain();
    // Moves the clock to `time`, running everything due on the way, then drains. A time in the past
    // only drains.
    void advanceTo(Time time);
    // Called at every display tick, after the display links, so that the host can display.
    void setFrameHandler(Work handler) { _frameHandler = std::move(handler); }
    // Whether anything waits for time to pass: a delayed call, a timer or a running display link.
    bool isBusy() const;
    // The next moment at which something is due; nothing waits when negative.
    Time nextDue() const;

private:
    friend class DisplayLink;
    struct Entry {
        Time due;
        std::uint64_t id;
        Work work;
    };

    void runDueBefore(Time limit, bool inclusive);
    void tickFrame();
    bool popDue(Time limit, Entry& entry);

    Time _now = 0;
    double _frameInterval;
    std::uint64_t _lastId = 0;
    std::uint64_t _lastFrame = 0;
    std::vector<Entry> _entries;
    std::vector<Work> _queue;
    std::vector<DisplayLink*> _links;
    Work _frameHandler;
};

}  // namespace kalim::ui
