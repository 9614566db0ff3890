#include "kalimkit/ui/control/Button.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "kalimkit/gfx/text/TextLayout.h"
#include "kalimkit/ui/control/AlignedText.h"

namespace kalim::ui {

namespace {

// Of a picture that a state does not have of its own.
constexpr double disabledAlpha = 0.5;
constexpr double highlightedAlpha = 0.6;
// Where no state has set one.
const gfx::ColorRef& white() {
    static const gfx::ColorRef color = gfx::makeColor(1, 1, 1);
    return color;
}

}  // namespace

std::shared_ptr<Button> Button::initWithFrame(const gfx::Rect& frame) {
    struct Constructible : Button {};
    const std::shared_ptr<Button> button = std::make_shared<Constructible>();
    button->init(frame);
    return button;
}

// ---- measures

gfx::Size Button::titleSize() const {
    if (currentTitle().empty()) return {};
    constexpr double unlimited = gfx::TextLayout::unlimited;
    return AlignedText(currentTitle(), _titleFont, {unlimited, unlimited}, 1).size();
}

gfx::Size Button::intrinsicContentSize() const {
    const gfx::Size icon = currentImage() ? currentImage()->size() : gfx::Size{};
    const gfx::Size text = titleSize();
    const double gap = currentImage() && text.width > 0 ? spacing : 0;
    const gfx::Size content{icon.width + gap + text.width + _contentEdgeInsets.horizontal(),
                            std::max(icon.height, text.height) + _contentEdgeInsets.vertical()};
    const gfx::Size back =
        currentBackgroundImage() ? currentBackgroundImage()->size() : gfx::Size{};
    return {std::ceil(std::max({content.width, back.width, 0.0})),
            std::ceil(std::max({content.height, back.height, 0.0}))};
}

gfx::Size Button::sizeThatFits(gfx::Size size) const {
    const gfx::Size natural = intrinsicContentSize();
    return {std::min(natural.width, size.width), std::min(natural.height, size.height)};
}

gfx::Rect Button::imageRect() const {
    return currentImage() ? imageRectIn(_contentEdgeInsets.apply(bounds())) : gfx::Rect{};
}

gfx::Rect Button::titleRect() const {
    return currentTitle().empty() ? gfx::Rect{} : titleRectIn(_contentEdgeInsets.apply(bounds()));
}

gfx::Size Button::imageSizeIn(const gfx::Rect& content) const {
    if (!currentImage() || currentImage()->size().isEmpty()) return {};
    const gfx::Size natural = currentImage()->size();
    const double factor =
        std::min({1.0, content.size.width / natural.width, content.size.height / natural.height});
    return natural * factor;
}

gfx::Rect Button::imageRectIn(const gfx::Rect& content) const {
    const gfx::Size icon = imageSizeIn(content);
    const gfx::Size text = titleSize();
    const double together = icon.width + (text.width > 0 ? spacing + text.width : 0);
    // A title that is too long gives way.
    const double gap = std::max(content.size.width - together, 0.0);
    return {content.minX() + gap / 2, content.midY() - icon.height / 2, icon.width, icon.height};
}

gfx::Rect Button::titleRectIn(const gfx::Rect& content) const {
    const gfx::Size text = titleSize();
    double left = content.minX() + std::max(content.size.width - text.width, 0.0) / 2;
    if (currentImage()) left = imageRectIn(content).maxX() + spacing;
    const double width = std::min(text.width, std::max(content.maxX() - left, 0.0));
    return {left, content.midY() - text.height / 2, width, text.height};
}

// ---- looks of a state

ControlState Button::currentState() const {
    if (!isEnabled()) return ControlState::Disabled;
    if (isHighlighted()) return ControlState::Highlighted;
    return isSelected() ? ControlState::Selected : ControlState::Normal;
}

const std::string& Button::title(ControlState state) const {
    const std::string& own = look(state).title;
    return own.empty() ? look(ControlState::Normal).title : own;
}

void Button::setTitle(std::string title, ControlState state) {
    look(state).title = std::move(title);
    setNeedsDisplay();
}

const gfx::ColorRef& Button::titleColor(ControlState state) const {
    if (look(state).titleColor) return look(state).titleColor;
    const gfx::ColorRef& normal = look(ControlState::Normal).titleColor;
    return normal ? normal : white();
}

void Button::setTitleColor(gfx::ColorRef color, ControlState state) {
    look(state).titleColor = std::move(color);
    setNeedsDisplay();
}

const gfx::ImageRef& Button::image(ControlState state) const {
    return look(state).image ? look(state).image : look(ControlState::Normal).image;
}

void Button::setImage(gfx::ImageRef image, ControlState state) {
    look(state).image = std::move(image);
    setNeedsDisplay();
}

const gfx::ImageRef& Button::backgroundImage(ControlState state) const {
    const gfx::ImageRef& own = look(state).backgroundImage;
    return own ? own : look(ControlState::Normal).backgroundImage;
}

void Button::setBackgroundImage(gfx::ImageRef image, ControlState state) {
    look(state).backgroundImage = std::move(image);
    setNeedsDisplay();
}

// ---- looks of all states

void Button::setTitleFont(const gfx::Font& font) {
    if (font == _titleFont) return;
    _titleFont = font;
    setNeedsDisplay();
}

void Button::setContentEdgeInsets(const EdgeInsets& insets) {
    if (insets == _contentEdgeInsets) return;
    _contentEdgeInsets = insets;
    setNeedsDisplay();
}

void Button::setAdjustsImageWhenHighlighted(bool adjusts) {
    _adjustsWhenHighlighted = adjusts;
    setNeedsDisplay();
}

void Button::setAdjustsImageWhenDisabled(bool adjusts) {
    _adjustsWhenDisabled = adjusts;
    setNeedsDisplay();
}

std::string Button::accessibilityLabel() const {
    const std::string own = View::accessibilityLabel();
    return own.empty() ? currentTitle() : own;
}

AccessibilityRole Button::accessibilityRole() const {
    const AccessibilityRole own = View::accessibilityRole();
    return own == AccessibilityRole::None ? AccessibilityRole::Button : own;
}

// ---- drawing

double Button::imageAlpha() const {
    const ControlState state = currentState();
    if (look(state).image) return 1;
    if (state == ControlState::Disabled && _adjustsWhenDisabled) return disabledAlpha;
    if (state == ControlState::Highlighted && _adjustsWhenHighlighted) return highlightedAlpha;
    return 1;
}

void Button::drawRect(gfx::Context& context, const gfx::Rect& /*dirty*/) {
    if (currentBackgroundImage()) context.drawImage(*currentBackgroundImage(), bounds());
    if (const gfx::Rect icon = imageRect(); !icon.isEmpty()) {
        const gfx::GraphicsStateGuard guard(context);
        context.setAlpha(imageAlpha());
        context.drawImage(*currentImage(), mirrored(icon));
    }
    const gfx::Rect text = titleRect();
    if (text.isEmpty()) return;
    context.setFillColor(*currentTitleColor());
    AlignedText(currentTitle(), _titleFont, text.size, 1)
        .drawIn(*this, context, text, TextAlignment::Center);
}

}  // namespace kalim::ui
