#pragma once

#include "kalimkit/gfx/Export.h"

namespace kalim::ui {

// How far content that was pulled beyond its edge is shown beyond it: less the farther, and never
// as far as the view is long. Points; odd in the distance.
KALIM_API double rubberBand(double distance, double viewLength);
// The distance that is shown as that one.
KALIM_API double rubberBandPull(double shown, double viewLength);

// Where an offset may rest.
struct ScrollRange {
    double least = 0;
    double most = 0;

    bool operator==(const ScrollRange&) const = default;
    double clamped(double offset) const;
    // The offset with what lies beyond the range on the rubber band.
    double banded(double offset, double viewLength) const;
    // The offset that is shown as that one.
    double unbanded(double offset, double viewLength) const;
};

// How an offset moves along one axis once it is let go of: it loses 0.2 % of its speed every
// millisecond; an edge that it passes pulls it back by a critically damped spring, or stops it
// where it does not bounce. Points and seconds from the start.
class KALIM_API ScrollMotion {
public:
    // An offset at rest at 0.
    ScrollMotion() = default;
    ScrollMotion(double offset, double velocity, const ScrollRange& range, bool bounces);

    // Stays at the end from the duration on.
    double offsetAt(double time) const;
    // 0 where nothing moves.
    double duration() const { return _slideTime + _springTime; }

private:
    double slidAt(double time) const;
    void startSpring(double displacement, double velocity, double edge);

    double _start = 0;
    double _velocity = 0;
    double _end = 0;
    // How long it slides, and then how long the spring takes.
    double _slideTime = 0;
    double _springTime = 0;
    // Of the spring, from its edge: where it starts, and that plus its speed in terms of time.
    double _displacement = 0;
    double _slope = 0;
};

}  // namespace kalim::ui
