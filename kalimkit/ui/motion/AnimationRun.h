#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "kalimkit/ui/loop/RunLoop.h"
#include "kalimkit/ui/motion/AnimationOptions.h"

namespace kalim::ui {

class Animated;

// What one View::animate has set going: properties of any number of views.
class AnimationRun {
public:
    AnimationRun(const AnimationOptions& options, Time start,
                 std::function<void(bool finished)> completion);

    // Nothing is to be seen of it.
    bool isImmediate() const { return _options.duration == 0 && _options.delay == 0; }
    bool allowsUserInteraction() const { return _options.allowsUserInteraction; }
    Time end() const { return _start + _options.delay + _options.duration; }
    bool isOver(Time time) const;
    // How far the properties have come; a spring's may be beyond 1.
    double share(Time time) const;

    // One of its properties goes along.
    void take(const std::shared_ptr<Animated>& animated);
    // A property that was taken has been taken over by a later change, or its owner has left.
    void lose() { ++_lost; }
    // Shows the end and tells so.
    void finish(Time now);

private:
    AnimationOptions _options;
    Time _start;
    std::function<void(bool finished)> _completion;
    std::vector<std::weak_ptr<Animated>> _animated;
    // These count properties.
    int _taken = 0;
    int _lost = 0;
};

}  // namespace kalim::ui
