#pragma once

#include <vector>

#include "kalimkit/gfx/Color.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/motion/TimingCurve.h"

namespace kalim::ui {

// Opacity and Scale are factors of what the layer shows by itself, Rotation (radians) comes on top
// of it; the others take the place of a shape layer's own value.
enum class AnimatedProperty {
    Opacity,
    Scale,
    Rotation,
    StrokeStart,
    StrokeEnd,
    StrokeColor,
    LineWidth
};

// Leads one property from a value to another.
struct BasicAnimation {
    AnimatedProperty property = AnimatedProperty::Opacity;
    double from = 0;
    double to = 0;
    // Of StrokeColor; null counts as the other one made transparent.
    gfx::ColorRef fromColor = nullptr;
    gfx::ColorRef toColor = nullptr;
    // Seconds after the beginning of the round; until then the property is left alone.
    double beginTime = 0;
    // The way there takes so many seconds.
    double duration = 0.25;
    TimingCurve curve = TimingCurve::Linear;
    // The way back follows and takes as long again.
    bool autoreverses = false;
    // The last value shows on until the round is over; otherwise the property is left alone again.
    bool staysAtEnd = false;
};

// What a layer plays under a key: rounds in which each part runs at its time. Parts that name the
// same property: the later one of those that have a say wins.
struct KALIM_API LayerAnimation {
    std::vector<BasicAnimation> parts;
    // Seconds of one round, in which parts that last longer are cut off. An animation whose
    // duration is no positive number is over at once.
    double duration = 0;
    // Infinity plays for ever; what is not above 0 counts as 1.
    double repeatCount = 1;
    // What it shows at its very end stays until the animation is removed or replaced.
    bool staysAtEnd = false;

    // One round of the part alone, staying at the end as the part does.
    static LayerAnimation basic(const BasicAnimation& part);
};

}  // namespace kalim::ui
