#include "kalimkit/ui/desk/DeskButton.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "kalimkit/gfx/Font.h"
#include "kalimkit/gfx/RoundedRect.h"
#include "kalimkit/theme/FrameworkImages.h"
#include "kalimkit/ui/control/AlignedText.h"
#include "kalimkit/ui/control/ImageView.h"

namespace kalim::ui {

namespace {

// Lengths are points.
constexpr double iconSide = 24;
constexpr double swatchSide = 20;
constexpr double inset = 6;
constexpr double titleInset = 12;
constexpr double gap = 6;
constexpr double markSide = 12;
constexpr double squareSide = 4;
const gfx::Font titleFont{"", 13};

}  // namespace

std::shared_ptr<DeskButton> DeskButton::make(std::string icon, std::string title) {
    const std::shared_ptr<DeskButton> button(new DeskButton);
    button->init({});
    button->_icon = std::move(icon);
    button->_title = std::move(title);
    button->sizeToFit();
    return button;
}

// ---- looks

void DeskButton::setIcon(std::string icon) {
    if (icon == _icon) return;
    _icon = std::move(icon);
    setNeedsDisplay();
}

void DeskButton::setImage(gfx::ImageRef image) {
    _image = std::move(image);
    setNeedsDisplay();
}

void DeskButton::setTitle(std::string title) {
    if (title == _title) return;
    _title = std::move(title);
    setNeedsDisplay();
}

void DeskButton::setStyle(Style style) {
    _style = style;
    setNeedsDisplay();
}

void DeskButton::setOpens(bool opens) {
    _opens = opens;
    setNeedsDisplay();
}

void DeskButton::setSwatch(const std::optional<gfx::Color>& color) {
    if (color == _swatch) return;
    _swatch = color;
    setNeedsDisplay();
}

// ---- measures

gfx::Size DeskButton::fittingSize() const {
    double width = _title.empty() ? 2 * inset : 2 * titleInset;
    if (hasPicture()) width += iconSide;
    if (!_title.empty()) width += std::ceil(AlignedText::sizeOf(_title, titleFont).width);
    if (hasPicture() && !_title.empty()) width += gap - (titleInset - inset);
    if (_opens) width += markSide;
    return {std::max(width, side), side};
}

void DeskButton::sizeToFit() {
    setFrame({frame().origin, fittingSize()});
}

void DeskButton::setHandler(std::function<void()> handler) {
    removeActions(ControlEvent::TouchUpInside);
    if (!handler) return;
    addAction(ControlEvent::TouchUpInside,
              [handler = std::move(handler)](Control& /*self*/) { handler(); });
}

std::string DeskButton::accessibilityLabel() const {
    std::string label = DeskControl::accessibilityLabel();
    return label.empty() ? _title : label;
}

AccessibilityRole DeskButton::accessibilityRole() const {
    const AccessibilityRole own = Control::accessibilityRole();
    return own == AccessibilityRole::None ? AccessibilityRole::Button : own;
}

// ---- drawing

void DeskButton::drawRect(gfx::Context& context, const gfx::Rect& /*dirty*/) {
    const Palette palette = Palette::current();
    drawGround(context, palette);
    gfx::Color color = contentColor(palette);
    if (isEnabled() && _style == Style::Danger) color = palette.danger;
    if (isEnabled() && _style == Style::Accent) {
        drawStyle(context, palette);
        color = palette.accentText;
    }
    const gfx::Size fitting = fittingSize();
    const gfx::Rect room = bounds();
    double x = std::max(room.midX() - fitting.width / 2, room.minX()) +
               (hasPicture() || _title.empty() ? inset : titleInset);
    // One that is as narrow as its icon shows that in the middle.
    if (_title.empty() && !_opens) x = room.midX() - iconSide / 2;
    if (hasPicture()) {
        drawPicture(context, mirrored({x, room.midY() - iconSide / 2, iconSide, iconSide}), color);
        x += iconSide + gap;
    }
    const double end = room.maxX() - (_opens ? markSide + 2 : inset / 2);
    if (!_title.empty()) {
        const gfx::Rect place(x, room.minY(), std::max(end - x, 0.0), room.size.height);
        context.setFillColor(color);
        AlignedText(_title, titleFont, place.size, 1)
            .drawIn(*this, context, place, TextAlignment::Left);
    }
    if (_opens) {
        const gfx::Rect mark{room.maxX() - markSide - 3, room.midY() - markSide / 2, markSide,
                             markSide};
        drawDeskIcon(context, "down", mirrored(mark), color);
    }
}

void DeskButton::drawPicture(gfx::Context& context, const gfx::Rect& rect,
                             const gfx::Color& color) const {
    if (_swatch) {
        const double less = (iconSide - swatchSide) / 2;
        drawSwatch(context, rect.inset(less, less), *_swatch, Palette::current().track);
    } else if (_image) {
        context.drawImage(*_image, imageRectIn(rect, _image->size(), ContentMode::AspectFit));
    } else {
        drawDeskIcon(context, _icon, rect, color);
    }
}

// The accent's ground, a little darker or lighter under the pointer.
void DeskButton::drawStyle(gfx::Context& context, const Palette& palette) const {
    constexpr double hoveredShare = 0.9;
    const bool isActive = isHovered() || isHighlighted();
    context.setFillColor(palette.accent.withAlpha(isActive ? hoveredShare : 1));
    context.addPath(gfx::roundedRect(bounds().inset(1, 1), cornerRadius));
    context.fill();
    if (!isKeyFocused()) return;
    // The ring of the accent's own colour would not be seen on it.
    context.setStrokeColor(palette.accentText);
    context.setLineWidth(1.5);
    context.addPath(gfx::roundedRect(bounds().inset(3.5, 3.5), cornerRadius - 2));
    context.stroke();
}

// ---- swatches

void drawSquares(gfx::Context& context, const gfx::Rect& rect) {
    context.setFillColor({1, 1, 1});
    context.fillRect(rect);
    context.setFillColor({0.75, 0.75, 0.75});
    for (int row = 0; row * squareSide < rect.size.height; ++row) {
        for (int column = row % 2; column * squareSide < rect.size.width; column += 2) {
            const gfx::Rect square(rect.minX() + column * squareSide,
                                   rect.minY() + row * squareSide, squareSide, squareSide);
            context.fillRect(square.intersection(rect));
        }
    }
}

void drawSwatch(gfx::Context& context, const gfx::Rect& rect, const gfx::Color& color,
                const gfx::Color& edge) {
    const gfx::GraphicsStateGuard guard(context);
    if (color.alpha < 1) {
        const gfx::GraphicsStateGuard clip(context);
        context.addEllipse(rect);
        context.clip();
        drawSquares(context, rect);
    }
    context.setFillColor(color);
    context.fillEllipse(rect);
    context.setStrokeColor(edge);
    context.setLineWidth(1);
    context.strokeEllipse(rect.inset(0.5, 0.5));
}

}  // namespace kalim::ui
