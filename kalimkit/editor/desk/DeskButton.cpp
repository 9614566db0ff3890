#include "kalimkit/editor/desk/DeskButton.h"

#include <algorithm>
#include <utility>

#include "kalimkit/editor/desk/DeskLayout.h"
#include "kalimkit/gfx/RoundedRect.h"
#include "kalimkit/theme/ColorImages.h"
#include "kalimkit/theme/FrameworkImages.h"

namespace kalim {

namespace {

constexpr double fontSize = 13;
constexpr double titleMargin = 12;
constexpr double groundInset = 1;
constexpr double groundRadius = 6;

}  // namespace

std::shared_ptr<DeskButton> DeskButton::make(const std::string& icon, const std::string& text,
                                             std::function<void()> action) {
    const std::shared_ptr<DeskButton> button(new DeskButton);
    button->init({0, 0, DeskLayout::buttonSide, DeskLayout::buttonSide});
    button->_icon = icon;
    button->setTitleFont({"", fontSize});
    button->setAccessibilityLabel(text);
    if (icon.empty() || !imageNamedForFramework(icon)) button->setTitle(text);
    button->addAction(ui::ControlEvent::TouchUpInside,
                      [action = std::move(action)](ui::Control&) { action(); });
    button->applyColors();
    return button;
}

std::shared_ptr<DeskButton> DeskButton::makeTitled(const std::string& title,
                                                   std::function<void()> action) {
    return make({}, title, std::move(action));
}

void DeskButton::setProminent(bool isProminent) {
    _isProminent = isProminent;
    applyColors();
}

void DeskButton::applyColors() {
    const DeskColors colors = deskColors();
    const gfx::Color content = _isProminent ? colors.onAccent : colors.content;
    const gfx::ColorRef normal = gfx::makeColor(content);
    const gfx::ColorRef faint = gfx::makeColor(colors.faint);
    setTitleColor(normal);
    setTitleColor(faint, ui::ControlState::Disabled);
    if (const auto picture = imageNamedForFramework(_icon)) {
        setAdjustsImageWhenDisabled(false);
        setAdjustsImageWhenHighlighted(false);
        setImage(imageWithTintColor(picture, normal));
        setImage(imageWithTintColor(picture, faint), ui::ControlState::Disabled);
    }
    setNeedsDisplay();
}

double DeskButton::wantedWidth() const {
    if (currentTitle().empty()) return DeskLayout::buttonSide;
    return std::max(intrinsicContentSize().width + 2 * titleMargin, DeskLayout::buttonSide);
}

// ---- the pointer

void DeskButton::pointerEntered(gfx::Point /*p*/) {
    _isHovered = true;
    setNeedsDisplay();
}

void DeskButton::pointerExited() {
    _isHovered = false;
    setNeedsDisplay();
}

// ---- drawing

gfx::Color DeskButton::ground(const DeskColors& colors) const {
    if (_isProminent) {
        if (!isEnabled()) return colors.hovered;
        return isHighlighted() ? colors.accentPressed : colors.accent;
    }
    if (!isEnabled()) return {0, 0, 0, 0};
    if (isHighlighted()) return colors.pressed;
    if (isSelected()) return colors.chosen;
    return _isHovered ? colors.hovered : gfx::Color{0, 0, 0, 0};
}

void DeskButton::drawRect(gfx::Context& context, const gfx::Rect& dirty) {
    const gfx::Color color = ground(deskColors());
    if (color.alpha > 0) {
        context.setFillColor(color);
        context.beginPath();
        context.addPath(gfx::roundedRect(bounds().inset(groundInset, groundInset), groundRadius));
        context.fill();
    }
    Button::drawRect(context, dirty);
}

}  // namespace kalim
