#pragma once

#include <optional>

#include "kalimkit/gfx/Point.h"

namespace kalim::ui {

enum class TouchKind { Finger, Pen, Mouse };

// What a host knows of how something touches the screen.
struct TouchContact {
    TouchKind kind = TouchKind::Finger;
    // How wide the touched area is, points; 0 where the host cannot tell.
    double size = 0;
    // From 0 to 1; nothing where it is not measured.
    std::optional<double> pressure = std::nullopt;
    // How far a pen leans to the right and towards the user, degrees from -90 to 90; upright is 0.
    gfx::Point tilt = {};

    bool operator==(const TouchContact&) const = default;
};

}  // namespace kalim::ui
