#pragma once

#include <optional>

#include "kalimkit/gfx/Color.h"

namespace kalim::ui {

// What the animations of a layer make of it at one moment.
struct LayerValues {
    double opacity = 1;
    double scale = 1;
    // The rotation is radians.
    double rotation = 0;
    // Nothing where the layer's own value shows.
    std::optional<double> strokeStart;
    std::optional<double> strokeEnd;
    std::optional<double> lineWidth;
    std::optional<gfx::Color> strokeColor;

    bool operator==(const LayerValues&) const = default;
};

}  // namespace kalim::ui
