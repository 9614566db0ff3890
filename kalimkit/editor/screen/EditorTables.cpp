#include "kalimkit/editor/screen/EditorTables.h"

#include <algorithm>
#include <array>

#include "kalimkit/canvas/ToolType.h"

namespace kalim {

namespace {

struct PenRow {
    unsigned pen;
    std::int64_t toolType;
    // Whether tools of that type are shown as this pen.
    bool isShown;
};
// A selected stroke or patch deliberately shows the user's own pen.
constexpr std::array<PenRow, 7> penRows{{
    {EditorPenMosaic, ToolType::Mosaic, false},
    {EditorPenText, ToolType::Text, true},
    {EditorPenFreehand, ToolType::Freehand, false},
    {EditorPenRectangle, ToolType::Rectangle, true},
    {EditorPenLine, ToolType::Line, true},
    {EditorPenCircle, ToolType::Ellipse, true},
    {EditorPenArrow, ToolType::Arrow, true},
}};

struct SizeRow {
    int lineWidth;
    // The width that is shown as this size. The fourth is deliberately not the one that it sets.
    double shownFor;
};
constexpr std::array<SizeRow, 5> sizeRows{{{2, 2}, {7, 7}, {12, 12}, {18, 24}, {28, 28}}};

}  // namespace

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
    static const std::vector<unsigned> pens{EditorPenArrow, EditorPenCircle, EditorPenRectangle,
                                            EditorPenText,  EditorPenMosaic, EditorPenCrop};
    return pens;
}

const std::vector<unsigned>& editorShapes() {
    static const std::vector<unsigned> shapes{2, 1, 0};
    return shapes;
}

std::optional<std::int64_t> toolTypeForPen(unsigned pen) {
    const auto row = std::ranges::find(penRows, pen, &PenRow::pen);
    if (row == penRows.end()) return std::nullopt;
    return row->toolType;
}

std::optional<unsigned> penForToolType(std::int64_t type) {
    const auto row = std::ranges::find(penRows, type, &PenRow::toolType);
    if (row == penRows.end() || !row->isShown) return std::nullopt;
    return row->pen;
}

std::optional<int> lineWidthForSize(unsigned size) {
    if (size >= sizeRows.size()) return std::nullopt;
    return sizeRows[size].lineWidth;
}

std::optional<unsigned> sizeForLineWidth(double width) {
    const auto row = std::ranges::find(sizeRows, width, &SizeRow::shownFor);
    if (row == sizeRows.end()) return std::nullopt;
    return static_cast<unsigned>(row - sizeRows.begin());
}

}  // namespace kalim
