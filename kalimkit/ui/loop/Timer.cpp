#include "kalimkit/ui/loop/Timer.h"

#include <utility>

namespace kalim::ui {

namespace {

constexpr double shortestInterval = 0.0001;

}  // namespace

void Timer::start(double interval, bool repeats, std::function<void()> fire) {
    stop();
    _start = _loop.now();
    _interval = interval > 0 ? interval : shortestInterval;
    _count = 0;
    _repeats = repeats;
    _fire = std::make_shared<const std::function<void()>>(std::move(fire));
    schedule();
}

void Timer::stop() {
    _loop.cancel(std::exchange(_id, 0));
}

void Timer::schedule() {
    const Time due = _start + static_cast<double>(_count + 1) * _interval;
    _id = _loop.at(due, [this] { this->fire(); });
}

void Timer::fire() {
    const auto work = _fire;
    _id = 0;
    ++_count;
    if (_repeats) schedule();
    if (*work) (*work)();
}

}  // namespace kalim::ui
