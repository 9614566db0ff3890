#include "kalimkit/editor/screen/EditorTables.h"

#include <algorithm>
#include <iterator>

namespace kalim {

const std::vector<std::string_view>& editorColors() {
    static const std::vector<std::string_view> colors{"F63434", "FFF700", "1AA9FF", "FFFFFF",
                                                      "000000"};
    return colors;
}

const std::vector<unsigned>& editorSizes() {
    static const std::vector<unsigned> sizes{0, 1, 2, 3, 4};
    return sizes;
}

const std::vector<unsigned>& editorPens() {
    static const std::vector<unsigned> offered = [] {
        std::vector<unsigned> numbers;
        const auto next = [&] {
            return std::ranges::find(pens(), numbers.size() + 1, &Pen::place);
        };
        for (auto pen = next(); pen != pens().end(); pen = next())
            numbers.push_back(pen->number);
        return numbers;
    }();
    return offered;
}

const std::vector<unsigned>& editorShapes() {
    static const std::vector<unsigned> shapes{2, 1, 0};
    return shapes;
}

std::vector<unsigned> deskPens() {
    constexpr std::string_view order[] = {
        "select",  "arrow",      "line",        "rectangle",      "roundedrectangle",
        "ellipse", "freehand",   "highlighter", "highlighterbox", "text",
        "number",  "callout",    "mosaic",      "magnifier",      "spotlight",
        "stamp",   "blockarrow", "polygon",     "angle",          "arc"};
    std::vector<unsigned> numbers;
    for (const std::string_view name : order) {
        if (const Pen* const pen = penIdentified(name)) numbers.push_back(pen->number);
    }
    for (const Pen& pen : pens()) {
        const bool isListed = std::ranges::find(order, pen.name) != std::end(order);
        if (!isListed && !pen.name.empty() && pen.number != EditorPenCrop)
            numbers.push_back(pen.number);
    }
    numbers.push_back(EditorPenCrop);
    return numbers;
}

std::string penIdentifier(const Pen& pen) {
    return std::string(pen.number == EditorPenCrop ? "crop" : pen.name);
}

const Pen* penIdentified(std::string_view identifier) {
    return identifier == "crop" ? penNumbered(EditorPenCrop) : penNamed(identifier);
}

std::optional<std::int64_t> toolTypeForPen(unsigned pen) {
    const Pen* const known = penNumbered(pen);
    return known ? known->toolType : std::nullopt;
}

std::optional<unsigned> penForToolType(std::int64_t type) {
    const auto pen = std::ranges::find(pens(), type, &Pen::toolType);
    if (pen == pens().end() || !pen->isShownForTools) return std::nullopt;
    return pen->number;
}

std::optional<int> lineWidthForSize(unsigned size) {
    if (size >= penSizes().size()) return std::nullopt;
    return penSizes()[size].lineWidth;
}

std::optional<unsigned> sizeForLineWidth(double width) {
    const auto size = std::ranges::find(penSizes(), width, &PenSize::shownFor);
    if (size == penSizes().end()) return std::nullopt;
    return static_cast<unsigned>(size - penSizes().begin());
}

}  // namespace kalim
