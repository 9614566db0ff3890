#include "kalimkit/tool/QVGeometry.h"

#include <cmath>
#include <numbers>

#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

namespace {

bool withinOne(double a, double b) {
    return std::abs(a - b) < 1.0;
}

double roundedToPixels(double length, double scale) {
    // The product is narrowed to single precision on purpose, and nearbyint breaks ties to even.
    return static_cast<double>(std::nearbyint(static_cast<float>(length * scale))) / scale;
}

}  // namespace

const std::int32_t TOUCH_PHASE_BEGAN = 1;
const std::int32_t TOUCH_PHASE_MOVED = 2;
const std::int32_t TOUCH_PHASE_ENDED = 3;
const std::int32_t TOUCH_PHASE_CANCELED = 4;

const double Freeline_default_alpha = 0.4;

gfx::Point QVMidPoint(gfx::Point p1, gfx::Point p2) {
    return {(p1.x + p2.x) * 0.5, (p1.y + p2.y) * 0.5};
}

double QVPointAngle(gfx::Point p1, gfx::Point p2) {
    // Differences and arc tangent are deliberately single precision.
    const float dx = static_cast<float>(p2.x - p1.x);
    const float dy = static_cast<float>(p2.y - p1.y);
    return static_cast<double>(std::atan2(dy, dx)) - std::numbers::pi / 2;
}

double QVPointDistance(gfx::Point p1, gfx::Point p2) {
    const double dx = p1.x - p2.x;
    const double dy = p1.y - p2.y;
    // The sum is deliberately narrowed before the root.
    return static_cast<double>(std::sqrt(static_cast<float>(dx * dx + dy * dy)));
}

bool QVPointApproximateEqual(gfx::Point p1, gfx::Point p2) {
    return withinOne(p1.x, p2.x) && withinOne(p1.y, p2.y);
}

bool QVSizeApproximateEqual(gfx::Size s1, gfx::Size s2) {
    return withinOne(s1.width, s2.width) && withinOne(s1.height, s2.height);
}

bool QVRectApproximateEqual(const gfx::Rect& r1, const gfx::Rect& r2) {
    return QVPointApproximateEqual(r1.origin, r2.origin) &&
           QVSizeApproximateEqual(r1.size, r2.size);
}

gfx::Size QVMakeScreenCompatibleSize(gfx::Size size) {
    const double scale =
        ui::Environment::hasCurrent() ? ui::Environment::current().screen().scale : 1.0;
    return {roundedToPixels(size.width, scale), roundedToPixels(size.height, scale)};
}

gfx::Path CGPath_ZRCreateCopyByScalingPathAroundCentre(const gfx::Path& path, float factor) {
    const gfx::Point middle = path.boundingBox().center();
    const double scale = static_cast<double>(factor);
    // Two steps are meant: about the origin first, then back.
    const auto aboutOrigin =
        gfx::AffineTransform::scaling(scale, scale).translated(-middle.x, -middle.y);
    return path.transformed(aboutOrigin).transformed(gfx::AffineTransform::translation(middle));
}

}  // namespace kalim
