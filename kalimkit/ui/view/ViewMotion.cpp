#include "kalimkit/ui/view/ViewMotion.h"

#include <algorithm>
#include <utility>

#include "kalimkit/ui/motion/Mix.h"

namespace kalim::ui {

void ViewMotion::start(ViewProperty property, std::shared_ptr<AnimationRun> run) {
    drop(property);
    runOf(property) = std::move(run);
    switch (property) {
        case ViewProperty::Center:
            _from.place.center = _between.place.center;
            break;
        case ViewProperty::Bounds:
            _from.place.bounds = _between.place.bounds;
            break;
        case ViewProperty::Transform:
            _from.place.transform = _between.place.transform;
            break;
        case ViewProperty::Alpha:
            _from.alpha = _between.alpha;
            break;
        case ViewProperty::BackgroundColor:
            _from.backgroundColor = _between.backgroundColor;
            break;
    }
}

void ViewMotion::drop(ViewProperty property) {
    if (const auto run = std::exchange(runOf(property), nullptr)) run->lose();
}

void ViewMotion::dropAll() {
    for (auto& entry : _runs) {
        if (const auto run = std::exchange(entry, nullptr)) run->lose();
    }
}

bool ViewMotion::showsChangeAt(Time time) const {
    const bool moves = std::ranges::any_of(
        _runs, [&](const auto& run) { return run && run->share(time) != run->share(_time); });
    if (moves || _animations.isEmpty()) return moves;
    // What is over and does not stay is dropped, which shows, too.
    LayerAnimations then = _animations;
    then.dropOver(time);
    return then.valuesAt(time) != _animations.valuesAt(_time);
}

void ViewMotion::advance(Time time, const ViewLook& finals) {
    _time = time;
    for (auto& run : _runs) {
        if (run && run->isOver(time)) run = nullptr;
    }
    _animations.dropOver(time);
    moveProperties(finals);
    applyAnimations();
}

void ViewMotion::moveProperties(const ViewLook& finals) {
    const auto mixed = [this](ViewProperty property, const auto& from, const auto& to) {
        const auto& run = _runs[static_cast<std::size_t>(property)];
        return run ? mix(from, to, run->share(_time)) : to;
    };
    const ViewPlace& place = finals.place;
    _between.place = {
        mixed(ViewProperty::Center, _from.place.center, place.center),
        mixed(ViewProperty::Bounds, _from.place.bounds, place.bounds),
        mixed(ViewProperty::Transform, _from.place.transform, place.transform),
        place.anchorPoint,
    };
    _between.alpha = std::clamp(mixed(ViewProperty::Alpha, _from.alpha, finals.alpha), 0.0, 1.0);
    _between.backgroundColor =
        mixed(ViewProperty::BackgroundColor, _from.backgroundColor, finals.backgroundColor);
}

void ViewMotion::applyAnimations() {
    _shown = _between;
    if (_animations.isEmpty()) return;
    const LayerValues values = _animations.valuesAt(_time);
    _shown.alpha *= values.opacity;
    if (values.scale == 1 && values.rotation == 0) return;
    _shown.place.transform = gfx::AffineTransform::scaling(values.scale, values.scale)
                                 .concat(gfx::AffineTransform::rotation(values.rotation))
                                 .concat(_between.place.transform);
}

bool ViewMotion::hasProperties() const {
    return std::ranges::any_of(_runs, [](const auto& run) { return run != nullptr; });
}

bool ViewMotion::refusesTouches() const {
    return std::ranges::any_of(
        _runs, [](const auto& run) { return run && !run->allowsUserInteraction(); });
}

}  // namespace kalim::ui
