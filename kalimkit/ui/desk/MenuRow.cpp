#include "kalimkit/ui/desk/MenuRow.h"

#include <algorithm>
#include <cmath>

#include "kalimkit/gfx/Font.h"
#include "kalimkit/gfx/RoundedRect.h"
#include "kalimkit/theme/FrameworkImages.h"
#include "kalimkit/ui/control/AlignedText.h"
#include "kalimkit/ui/desk/KeyName.h"

namespace kalim::ui {

namespace {

// Points.
constexpr double height = 28;
constexpr double separatorHeight = 9;
constexpr double inset = 8;
constexpr double iconSide = 18;
constexpr double textStart = inset + iconSide + 8;
constexpr double keyGap = 24;
constexpr double markSide = 14;
const gfx::Font font{"", 13};

double widthOf(const std::string& text) {
    return text.empty() ? 0 : std::ceil(AlignedText::sizeOf(text, font).width);
}

}  // namespace

std::shared_ptr<Menu::Row> Menu::Row::make(Menu& menu, std::size_t index) {
    const std::shared_ptr<Row> row(new Row(menu, index));
    row->init({});
    row->setEnabled(row->item().isEnabled && !row->item().isSeparator);
    row->addAction(ControlEvent::TouchUpInside,
                   [&menu, index](Control& /*row*/) { menu.perform(index); });
    return row;
}

gfx::Size Menu::Row::fittingSize() const {
    if (item().isSeparator) return {0, separatorHeight};
    double width = textStart + widthOf(item().text) + inset;
    if (!item().key.empty()) width += keyGap + widthOf(keyName(item().key));
    if (!item().items.empty()) width += markSide + inset;
    return {width, height};
}

void Menu::Row::setCurrent(bool isCurrent) {
    if (isCurrent == _isCurrent) return;
    _isCurrent = isCurrent;
    setNeedsDisplay();
}

void Menu::Row::pointerEntered(gfx::Point p) {
    DeskControl::pointerEntered(p);
    _menu.pointerIsOn(_index);
}

std::string Menu::Row::accessibilityValue() const {
    return keyName(item().key);
}

AccessibilityRole Menu::Row::accessibilityRole() const {
    return item().isSeparator ? AccessibilityRole::None : AccessibilityRole::MenuItem;
}

void Menu::Row::drawRect(gfx::Context& context, const gfx::Rect& /*dirty*/) {
    const Palette palette = Palette::current();
    const gfx::Rect room = bounds();
    if (item().isSeparator) {
        context.setFillColor(palette.separator);
        context.fillRect(
            {room.minX() + inset, std::floor(room.midY()), room.size.width - 2 * inset, 1});
        return;
    }
    if (isEnabled() && (_isCurrent || isHovered() || isHighlighted())) {
        context.setFillColor(isHighlighted() ? palette.pressed : palette.hovered);
        context.addPath(gfx::roundedRect(room, cornerRadius - 1));
        context.fill();
        if (_isCurrent) drawFocusOfKeys(context, palette);
    }
    const gfx::Color color = isEnabled() ? palette.text : palette.disabledText;
    drawDeskIcon(context, item().isChecked ? "done" : item().icon,
                 mirrored({room.minX() + inset, room.midY() - iconSide / 2, iconSide, iconSide}),
                 color);
    const double mark = item().items.empty() ? 0 : markSide;
    const gfx::Rect texts(textStart, room.minY(), room.size.width - textStart - inset - mark,
                          room.size.height);
    context.setFillColor(color);
    AlignedText(item().text, font, texts.size, 1)
        .drawIn(*this, context, texts, TextAlignment::Left);
    const std::string key = keyName(item().key);
    // In a window that is too narrow for both the key gives way.
    if (!key.empty() && widthOf(item().text) + keyGap + widthOf(key) <= texts.size.width + 1) {
        context.setFillColor(isEnabled() ? palette.secondaryText : palette.disabledText);
        AlignedText(key, font, texts.size, 1).drawIn(*this, context, texts, TextAlignment::Right);
    }
    if (mark == 0) return;
    drawDeskIcon(context, "next",
                 mirrored({room.maxX() - inset - mark, room.midY() - mark / 2, mark, mark}), color);
}

// So that the row shows in high contrast, too.
void Menu::Row::drawFocusOfKeys(gfx::Context& context, const Palette& palette) const {
    context.setStrokeColor(palette.focus);
    context.setLineWidth(1);
    context.addPath(gfx::roundedRect(bounds().inset(0.5, 0.5), cornerRadius - 1));
    context.stroke();
}

}  // namespace kalim::ui
