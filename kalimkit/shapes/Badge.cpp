#include "kalimkit/shapes/Badge.h"

#include "kalimkit/gfx/Contrast.h"

namespace kalim {

namespace {

// As light as this, white stands out by less than 3 to 1.
constexpr double lightest = 0.3;
// As light as this, a white rim is hardly seen.
constexpr double almostWhite = 0.75;
constexpr gfx::Color white{1, 1, 1, 1};
constexpr gfx::Color darkInk{0.11, 0.11, 0.12, 1};
constexpr gfx::Color greyRim{0.35, 0.35, 0.37, 1};
constexpr gfx::Shadow badgeShadow{{0, 1}, 4, {0, 0, 0, 0.45}};

}  // namespace

gfx::Color inkOn(const gfx::Color& ground) {
    return gfx::luminance(ground) > lightest ? darkInk : white;
}

gfx::Color rimOf(const gfx::Color& ground) {
    return gfx::luminance(ground) > almostWhite ? greyRim : white;
}

void fillBadge(gfx::Context& context, const gfx::Path& outline, const gfx::Color& color,
               double rim) {
    const gfx::Color opaque = color.withAlpha(1);
    {
        const gfx::GraphicsStateGuard guard(context);
        context.setShadow(badgeShadow);
        context.setLineJoin(gfx::LineJoin::Round);
        context.setLineWidth(2 * rim);
        context.setStrokeColor(rimOf(opaque));
        context.beginPath();
        context.addPath(outline);
        context.stroke();
    }
    context.setFillColor(opaque);
    context.beginPath();
    context.addPath(outline);
    context.fill();
    context.setFillColor(inkOn(opaque));
    context.setStrokeColor(inkOn(opaque));
}

BadgeGroup::BadgeGroup(gfx::Context& context, const gfx::Color& color)
    : _context(context), _isTranslucent(color.alpha < 1) {
    if (!_isTranslucent) return;
    context.save();
    context.setAlpha(color.alpha);
    context.beginTransparencyGroup();
}

BadgeGroup::~BadgeGroup() {
    if (!_isTranslucent) return;
    _context.endTransparencyGroup();
    _context.restore();
}

}  // namespace kalim
