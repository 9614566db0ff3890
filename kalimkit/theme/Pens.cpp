#include "kalimkit/theme/Pens.h"

#include <algorithm>

namespace kalim {

namespace {

// npm/gather.mjs reads numbers and names from here, too.
// clang-format off
constexpr Pen allPens[] = {
    // A selected stroke or patch deliberately shows the user's own pen.
    {.number = 2, .name = "freehand", .key = 'p', .icon = "graffiti", .text = "涂鸦", .english = "Freehand", .toolType = 4, .isShownForTools = false},
    {.number = 4, .name = "line", .key = 'l', .icon = "line", .text = "直线", .english = "Line", .toolType = 6, .shape = 2},
    {.number = 6, .name = "arrow", .key = 'a', .icon = "arrow", .text = "箭头", .english = "Arrow", .toolType = 7, .place = 1},
    {.number = 3, .name = "rectangle", .key = 'r', .icon = "rectangle", .text = "矩形", .english = "Rectangle", .toolType = 0, .place = 3, .shape = 0},
    {.number = 5, .name = "ellipse", .key = 'e', .icon = "circle", .text = "圆形", .english = "Ellipse", .toolType = 2, .place = 2, .shape = 1},
    {.number = 1, .name = "text", .key = 't', .icon = "text", .text = "文字", .english = "Text", .toolType = 3, .place = 4},
    {.number = 0, .name = "mosaic", .key = 'm', .icon = "mosaic", .text = "马赛克", .english = "Mosaic", .toolType = 5, .place = 5, .isShownForTools = false, .hasOneIcon = true},
    {.number = 8, .icon = "cut", .text = "裁剪", .english = "Crop", .place = 6},
    // Hosts may show a dot of this number; it draws nothing.
    {.number = 7, .icon = "rectangle", .text = "矩形", .english = "Rectangle"},
};

constexpr PenSize allSizes[] = {
    {.lineWidth = 2, .shownFor = 2, .icon = "xsmall", .text = "极细", .english = "Finest"},
    {.lineWidth = 7, .shownFor = 7, .icon = "small", .text = "细", .english = "Fine"},
    {.lineWidth = 12, .shownFor = 12, .icon = "medium", .text = "中等", .english = "Medium"},
    // Deliberately not shown for the width that it sets.
    {.lineWidth = 18, .shownFor = 24, .icon = "large", .text = "粗", .english = "Thick"},
    {.lineWidth = 28, .shownFor = 28, .icon = "xlarge", .text = "极粗", .english = "Thickest"},
};

constexpr HidingStyle allHidingStyles[] = {
    {.drawType = 10, .icon = "sealed", .text = "密封马赛克", .english = "Sealed mosaic"},
    {.drawType = 11, .icon = "solid", .text = "纯色遮盖", .english = "Solid cover"},
    {.drawType = 0, .icon = "averaging", .text = "普通马赛克", .english = "Averaging mosaic"},
    {.drawType = 12, .icon = "blur", .text = "模糊（仅装饰）", .english = "Blur (cosmetic)"},
};
// clang-format on

template <typename Question>
const Pen* penWith(Question question) {
    const auto* const pen = std::ranges::find_if(allPens, question);
    return pen == std::end(allPens) ? nullptr : pen;
}

}  // namespace

std::span<const Pen> pens() {
    return allPens;
}

const Pen* penNumbered(unsigned number) {
    return penWith([number](const Pen& pen) { return pen.number == number; });
}

const Pen* penOfShape(unsigned shape) {
    return penWith([shape](const Pen& pen) { return pen.shape == shape; });
}

std::span<const PenSize> penSizes() {
    return allSizes;
}

std::span<const HidingStyle> hidingStyles() {
    return allHidingStyles;
}

const HidingStyle* hidingStyleOf(std::uint64_t drawType) {
    const auto* const style = std::ranges::find(allHidingStyles, drawType, &HidingStyle::drawType);
    return style == std::end(allHidingStyles) ? nullptr : style;
}

}  // namespace kalim
