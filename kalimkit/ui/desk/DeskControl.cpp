#include "kalimkit/ui/desk/DeskControl.h"

#include "kalimkit/gfx/RoundedRect.h"
#include "kalimkit/ui/gesture/PanGestureRecognizer.h"

namespace kalim::ui {

namespace {

constexpr double focusWidth = 2;

}  // namespace

// ---- what is said about it

void DeskControl::setTip(std::string text, std::string key) {
    _tip = std::move(text);
    _tipKey = std::move(key);
}

std::string DeskControl::accessibilityLabel() const {
    std::string label = Control::accessibilityLabel();
    return label.empty() ? _tip : label;
}

// ---- pointer and keys

void DeskControl::pointerEntered(gfx::Point /*p*/) {
    _hovered = true;
    setNeedsDisplay();
}

void DeskControl::pointerExited() {
    _hovered = false;
    setNeedsDisplay();
}

void DeskControl::setKeyFocused(bool focused) {
    if (focused == _keyFocused) return;
    _keyFocused = focused;
    setNeedsDisplay();
}

bool DeskControl::handleKey(std::string_view key, bool isRepeated) {
    if (key != "enter" && key != "space") return false;
    if (!isRepeated) activate();
    return true;
}

void DeskControl::activate() {
    if (isEnabled()) sendActions(ControlEvent::TouchUpInside);
}

bool DeskControl::admitsGestureButPan(const GestureRecognizer& recognizer) const {
    return Control::admitsGesture(recognizer) &&
           !dynamic_cast<const PanGestureRecognizer*>(&recognizer);
}

// ---- drawing

gfx::Color DeskControl::contentColor(const Palette& palette) const {
    if (!isEnabled()) return palette.disabledText;
    return isSelected() ? palette.chosenText : palette.text;
}

void DeskControl::drawGround(gfx::Context& context, const Palette& palette) const {
    const gfx::Color* ground = nullptr;
    if (isEnabled() && _hovered) ground = &palette.hovered;
    if (isHighlighted()) ground = &palette.pressed;
    if (isSelected()) ground = &palette.chosen;
    if (ground) {
        context.setFillColor(*ground);
        context.addPath(gfx::roundedRect(bounds().inset(1, 1), cornerRadius));
        context.fill();
    }
    drawFocus(context, palette, cornerRadius);
}

void DeskControl::drawFocus(gfx::Context& context, const Palette& palette, double radius) const {
    if (!_keyFocused) return;
    context.setStrokeColor(palette.focus);
    context.setLineWidth(focusWidth);
    context.addPath(gfx::roundedRect(bounds().inset(focusWidth / 2, focusWidth / 2), radius));
    context.stroke();
}

}  // namespace kalim::ui
