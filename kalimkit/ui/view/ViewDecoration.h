#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "kalimkit/gfx/GraphicsState.h"
#include "kalimkit/ui/motion/ShapeLayer.h"

namespace kalim::ui {

// What few views have: made when the first of it is set.
struct ViewDecoration {
    double cornerRadius = 0;
    std::optional<gfx::Shadow> shadow;
    std::shared_ptr<ShapeLayer> mask;
    std::vector<std::shared_ptr<ShapeLayer>> layers;
};

}  // namespace kalim::ui
