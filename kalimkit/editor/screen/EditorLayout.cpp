#include "kalimkit/editor/screen/EditorLayout.h"

#include <algorithm>

#include "kalimkit/editor/screen/EditorTables.h"

namespace kalim {

namespace {

constexpr double rowHeight = 38;
constexpr double rowGap = 30;
constexpr double leastBarHeight = 64;
// The bar is as high below the inset at the top.
constexpr double barRow = 44;
constexpr double leastPenMargin = 25;
// It lies between the pen button and the inset at the bottom.
constexpr double penGap = 2;
constexpr double widestPanel = 480;
// It lies between the picture and the pen button below it.
constexpr double pictureGap = 8;

gfx::Rect centred(gfx::Point center, double side) {
    return {center.x - side / 2, center.y - side / 2, side, side};
}

// The gaps lie above, between and below the rows of dots.
struct RowGaps {
    double above = rowGap;
    double others = rowGap;
};

// The panel may reach under the bar as long as its rows do not.
RowGaps rowGaps(double room) {
    const double rest = std::max(room - 2 * rowHeight, 0.0);
    return rest < 2 * rowGap ? RowGaps{rest * 0.2, rest * 0.4} : RowGaps{};
}

}  // namespace

EditorLayout editorLayout(const EditorMeasures& measures) {
    const double width = measures.view.width;
    const double height = measures.view.height;
    EditorLayout layout;
    layout.drawView = {0, 0, width, measures.screenHeight};
    const ui::EdgeInsets& safe = measures.safeArea;
    layout.toolView = {0, 0, width, std::max(barRow + safe.top, leastBarHeight)};
    layout.nibView = {(width - 38) / 2, height - 20 - 38, 38, 38};

    const double penBottom = height - std::max(leastPenMargin, safe.bottom + penGap);
    const gfx::Point pen{safe.left + (width - safe.horizontal()) / 2, penBottom - 25};
    layout.penView = centred(pen, 50);
    layout.confirmButton = centred(pen, 60);
    layout.editButton = centred({pen.x + measures.configShift, pen.y}, 50);
    layout.deleteButton = centred({pen.x - measures.configShift, pen.y}, 50);

    // Two rows of dots have a gap above, between and below them.
    const RowGaps gaps = rowGaps(layout.confirmButton.minY() - layout.toolView.maxY());
    const double panelHeight = gaps.above + 2 * (rowHeight + gaps.others);
    const double panelRest = layout.confirmButton.minY() - panelHeight;
    layout.panelView = {0, panelRest + measures.panelShift, width, panelHeight};
    const double left = pen.x - measures.penPickerWidth / 2;
    const double right = left + measures.penPickerWidth;
    const double lowerRow = panelHeight - gaps.others - rowHeight;
    layout.penPicker = {left, lowerRow - gaps.others - rowHeight, measures.penPickerWidth,
                        rowHeight};
    layout.colorPicker = {left + measures.pickerInset, lowerRow, measures.colorPickerWidth,
                          rowHeight};
    layout.sizePicker = {right - measures.pickerInset - measures.sizePickerWidth, lowerRow,
                         measures.sizePickerWidth, rowHeight};

    // The gradient begins above the panel, where it is still clear, and does not slide with it.
    const double maskTop = std::max(panelRest - rowGap, 0.0);
    layout.maskView = {0, maskTop, width, height - maskTop};
    return layout;
}

ui::EdgeInsets EditorLayout::canvasMargin() const {
    return {std::max(toolView.maxY() - drawView.minY(), 0.0), 0,
            std::max(drawView.maxY() - penView.minY() + pictureGap, 0.0), 0};
}

PickerSpacing pickerSpacing(double viewWidth, std::size_t pens) {
    const double width = std::min(viewWidth, widestPanel);
    const auto gapBetween = [width](double dots) {
        return (width - dots * rowHeight) / (dots + 1);
    };
    return {gapBetween(static_cast<double>(pens)), gapBetween(2)};
}

}  // namespace kalim
