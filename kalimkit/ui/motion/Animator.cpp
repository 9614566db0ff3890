#include "kalimkit/ui/motion/Animator.h"

#include <algorithm>
#include <utility>

#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/motion/Animated.h"
#include "kalimkit/ui/motion/AnimationRun.h"

namespace kalim::ui {

namespace {

// Adds an entry to a list for the length of a scope, whatever way it is left.
class Pushed {
public:
    using Runs = std::vector<std::shared_ptr<AnimationRun>>;

    Pushed(Runs& runs, std::shared_ptr<AnimationRun> run) : _runs(runs) {
        _runs.push_back(std::move(run));
    }
    ~Pushed() { _runs.pop_back(); }
    Pushed(const Pushed&) = delete;
    Pushed& operator=(const Pushed&) = delete;

private:
    Runs& _runs;
};

}  // namespace

Animator::Animator(Environment& environment)
    : _environment(environment),
      _loop(environment.runLoop()),
      _link(_loop, [this](Time time) { tick(time); }) {}

Animator& Animator::current() {
    return Environment::current().attachment<Animator>();
}

void Animator::animate(const AnimationOptions& options, const std::function<void()>& changes,
                       std::function<void(bool finished)> completion) {
    AnimationOptions wanted = options;
    if (_environment.prefersReducedMotion()) wanted.duration = wanted.delay = 0;
    const auto run = std::make_shared<AnimationRun>(wanted, now(), std::move(completion));
    perform(run->isImmediate() ? nullptr : run, changes);
    _loop.at(run->end(), [&loop = _loop, run] { run->finish(loop.now()); });
}

void Animator::performWithoutAnimation(const std::function<void()>& changes) {
    perform(nullptr, changes);
}

void Animator::perform(std::shared_ptr<AnimationRun> run, const std::function<void()>& changes) {
    const Pushed pushed(_runs, std::move(run));
    if (changes) changes();
}

std::shared_ptr<AnimationRun> Animator::currentRun() const {
    return _runs.empty() ? nullptr : _runs.back();
}

void Animator::add(const std::shared_ptr<Animated>& animated) {
    _link.setPaused(false);
    const bool isKnown = std::ranges::any_of(
        _animated, [&animated](const auto& known) { return known.lock() == animated; });
    if (!isKnown) _animated.push_back(animated);
}

// Moving one runs nobody else's code, so the list stays as it is meanwhile.
void Animator::tick(Time time) {
    std::erase_if(_animated, [time](const auto& entry) {
        const auto animated = entry.lock();
        return !animated || !animated->advanceMotion(time);
    });
    _link.setPaused(_animated.empty());
}

}  // namespace kalim::ui
