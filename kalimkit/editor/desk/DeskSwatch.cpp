#include "kalimkit/editor/desk/DeskSwatch.h"

#include <utility>

#include "kalimkit/theme/ColorName.h"
#include "kalimkit/theme/Palette.h"

namespace kalim {

namespace {

constexpr double ringWidth = 2;
constexpr double edgeWidth = 1;

gfx::Rect around(gfx::Point center, double diameter) {
    return {center.x - diameter / 2, center.y - diameter / 2, diameter, diameter};
}

}  // namespace

std::shared_ptr<DeskSwatch> DeskSwatch::make(std::function<void()> action) {
    const std::shared_ptr<DeskSwatch> swatch(new DeskSwatch);
    swatch->init({0, 0, side, side});
    swatch->addAction(ui::ControlEvent::TouchUpInside,
                      [action = std::move(action)](ui::Control&) { action(); });
    return swatch;
}

std::shared_ptr<DeskSwatch> DeskSwatch::makeColor(const gfx::ColorRef& color,
                                                  std::function<void()> action) {
    const auto swatch = make(std::move(action));
    swatch->setColor(color);
    return swatch;
}

std::shared_ptr<DeskSwatch> DeskSwatch::makeWidth(double diameter, const std::string& label,
                                                  std::function<void()> action) {
    const auto swatch = make(std::move(action));
    swatch->_diameter = diameter;
    swatch->setAccessibilityLabel(label);
    return swatch;
}

void DeskSwatch::setColor(const gfx::ColorRef& color) {
    _color = color;
    setAccessibilityLabel(colorName(color));
    setNeedsDisplay();
}

ui::AccessibilityRole DeskSwatch::accessibilityRole() const {
    return ui::AccessibilityRole::RadioButton;
}

void DeskSwatch::pointerEntered(gfx::Point /*p*/) {
    _isHovered = true;
    setNeedsDisplay();
}

void DeskSwatch::pointerExited() {
    _isHovered = false;
    setNeedsDisplay();
}

void DeskSwatch::drawRect(gfx::Context& context, const gfx::Rect& /*dirty*/) {
    const Palette colors = Palette::current();
    const gfx::Point center = bounds().center();
    if (_isHovered || isHighlighted()) {
        context.setFillColor(isHighlighted() ? colors.pressed : colors.hovered);
        context.fillEllipse(bounds());
    }
    if (isSelected()) {
        context.setStrokeColor(colors.accent);
        context.setLineWidth(ringWidth);
        context.strokeEllipse(bounds().inset(ringWidth / 2, ringWidth / 2));
    }
    context.setFillColor(_color ? *_color : colors.text);
    context.fillEllipse(around(center, _diameter));
    if (!_color) return;
    // A colour as the bar's own is seen by its edge.
    context.setStrokeColor(colors.track);
    context.setLineWidth(edgeWidth);
    context.strokeEllipse(around(center, _diameter));
}

}  // namespace kalim
