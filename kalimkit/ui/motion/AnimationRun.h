#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "kalimkit/ui/loop/RunLoop.h"
#include "kalimkit/ui/motion/AnimationOptions.h"

namespace kalim::ui {

class View;

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

    // A property of the view goes along.
    void take(const std::shared_ptr<View>& view);
    // A property that was taken has been taken over by a later change, or its view has left.
    void lose() { ++_lost; }
    // Shows the end and tells so.
    void finish(Time now);

private:
    AnimationOptions _options;
    Time _start;
    std::function<void(bool finished)> _completion;
    std::vector<std::weak_ptr<View>> _views;
    // Properties.
    int _taken = 0;
    int _lost = 0;
};

}  // namespace kalim::ui
