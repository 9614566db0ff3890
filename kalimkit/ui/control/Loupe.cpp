#include "kalimkit/ui/control/Loupe.h"

#include <algorithm>
#include <utility>

#include "kalimkit/gfx/GraphicsState.h"

namespace kalim::ui {

namespace {

// Points.
constexpr double radius = 52;
constexpr double gap = 44;
constexpr double rim = 3;
constexpr double mark = 5;
constexpr double enlargement = 2;
constexpr gfx::Color ground{0.11, 0.11, 0.12, 1};
constexpr gfx::Color rimColor{1, 1, 1, 1};
constexpr gfx::Color markShade{0, 0, 0, 0.55};

void drawMark(gfx::Context& context, gfx::Point middle) {
    for (const auto& [color, width] : {std::pair(markShade, 3.0), std::pair(rimColor, 1.0)}) {
        context.setStrokeColor(color);
        context.setLineWidth(width);
        context.beginPath();
        context.moveTo(middle - gfx::Point{mark, 0});
        context.lineTo(middle + gfx::Point{mark, 0});
        context.moveTo(middle - gfx::Point{0, mark});
        context.lineTo(middle + gfx::Point{0, mark});
        context.stroke();
    }
}

}  // namespace

std::shared_ptr<Loupe> Loupe::showOver(View& view, Drawing draw) {
    const std::shared_ptr<Loupe> loupe(new Loupe);
    loupe->init({0, 0, 2 * radius, 2 * radius});
    loupe->_draw = std::move(draw);
    // It goes with the finger, whichever way one reads.
    loupe->setSides(Sides::Fixed);
    loupe->setUserInteractionEnabled(false);
    loupe->setAccessibilityHidden(true);
    view.addSubview(loupe);
    return loupe;
}

void Loupe::moveTo(gfx::Point place) {
    _place = place;
    const View* const view = superview();
    if (!view) return;
    const gfx::Rect& room = view->bounds();
    gfx::Point middle{place.x, place.y - gap - radius};
    if (middle.y - radius < room.minY()) {
        // Beside the finger, on the side where there is more room.
        const bool isRight = place.x < room.midX();
        middle.x = place.x + (isRight ? gap + radius : -gap - radius);
        middle.y = room.minY() + radius;
    }
    middle.x = std::clamp(middle.x, room.minX() + radius,
                          std::max(room.minX() + radius, room.maxX() - radius));
    setCenter(middle);
    setNeedsDisplay();
}

void Loupe::drawRect(gfx::Context& context, const gfx::Rect& /*dirty*/) {
    const gfx::Rect disc = bounds().inset(rim / 2, rim / 2);
    const gfx::Point middle = disc.center();
    {
        const gfx::GraphicsStateGuard guard(context);
        context.beginPath();
        context.addEllipse(disc);
        context.clip();
        context.setFillColor(ground);
        context.fillRect(disc);
        context.translate(middle.x, middle.y);
        context.scale(enlargement, enlargement);
        context.translate(-_place.x, -_place.y);
        if (_draw) _draw(context);
    }
    drawMark(context, middle);
    context.setStrokeColor(rimColor);
    context.setLineWidth(rim);
    context.strokeEllipse(disc);
}

}  // namespace kalim::ui
