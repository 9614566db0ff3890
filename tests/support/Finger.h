#pragma once

#include <cstdint>

#include "kalimkit/ui/window/Window.h"

namespace kalim::test {

// One finger on a window: finger.down({10, 10}).moveTo({50, 50}, 4).up(). Every step is an event of
// its own. Fingers that are down together need different ids.
class Finger {
public:
    explicit Finger(ui::Window& window, std::int64_t id = 1) : _window(window), _id(id) {}

    Finger& down(gfx::Point p);
    // In equal steps on a straight line; the last one ends exactly there.
    Finger& moveTo(gfx::Point p, int steps = 1);
    // Lifts the finger where it is.
    Finger& up();
    Finger& cancel();
    Finger& tap(gfx::Point p) { return down(p).up(); }

    // As the host reports it.
    ui::Finger report() const { return {_id, _at}; }

private:
    ui::Window& _window;
    std::int64_t _id;
    gfx::Point _at;
};

// Moves two fingers on opposite sides of a centre.
struct TwoFingers {
    gfx::Point center;
    // Each finger is as far from the centre, in points.
    double radius = 100;
    // Where the second finger is as seen from the centre, radians from the x axis towards the y
    // axis.
    double angle = 0;
};

// Lands fingers 1 and 2 together and turns, spreads and moves them in equal steps; they stay down.
void pinchRotate(ui::Window& window, const TwoFingers& from, const TwoFingers& to, int steps);

}  // namespace kalim::test
