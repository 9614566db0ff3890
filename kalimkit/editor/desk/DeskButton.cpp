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
constexpr double iconSide = 22;

bool hasDeskIcon(const std::string& name) {
    return !frameworkImageName(imageNamedForFramework("icon_desk_" + name)).empty();
}

}  // namespace

std::shared_ptr<DeskButton> DeskButton::make(const std::string& icon, const std::string& text,
                                             std::function<void()> action) {
    const std::shared_ptr<DeskButton> button(new DeskButton);
    button->init({0, 0, DeskLayout::buttonSide, DeskLayout::buttonSide});
    button->_icon = icon;
    button->setTitleFont({"", fontSize});
    button->setAccessibilityLabel(text);
    if (!hasDeskIcon(icon)) {
        button->_picture = imageNamedForFramework(icon);
        if (!button->_picture) button->setTitle(text);
    }
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
    const Palette colors = Palette::current();
    setTitleColor(gfx::makeColor(_isProminent ? colors.accentText : colors.text));
    setTitleColor(gfx::makeColor(colors.disabledText), ui::ControlState::Disabled);
    setTitleColor(gfx::makeColor(colors.chosenText), ui::ControlState::Selected);
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

gfx::Color DeskButton::ground(const Palette& colors) const {
    if (!isEnabled()) return _isProminent ? colors.hovered : gfx::Color{0, 0, 0, 0};
    if (_isProminent) return isHighlighted() ? colors.chosenText : colors.accent;
    if (isHighlighted()) return colors.pressed;
    if (isSelected()) return colors.chosen;
    return _isHovered ? colors.hovered : gfx::Color{0, 0, 0, 0};
}

gfx::Color DeskButton::content(const Palette& colors) const {
    if (!isEnabled()) return colors.disabledText;
    return isSelected() && !isHighlighted() ? colors.chosenText : colors.text;
}

void DeskButton::drawRect(gfx::Context& context, const gfx::Rect& dirty) {
    const Palette colors = Palette::current();
    const gfx::Color color = ground(colors);
    if (color.alpha > 0) {
        context.setFillColor(color);
        context.beginPath();
        context.addPath(gfx::roundedRect(bounds().inset(groundInset, groundInset), groundRadius));
        context.fill();
    }
    if (currentTitle().empty()) drawIcon(context, content(colors));
    Button::drawRect(context, dirty);
}

void DeskButton::drawIcon(gfx::Context& context, const gfx::Color& color) const {
    const gfx::Point center = bounds().center();
    const gfx::Rect place{center.x - iconSide / 2, center.y - iconSide / 2, iconSide, iconSide};
    if (!_picture) {
        drawDeskIcon(context, _icon, place, color);
        return;
    }
    const gfx::Size size = _picture->size();
    const double factor = std::min(iconSide / size.width, iconSide / size.height);
    const gfx::Size shown = size * factor;
    context.drawImage(
        *imageWithTintColor(_picture, gfx::makeColor(color)),
        {center.x - shown.width / 2, center.y - shown.height / 2, shown.width, shown.height});
}

}  // namespace kalim
