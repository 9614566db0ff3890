#include "kalimkit/theme/Pens.h"

#include <algorithm>
#include <vector>

#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

namespace {

// npm/gather.mjs reads numbers and names from here, too.
// clang-format off
constexpr Pen allPens[] = {
    // A selected stroke or patch deliberately shows the user's own pen.
    {.number = 2, .name = "freehand", .key = 'p', .icon = "graffiti", .text = "涂鸦", .toolType = 4, .isShownForTools = false},
    {.number = 4, .name = "line", .key = 'l', .icon = "line", .text = "直线", .toolType = 6, .shape = 2},
    {.number = 6, .name = "arrow", .key = 'a', .icon = "arrow", .text = "箭头", .toolType = 7, .place = 1},
    {.number = 3, .name = "rectangle", .key = 'r', .icon = "rectangle", .text = "矩形", .toolType = 0, .place = 3, .shape = 0},
    {.number = 5, .name = "ellipse", .key = 'e', .icon = "circle", .text = "圆形", .toolType = 2, .place = 2, .shape = 1},
    {.number = 1, .name = "text", .key = 't', .icon = "text", .text = "文字", .toolType = 3, .place = 4},
    {.number = 0, .name = "mosaic", .key = 'm', .icon = "mosaic", .text = "马赛克", .toolType = 5, .place = 5, .isShownForTools = false, .hasOneIcon = true},
    {.number = 8, .key = 'x', .icon = "cut", .text = "裁剪", .place = 6},
    {.number = 31, .name = "roundedrectangle", .key = 'u', .icon = "roundedrectangle", .text = "圆角矩形", .toolType = 1, .isShownForTools = false, .showsToolIcon = true},
    {.number = 22, .name = "highlighter", .key = 'h', .icon = "highlighter", .text = "荧光笔", .toolType = 22, .isShownForTools = false, .showsToolIcon = true, .firstColor = "#FFF700"},
    {.number = 23, .name = "highlighterbox", .key = 'b', .icon = "highlighterbox", .text = "荧光框", .toolType = 23, .isShownForTools = false, .showsToolIcon = true, .firstColor = "#FFF700"},
    {.number = 20, .name = "number", .key = 'N', .icon = "number", .text = "序号", .toolType = 20, .isShownForTools = false, .showsToolIcon = true},
    {.number = 21, .name = "callout", .key = 'c', .icon = "callout", .text = "对话框", .toolType = 21, .isShownForTools = false, .showsToolIcon = true},
    {.number = 24, .name = "magnifier", .key = 'z', .icon = "magnifier", .text = "放大镜", .toolType = 24, .isShownForTools = false, .showsToolIcon = true},
    {.number = 25, .name = "spotlight", .key = 's', .icon = "spotlight", .text = "聚光灯", .toolType = 25, .isShownForTools = false, .showsToolIcon = true},
    {.number = 26, .name = "stamp", .key = 'i', .icon = "stamp", .text = "印章", .toolType = 26, .isShownForTools = false, .showsToolIcon = true},
    {.number = 32, .name = "blockarrow", .key = 'k', .icon = "blockarrow", .text = "粗箭头", .isShownForTools = false, .showsToolIcon = true},
    {.number = 33, .name = "polygon", .key = 'g', .icon = "polygon", .text = "多边形", .isShownForTools = false, .showsToolIcon = true},
    {.number = 34, .name = "angle", .icon = "angle", .text = "角", .isShownForTools = false, .showsToolIcon = true},
    {.number = 35, .name = "arc", .icon = "arc", .text = "弧线", .isShownForTools = false, .showsToolIcon = true},
    // What is there is moved, and a drag beside it spans a rectangle that selects.
    {.number = 30, .name = "select", .key = 'v', .icon = "select", .text = "选择与移动", .isShownForTools = false, .showsToolIcon = true},
    // Hosts may show a dot of this number; it draws nothing.
    {.number = 7, .icon = "rectangle", .text = "矩形"},
};

constexpr PenSize allSizes[] = {
    {.lineWidth = 2, .shownFor = 2, .icon = "xsmall", .text = "极细"},
    {.lineWidth = 7, .shownFor = 7, .icon = "small", .text = "细"},
    {.lineWidth = 12, .shownFor = 12, .icon = "medium", .text = "中等"},
    // Deliberately not shown for the width that it sets.
    {.lineWidth = 18, .shownFor = 24, .icon = "large", .text = "粗"},
    {.lineWidth = 28, .shownFor = 28, .icon = "xlarge", .text = "极粗"},
};

constexpr HidingStyle allHidingStyles[] = {
    {.drawType = 10, .icon = "sealed", .text = "密封马赛克"},
    {.drawType = 11, .icon = "solid", .text = "纯色遮盖"},
    {.drawType = 0, .icon = "averaging", .text = "普通马赛克"},
    {.drawType = 12, .icon = "blur", .text = "模糊（仅装饰）"},
};
// clang-format on

constexpr std::size_t mostPens = 250;

// Of an environment. The pens keep their places, as people hold pointers to them.
struct PenList {
    PenList() {
        pens.reserve(mostPens);
        pens.assign(std::begin(allPens), std::end(allPens));
    }

    std::vector<Pen> pens;
};

PenList& listOfEnvironment() {
    return ui::Environment::current().attachment<PenList>();
}

template <typename Question>
const Pen* penWith(Question question) {
    const auto all = pens();
    const auto pen = std::ranges::find_if(all, question);
    return pen == all.end() ? nullptr : &*pen;
}

}  // namespace

std::string Pen::keyName() const {
    if (key == 0) return {};
    if (key < 'A' || key > 'Z') return std::string(1, key);
    return std::string("shift+") + static_cast<char>(key - 'A' + 'a');
}

std::span<const Pen> pens() {
    if (!ui::Environment::hasCurrent()) return allPens;
    return listOfEnvironment().pens;
}

std::optional<std::string> addPen(Pen pen) {
    std::vector<Pen>& list = listOfEnvironment().pens;
    const std::string name(pen.name);
    if (name.empty()) return "a pen needs a name";
    // The crop pen, which draws nothing, goes by this name where pens are listed.
    if (name == "crop" || penNamed(name)) return "there is a pen " + name + " already";
    const bool hasKey = pen.key != 0;
    if (hasKey && std::ranges::find(list, pen.key, &Pen::key) != list.end())
        return "the key " + pen.keyName() + " of the pen " + name + " is another pen's";
    if (list.size() == mostPens) return "there are too many pens for " + name;
    pen.number = firstAddedPen + static_cast<unsigned>(list.size() - std::size(allPens));
    list.push_back(pen);
    return std::nullopt;
}

const Pen* penNamed(std::string_view name) {
    if (name.empty()) return nullptr;
    return penWith([name](const Pen& pen) { return pen.name == name; });
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
