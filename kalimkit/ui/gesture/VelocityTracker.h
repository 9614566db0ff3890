#pragma once

#include <deque>

#include "kalimkit/ui/loop/RunLoop.h"

namespace kalim::ui {

// How fast a value changes, by where it was over the last tenth of a second. A value that has
// rested for as long stands still.
template <typename Value>
class VelocityTracker {
public:
    void clear() { _samples.clear(); }

    // Times do not go backwards.
    void add(Time time, Value value) {
        forget(time);
        _samples.push_back({time, value});
    }

    // Per second, as of a time not before the last sample. Zero while all is of one moment.
    Value velocity(Time now) const {
        Value zero{};
        if (_samples.empty() || now - _samples.back().time > span) return zero;
        const Sample& first = _samples.front();
        const Sample& last = _samples.back();
        if (last.time <= first.time) return zero;
        return (last.value - first.value) * (1 / (last.time - first.time));
    }

private:
    struct Sample {
        Time time;
        Value value;
    };
    // The span is seconds.
    static constexpr double span = 0.1;

    // One sample older than the span is kept, so that there is something to compare with after
    // a rest.
    void forget(Time now) {
        while (_samples.size() > 1 && now - _samples[1].time >= span)
            _samples.pop_front();
    }

    std::deque<Sample> _samples;
};

}  // namespace kalim::ui
