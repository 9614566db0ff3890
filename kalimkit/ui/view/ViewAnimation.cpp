#include <algorithm>
#include <utility>

#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/motion/Animator.h"
#include "kalimkit/ui/motion/ShapeLayer.h"
#include "kalimkit/ui/view/View.h"
#include "kalimkit/ui/view/ViewDecoration.h"
#include "kalimkit/ui/view/ViewMotion.h"

namespace kalim::ui {

namespace {

Time now() {
    return Environment::hasCurrent() ? Environment::current().runLoop().now() : 0;
}

}  // namespace

// ---- starting

void View::animate(const AnimationOptions& options, const std::function<void()>& changes,
                   std::function<void(bool finished)> completion) {
    Animator::current().animate(options, changes, std::move(completion));
}

void View::performWithoutAnimation(const std::function<void()>& changes) {
    Animator::current().performWithoutAnimation(changes);
}

// Before the properties are set: those of an animation go on from what is shown now, others are set
// free from theirs.
void View::startMotion(std::initializer_list<ViewProperty> properties) {
    if (!_window) return;
    if (_motion) _motion->advance(now(), _look);
    const auto run = Environment::hasCurrent() ? Animator::current().currentRun() : nullptr;
    for (const ViewProperty property : properties) {
        if (run) {
            motion().start(property, run);
            run->take(shared_from_this());
        } else if (_motion) {
            _motion->drop(property);
        }
    }
    if (run) Animator::current().add(shared_from_this());
}

// After the properties have been set.
void View::settleMotion() {
    if (!_motion) return;
    _motion->advance(now(), _look);
    forgetExtent();
    if (!_motion->hasProperties() && _motion->animations().isEmpty()) _motion = nullptr;
}

ViewMotion& View::motion() {
    if (!_motion) _motion = std::make_unique<ViewMotion>(_look);
    return *_motion;
}

// ---- going on

bool View::advanceMotion(Time time) {
    if (!_window) return false;
    bool moves = false;
    if (_motion) {
        const auto advance = [&] { _motion->advance(time, _look); };
        _motion->showsChangeAt(time) ? change(advance) : advance();
        moves = _motion->hasProperties() || _motion->animations().isRunning(time);
        settleMotion();
    }
    for (const auto& layer : ownedLayers())
        moves = layer->advance(time) || moves;
    return moves;
}

// A keyed animation of the view or of one of its shape layers may have begun.
void View::animationsChanged() {
    if (_window && isAnimating()) Animator::current().add(shared_from_this());
}

// The view leaves its window: what is on its way is there at once.
void View::stopMotion() {
    for (const auto& layer : ownedLayers())
        layer->leaveScreen();
    if (!_motion) return;
    _motion->dropAll();
    _motion->animations().jumpToEnd();
    settleMotion();
}

// ---- what is displayed

const ViewLook& View::shown() const {
    return _motion ? _motion->shown() : _look;
}

bool View::isShown() const {
    return !_hidden && shown().alpha > 0;
}

gfx::AffineTransform View::shownToSuperview() const {
    const ViewPlace& place = shown().place;
    return placed(place.toSuperview(), place.bounds,
                  _superview ? _superview->shown().place.bounds : gfx::Rect());
}

gfx::AffineTransform View::shownToWindow() const {
    gfx::AffineTransform all = shownToSuperview();
    for (const View* view = _superview; view; view = view->_superview)
        all = all.concat(view->shownToSuperview());
    return all;
}

gfx::Rect View::shownFrame() const {
    return shown().place.frame();
}

double View::shownAlpha() const {
    return shown().alpha;
}

gfx::AffineTransform View::shownTransform() const {
    return shown().place.transform;
}

gfx::Rect View::shownRectInWindow() const {
    return shownToWindow().apply(shown().place.bounds);
}

bool View::isAnimating() const {
    if (_motion && (_motion->hasProperties() || _motion->animations().isRunning(now()))) {
        return true;
    }
    return std::ranges::any_of(ownedLayers(),
                               [](const auto& layer) { return layer->isAnimating(); });
}

// ---- keyed animations

void View::addAnimation(const LayerAnimation& animation, std::string key) {
    change([&] {
        motion().animations().add(animation, std::move(key), now());
        if (Environment::hasCurrent() && Environment::current().prefersReducedMotion()) {
            motion().animations().jumpToEnd();
        }
        settleMotion();
    });
    animationsChanged();
}

void View::removeAnimation(const std::string& key) {
    if (!_motion) return;
    change([&] {
        _motion->animations().remove(key);
        settleMotion();
    });
}

void View::removeAllAnimations() {
    if (!_motion) return;
    change([&] {
        _motion->animations().clear();
        settleMotion();
    });
}

std::vector<std::string> View::animationKeys() const {
    return _motion ? _motion->animations().runningKeys(now()) : std::vector<std::string>();
}

std::vector<std::string> View::runningAnimationKeys() const {
    std::vector<std::string> keys = animationKeys();
    for (const auto& layer : ownedLayers())
        std::ranges::move(layer->animationKeys(), std::back_inserter(keys));
    return keys;
}

}  // namespace kalim::ui
