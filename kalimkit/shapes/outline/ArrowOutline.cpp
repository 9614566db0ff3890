#include "kalimkit/shapes/outline/ArrowOutline.h"

#include <numbers>

namespace kalim {

gfx::Path arrowOutline(double length, double halfWidth, double tailWidth) {
    // The notch lies at 80 % of the slanted edge (0.4472... is 1/sqrt(5)), on the line that halves
    // the head's half-angle. The narrowing to single precision is deliberate.
    const float notchDistance =
        static_cast<float>(halfWidth / 0.44721359101694697 * 0.800000011920929);
    const double notchX = notchDistance * 0.9732489900435092;
    const double notchY = notchDistance * 0.22975291810832202;
    const double halfTail = tailWidth / 2;
    const double tailX = length - halfTail;
    constexpr double quarter = std::numbers::pi / 2;

    gfx::Path path;
    path.moveTo({0, 0});
    path.lineTo({2 * halfWidth, -halfWidth});
    path.lineTo({notchX, -notchY});
    path.lineTo({tailX, -halfTail});
    path.lineTo({tailX, halfTail});
    path.addArc({tailX, 0}, halfTail, -quarter, quarter, false);
    path.lineTo({notchX, notchY});
    path.lineTo({2 * halfWidth, halfWidth});
    path.close();
    return path;
}

gfx::Path fatArrowOutline(double length) {
    gfx::Path path;
    path.moveTo({0, 0});
    path.lineTo({0.6 * length, 0.4 * length});
    path.lineTo({0.6 * length, 0.15 * length});
    path.lineTo({length, 0.15 * length});
    path.lineTo({length, -0.15 * length});
    path.lineTo({0.6 * length, -0.15 * length});
    path.lineTo({0.6 * length, -0.4 * length});
    path.close();
    return path;
}

}  // namespace kalim
