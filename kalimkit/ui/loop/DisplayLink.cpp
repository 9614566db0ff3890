#include "kalimkit/ui/loop/DisplayLink.h"

#include <algorithm>
#include <utility>

namespace kalim::ui {

DisplayLink::DisplayLink(RunLoop& loop, std::function<void(Time)> tick)
    : _loop(&loop), _tick(std::make_shared<const std::function<void(Time)>>(std::move(tick))) {
    _loop->addLink(*this);
}

DisplayLink::~DisplayLink() {
    if (_loop) _loop->removeLink(*this);
}

void DisplayLink::setFrameInterval(int ticks) {
    _frameInterval = std::max(ticks, 1);
    _ticks = 0;
}

void DisplayLink::fire(Time time) {
    if (++_ticks < _frameInterval) return;
    _ticks = 0;
    const auto tick = _tick;
    if (*tick) (*tick)(time);
}

}  // namespace kalim::ui
