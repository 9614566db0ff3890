#include "kalimkit/ui/control/Label.h"

#include <utility>

#include "kalimkit/gfx/text/TextLayout.h"
#include "kalimkit/ui/control/AlignedText.h"

namespace kalim::ui {

std::shared_ptr<Label> Label::initWithFrame(const gfx::Rect& frame) {
    struct Constructible : Label {};
    const std::shared_ptr<Label> label = std::make_shared<Constructible>();
    label->init(frame);
    return label;
}

void Label::init(const gfx::Rect& frame) {
    View::init(frame);
    setUserInteractionEnabled(false);
}

// ---- measures

gfx::Size Label::sizeThatFits(gfx::Size size) const {
    constexpr double unlimited = gfx::TextLayout::unlimited;
    const gfx::Size room{size.width > 0 ? size.width : unlimited, unlimited};
    return _text.empty() ? gfx::Size{} : AlignedText(_text, _font, room, _numberOfLines).size();
}

void Label::sizeToFit() {
    setFrame({frame().origin, sizeThatFits({})});
}

// ---- properties

void Label::setText(std::string text) {
    if (text == _text) return;
    _text = std::move(text);
    setNeedsDisplay();
}

void Label::setFont(const gfx::Font& font) {
    if (font == _font) return;
    _font = font;
    setNeedsDisplay();
}

void Label::setTextColor(gfx::ColorRef color) {
    const bool isSame = gfx::equalColors(color, _textColor);
    _textColor = std::move(color);
    if (!isSame) setNeedsDisplay();
}

void Label::setTextAlignment(TextAlignment alignment) {
    if (alignment == _alignment) return;
    _alignment = alignment;
    setNeedsDisplay();
}

void Label::setNumberOfLines(std::size_t lines) {
    if (lines == _numberOfLines) return;
    _numberOfLines = lines;
    setNeedsDisplay();
}

std::string Label::accessibilityLabel() const {
    const std::string own = View::accessibilityLabel();
    return own.empty() ? _text : own;
}

AccessibilityRole Label::accessibilityRole() const {
    const AccessibilityRole own = View::accessibilityRole();
    return own == AccessibilityRole::None ? AccessibilityRole::Text : own;
}

// ---- drawing

void Label::drawRect(gfx::Context& context, const gfx::Rect& /*dirty*/) {
    if (_text.empty() || !_textColor) return;
    context.setFillColor(*_textColor);
    AlignedText(_text, _font, bounds().size, _numberOfLines)
        .drawIn(*this, context, bounds(), _alignment);
}

}  // namespace kalim::ui
