#pragma once

#include <array>
#include <cstddef>
#include <memory>

#include "kalimkit/ui/motion/AnimationRun.h"
#include "kalimkit/ui/motion/LayerAnimations.h"
#include "kalimkit/ui/view/ViewLook.h"

namespace kalim::ui {

enum class ViewProperty { Center, Bounds, Transform, Alpha, BackgroundColor };

// What a view shows while it animates: its properties on their way to the final values, and what
// its keyed animations make of them.
class ViewMotion {
public:
    explicit ViewMotion(const ViewLook& look) : _from(look), _between(look), _shown(look) {}
    // Properties that are still on their way are lost to their runs.
    ~ViewMotion() { dropAll(); }
    ViewMotion(const ViewMotion&) = delete;
    ViewMotion& operator=(const ViewMotion&) = delete;

    // Starts the property from what is shown now, in place of the run that it was in.
    void start(ViewProperty property, std::shared_ptr<AnimationRun> run);
    // The property shows its final value from the next advance() on.
    void drop(ViewProperty property);
    void dropAll();

    // Whether advancing to the moment shows anything new, the final values being the same.
    bool showsChangeAt(Time time) const;
    // Shows the moment, on the way to the final values.
    void advance(Time time, const ViewLook& finals);
    const ViewLook& shown() const { return _shown; }

    bool hasProperties() const;
    bool refusesTouches() const;
    LayerAnimations& animations() { return _animations; }
    const LayerAnimations& animations() const { return _animations; }

private:
    std::shared_ptr<AnimationRun>& runOf(ViewProperty property) {
        return _runs[static_cast<std::size_t>(property)];
    }
    void moveProperties(const ViewLook& finals);
    void applyAnimations();

    // Null for a property that stands still.
    std::array<std::shared_ptr<AnimationRun>, 5> _runs;
    // Where each moving property began.
    ViewLook _from;
    // What is shown but for the keyed animations.
    ViewLook _between;
    ViewLook _shown;
    LayerAnimations _animations;
    Time _time = 0;
};

}  // namespace kalim::ui
