#include "kalimkit/ui/desk/KeysOverview.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "kalimkit/gfx/Font.h"
#include "kalimkit/gfx/text/TextLayout.h"
#include "kalimkit/theme/Palette.h"
#include "kalimkit/ui/control/AlignedText.h"
#include "kalimkit/ui/desk/KeyName.h"
#include "kalimkit/ui/desk/Overlay.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/window/Window.h"

namespace kalim::ui {

namespace {

// Points.
constexpr double columnWidth = 270;
constexpr double leastColumnWidth = 120;
constexpr double columnGap = 32;
constexpr double headHeight = 40;
constexpr double titleHeight = 30;
constexpr double rowHeight = 22;
constexpr double rowPadding = 6;
constexpr double groupGap = 12;
constexpr double sheetInset = 24;
constexpr double windowInset = 16;
constexpr std::size_t mostColumns = 3;
const gfx::Font headFont{"", 17, true};
const gfx::Font titleFont{"", 13, true};
const gfx::Font rowFont{"", 13};

// What a text needs of the height, broken into lines.
double heightIn(double width, const std::string& text) {
    const AlignedText lines(text, rowFont, {width, gfx::TextLayout::unlimited}, 0);
    return std::max(lines.size().height + rowPadding, rowHeight);
}

std::string namesOf(const KeyRow& row) {
    std::string names;
    for (const std::string& key : row.keys)
        names += (names.empty() ? "" : "  ") + keyName(key);
    return names;
}

}  // namespace

std::shared_ptr<Popover> KeysOverview::show(Window& window, std::vector<KeyGroup> groups) {
    for (const auto& popover : Overlay::in(window)->popovers()) {
        if (!std::dynamic_pointer_cast<KeysOverview>(popover->content())) continue;
        popover->close();
        return nullptr;
    }
    const std::shared_ptr<KeysOverview> sheet(new KeysOverview(std::move(groups)));
    sheet->init({});
    sheet->setAccessibilityLabel(Environment::current().localizedString("快捷键"));
    sheet->arrange(window.size().width - 2 * (sheetInset + windowInset));
    const auto popover = Popover::showAt(window, {}, sheet, {.inset = sheetInset, .isSheet = true});
    popover->setKeyHandler([weak = std::weak_ptr(popover)](std::string_view key, bool isRepeated) {
        const auto open = weak.lock();
        const bool closes = key == "f1" || key == "?" || key == "shift+?" || key == "shift+/" ||
                            key == "enter" || key == "space";
        if (open && closes && !isRepeated) open->close();
        return closes;
    });
    return popover;
}

KeysOverview::Line KeysOverview::makeRow(const KeyRow& row, gfx::Point origin, double width) {
    Line line{{origin, {width, rowHeight}}, row.text, namesOf(row)};
    const double keys = std::ceil(AlignedText::sizeOf(line.keys, rowFont).width) + columnGap / 4;
    const double text = std::ceil(AlignedText::sizeOf(line.text, rowFont).width);
    if (text + keys <= width || keys <= width / 2) {
        const double room = std::max(width - keys, 0.0);
        line.frame.size.height = heightIn(room, line.text);
        line.textPlace = {origin, {room, line.frame.size.height}};
        line.keysPlace = line.frame;
        return line;
    }
    line.textPlace = {origin, {width, heightIn(width, line.text)}};
    line.keysPlace = {origin.x, line.textPlace.maxY(), width, heightIn(width, line.keys)};
    line.frame = line.textPlace.unionWith(line.keysPlace);
    return line;
}

// Whole groups go into the column that is the shortest so far, in their order as far as that says.
void KeysOverview::arrange(double width) {
    const double fitting = std::floor((width + columnGap) / (columnWidth + columnGap));
    const auto count =
        static_cast<std::size_t>(std::clamp(fitting, 1.0, static_cast<double>(mostColumns)));
    const double column = std::clamp(width, leastColumnWidth, columnWidth);
    std::vector<double> heights(count, headHeight);
    for (const KeyGroup& group : _groups) {
        const auto shortest = std::ranges::min_element(heights);
        const double x = static_cast<double>(shortest - heights.begin()) * (column + columnGap);
        double y = *shortest;
        _lines.push_back({{x, y, column, titleHeight}, group.title, {}});
        y += titleHeight;
        for (const KeyRow& row : group.rows) {
            _lines.push_back(makeRow(row, {x, y}, column));
            y = _lines.back().frame.maxY();
        }
        *shortest = y + groupGap;
    }
    const double columns = static_cast<double>(count);
    setFrame({0, 0, columns * column + (columns - 1) * columnGap,
              *std::ranges::max_element(heights) - groupGap});
}

std::vector<AccessibilityElement> KeysOverview::accessibilityElements() {
    std::vector<AccessibilityElement> elements;
    for (const Line& line : _lines) {
        elements.push_back({.key = elements.size() + 1,
                            .role = AccessibilityRole::Text,
                            .label = line.text,
                            .value = line.keys,
                            .frame = mirrored(line.frame)});
    }
    return elements;
}

void KeysOverview::drawRect(gfx::Context& context, const gfx::Rect& dirty) {
    const Palette palette = Palette::current();
    const gfx::Rect head(0, 0, bounds().size.width, headHeight - groupGap);
    context.setFillColor(palette.text);
    AlignedText(accessibilityLabel(), headFont, head.size, 1)
        .drawIn(*this, context, head, TextAlignment::Left);
    for (const Line& line : _lines) {
        if (mirrored(line.frame).intersection(dirty).isEmpty()) continue;
        const bool isTitle = line.keys.empty();
        context.setFillColor(isTitle ? palette.secondaryText : palette.text);
        const gfx::Rect& place = isTitle ? line.frame : line.textPlace;
        AlignedText(line.text, isTitle ? titleFont : rowFont, place.size, 0)
            .drawIn(*this, context, place, TextAlignment::Left);
        if (isTitle) continue;
        context.setFillColor(palette.secondaryText);
        AlignedText(line.keys, rowFont, line.keysPlace.size, 0)
            .drawIn(*this, context, line.keysPlace, TextAlignment::Right);
    }
}

}  // namespace kalim::ui
