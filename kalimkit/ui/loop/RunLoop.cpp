#include "kalimkit/ui/loop/RunLoop.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "kalimkit/ui/loop/DisplayLink.h"
#include "kalimkit/ui/loop/FlagScope.h"

namespace kalim::ui {

namespace {

// Moments closer than this are the same one.
constexpr Time tolerance = 1e-9;
constexpr Time never = std::numeric_limits<Time>::infinity();

}  // namespace

RunLoop::RunLoop(double frameRate)
    : _frameRate(std::isfinite(frameRate) && frameRate > 0 ? frameRate : 60) {}

RunLoop::~RunLoop() {
    // One at a time: what a dropped closure owns may cancel others while it goes.
    while (!_work.empty())
        _work.extract(_work.begin());
    for (DisplayLink* const link : _links)
        link->_loop = nullptr;
}

void RunLoop::async(Work work) {
    at(_now, std::move(work));
}

std::uint64_t RunLoop::after(double delay, Work work) {
    return at(delay > 0 ? _now + delay : _now, std::move(work));
}

std::uint64_t RunLoop::at(Time due, Work work) {
    const Time moment = due > _now ? due : _now;
    _work.emplace(Key{moment, ++_lastId}, std::move(work));
    return _lastId;
}

void RunLoop::cancel(std::uint64_t id) {
    const auto found =
        std::ranges::find_if(_work, [id](const auto& entry) { return entry.first.second == id; });
    // Taken out before it is destroyed, because what it owns may cancel others.
    if (found != _work.end()) _work.extract(found);
}

void RunLoop::drain() {
    advanceTo(_now);
}

void RunLoop::advanceTo(Time time) {
    if (_isRunning) return;
    const FlagScope running(_isRunning);
    const Time target = std::isfinite(time) ? std::max(time, _now) : _now;
    for (;;) {
        // Asked anew each time: any work may start a link or ask for a frame.
        const Time frame = nextFrameTime();
        if (runNext(std::min(frame, target))) continue;
        if (frame > target + tolerance) break;
        tickFrame();
    }
    _now = std::max(_now, target);
    const double passed = std::floor((_now + tolerance) * _frameRate);
    _lastFrame = std::max(_lastFrame, static_cast<std::uint64_t>(passed));
}

void RunLoop::setFrameHandler(Work handler) {
    _frameHandler = handler ? std::make_shared<const Work>(std::move(handler)) : nullptr;
}

Time RunLoop::nextDue() const {
    const Time work = _work.empty() ? never : _work.begin()->first.first;
    const Time due = std::min(work, nextFrameTime());
    return due == never ? -1 : due;
}

void RunLoop::removeLink(const DisplayLink& link) {
    if (_isTicking) {
        std::ranges::replace(_links, &link, nullptr);
    } else {
        std::erase(_links, &link);
    }
}

// Runs the first piece of work if it is due by the limit.
bool RunLoop::runNext(Time limit) {
    if (_work.empty() || _work.begin()->first.first > limit + tolerance) return false;
    const auto next = _work.extract(_work.begin());
    _now = std::max(_now, next.key().first);
    if (next.mapped()) next.mapped()();
    return true;
}

void RunLoop::tickFrame() {
    _lastFrame = nextFrame();
    const Time time = timeOfFrame(_lastFrame);
    _now = std::max(_now, time);
    {
        const FlagScope ticking(_isTicking);
        // Those made meanwhile start with the next frame.
        const std::size_t count = _links.size();
        for (std::size_t i = 0; i < count; ++i) {
            if (_links[i] && !_links[i]->isPaused()) _links[i]->fire(time);
        }
    }
    std::erase(_links, nullptr);
    // What the links have marked is displayed now; what the handler marks waits for the next frame.
    _isFrameRequested = false;
    if (const auto handler = _frameHandler) (*handler)();
}

std::uint64_t RunLoop::nextFrame() const {
    const double reached = std::ceil((_now - tolerance) * _frameRate);
    return std::max(_lastFrame + 1, static_cast<std::uint64_t>(std::max(reached, 0.0)));
}

Time RunLoop::nextFrameTime() const {
    const bool isWanted = _isFrameRequested || std::ranges::any_of(_links, [](DisplayLink* link) {
                              return link && !link->isPaused();
                          });
    return isWanted ? timeOfFrame(nextFrame()) : never;
}

// From the number of the frame, not from the frame before: nothing adds up over hours.
Time RunLoop::timeOfFrame(std::uint64_t frame) const {
    return static_cast<Time>(frame) / _frameRate;
}

}  // namespace kalim::ui
