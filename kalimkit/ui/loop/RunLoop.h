#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "kalimkit/gfx/Export.h"

namespace kalim::ui {

class DisplayLink;

// Seconds on the run loop's clock. The clock starts at 0 and moves only when the host tells it.
using Time = double;

// Owns time: the main queue, delayed calls, timers and display links. Everything runs on the host's
// one thread, inside advanceTo() and drain().
//
// Ordering: work runs in the order of its due time, and in the order of scheduling where two are
// due at the same time; the clock reads the due time while it runs. Display links tick on a fixed
// grid of frames (multiples of the frame interval from time zero, the first one interval after it),
// after all other work that is due by that moment. Moments less than a nanosecond apart count as
// one, so that ten steps of a tenth reach what is due after a second.
//
// A frame passes without a tick when no display link runs and nobody has asked for one, so a long
// wait costs only what runs during it.
class KALIM_API RunLoop {
public:
    using Work = std::function<void()>;

    // Frames per second of the display grid; 60 for a rate that is not a positive number.
    explicit RunLoop(double frameRate = 60);
    // What has not run is dropped.
    ~RunLoop();
    RunLoop(const RunLoop&) = delete;
    RunLoop& operator=(const RunLoop&) = delete;

    // ---- for everyone
    Time now() const { return _now; }
    double frameInterval() const { return 1 / _frameRate; }
    // Runs at the next drain() or advanceTo(), after what is due already.
    void async(Work work);
    // Runs once, `delay` seconds from now (at once where negative). The returned number, never 0,
    // cancels it.
    std::uint64_t after(double delay, Work work);
    // Does the same at a moment of the clock.
    std::uint64_t at(Time due, Work work);
    // A number already run or never given is ignored.
    void cancel(std::uint64_t id);
    // Asks for a tick of the next frame. Windows do when something is marked.
    void requestFrame() { _isFrameRequested = true; }

    // ---- for the host. From within work both do nothing: what is due runs when that has returned.
    // Runs what is due, and what that puts into the main queue, without moving the clock.
    void drain();
    // Moves the clock to `time`, running everything due on the way. A time in the past or one that
    // is not finite only drains.
    void advanceTo(Time time);
    // Called at every display tick, after the display links, so that the host can display.
    void setFrameHandler(Work handler);
    // Whether anything is due now or later: work, a timer, a running display link, a frame that was
    // asked for.
    bool isBusy() const { return nextDue() >= 0; }
    // The next moment at which something is due; nothing waits when negative.
    Time nextDue() const;

private:
    friend class DisplayLink;
    // Sorted as the work runs: by the moment, then by the number.
    using Key = std::pair<Time, std::uint64_t>;

    void addLink(DisplayLink& link) { _links.push_back(&link); }
    void removeLink(const DisplayLink& link);
    bool runNext(Time limit);
    void tickFrame();
    std::uint64_t nextFrame() const;
    Time nextFrameTime() const;
    Time timeOfFrame(std::uint64_t frame) const;

    Time _now = 0;
    double _frameRate;
    std::uint64_t _lastId = 0;
    // Of the frames that have passed, ticked or not.
    std::uint64_t _lastFrame = 0;
    bool _isRunning = false;
    bool _isFrameRequested = false;
    bool _isTicking = false;
    std::map<Key, Work> _work;
    // Null for one that went while a frame ticked.
    std::vector<DisplayLink*> _links;
    std::shared_ptr<const Work> _frameHandler;
};

}  // namespace kalim::ui
