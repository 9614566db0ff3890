#include "kalimkit/ui/motion/Mix.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <optional>

namespace kalim::ui {

namespace {

// Scales, then rotates and translates.
struct Turn {
    double scaleX = 1;
    double scaleY = 1;
    // Nothing where it is scaled to nothing, so that no direction is left.
    std::optional<double> angle;
    gfx::Point offset;
};

// Nothing for transforms that shear or mirror.
std::optional<Turn> turnOf(const gfx::AffineTransform& t) {
    constexpr double tolerance = 1e-9;
    const double scaleX = std::hypot(t.a, t.b);
    const double scaleY = std::hypot(t.c, t.d);
    if (std::abs(t.a * t.c + t.b * t.d) > tolerance * scaleX * scaleY) return std::nullopt;
    if (t.determinant() < 0) return std::nullopt;
    Turn turn{scaleX, scaleY, std::nullopt, {t.tx, t.ty}};
    if (scaleX > 0) {
        turn.angle = std::atan2(t.b, t.a);
    } else if (scaleY > 0) {
        turn.angle = std::atan2(-t.c, t.d);
    }
    return turn;
}

gfx::AffineTransform mixTurns(const Turn& from, const Turn& to, double share) {
    const double begin = from.angle.value_or(to.angle.value_or(0));
    const double end = to.angle.value_or(begin);
    const double way = std::remainder(end - begin, 2 * std::numbers::pi);
    const gfx::Point offset = mix(from.offset, to.offset, share);
    return gfx::AffineTransform::scaling(mix(from.scaleX, to.scaleX, share),
                                         mix(from.scaleY, to.scaleY, share))
        .concat(gfx::AffineTransform::rotation(begin + way * share))
        .concat(gfx::AffineTransform::translation(offset));
}

}  // namespace

double mix(double from, double to, double share) {
    if (share == 1) return to;
    return from + (to - from) * share;
}

gfx::Point mix(gfx::Point from, gfx::Point to, double share) {
    return {mix(from.x, to.x, share), mix(from.y, to.y, share)};
}

gfx::Rect mix(const gfx::Rect& from, const gfx::Rect& to, double share) {
    return {mix(from.origin, to.origin, share),
            {std::max(0.0, mix(from.size.width, to.size.width, share)),
             std::max(0.0, mix(from.size.height, to.size.height, share))}};
}

gfx::Color mix(const gfx::Color& from, const gfx::Color& to, double share) {
    if (share == 0) return from;
    if (share == 1) return to;
    const double alpha = std::clamp(mix(from.alpha, to.alpha, share), 0.0, 1.0);
    if (alpha == 0) return to.withAlpha(0);
    const auto component = [&](double a, double b) {
        return std::clamp(mix(a * from.alpha, b * to.alpha, share) / alpha, 0.0, 1.0);
    };
    return {component(from.red, to.red), component(from.green, to.green),
            component(from.blue, to.blue), alpha};
}

gfx::ColorRef mix(const gfx::ColorRef& from, const gfx::ColorRef& to, double share) {
    if (share == 0) return from;
    if (share == 1) return to;
    if (!from && !to) return nullptr;
    const gfx::Color first = from ? *from : to->withAlpha(0);
    const gfx::Color second = to ? *to : from->withAlpha(0);
    return gfx::makeColor(mix(first, second, share));
}

gfx::AffineTransform mix(const gfx::AffineTransform& from, const gfx::AffineTransform& to,
                         double share) {
    if (share == 0) return from;
    if (share == 1) return to;
    const auto first = turnOf(from);
    const auto second = turnOf(to);
    if (first && second) return mixTurns(*first, *second, share);
    return {mix(from.a, to.a, share), mix(from.b, to.b, share),   mix(from.c, to.c, share),
            mix(from.d, to.d, share), mix(from.tx, to.tx, share), mix(from.ty, to.ty, share)};
}

}  // namespace kalim::ui
