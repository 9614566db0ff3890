#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/loop/DisplayLink.h"
#include "kalimkit/ui/motion/AnimationOptions.h"

namespace kalim::ui {

class Animated;
class AnimationRun;
class Environment;

// Moves what animates at every display tick. While nothing does, it does not tick.
class KALIM_API Animator {
public:
    explicit Animator(Environment& environment);
    // Yields that of the environment in force.
    static Animator& current();

    Time now() const { return _loop.now(); }

    // Do what View::animate and View::performWithoutAnimation do.
    void animate(const AnimationOptions& options, const std::function<void()>& changes,
                 std::function<void(bool finished)> completion);
    void performWithoutAnimation(const std::function<void()>& changes);
    // What changes made at this moment belong to; null when they show at once.
    std::shared_ptr<AnimationRun> currentRun() const;

    // Moves it at every tick from now on, until it says that it stands still.
    void add(const std::shared_ptr<Animated>& animated);

private:
    void perform(std::shared_ptr<AnimationRun> run, const std::function<void()>& changes);
    void tick(Time time);

    Environment& _environment;
    RunLoop& _loop;
    DisplayLink _link;
    std::vector<std::weak_ptr<Animated>> _animated;
    // One for each call of animate that is on; null for performWithoutAnimation.
    std::vector<std::shared_ptr<AnimationRun>> _runs;
};

}  // namespace kalim::ui
