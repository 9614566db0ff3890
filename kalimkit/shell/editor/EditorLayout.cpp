#include "kalimkit/shell/editor/EditorLayout.h"

#include <algorithm>

namespace kalim {

namespace {

constexpr double rowHeight = 38;
constexpr double rowGap = 30;
constexpr double widestPanel = 480;

gfx::Rect centred(gfx::Point center, double side) {
    return {center.x - side / 2, center.y - side / 2, side, side};
}

}  // namespace

EditorLayout editorLayout(const EditorMeasures& measures) {
    const double width = measures.view.width;
    const double height = measures.view.height;
    EditorLayout layout;
    layout.drawView = {0, 0, width, measures.screenHeight};
    layout.toolView = {0, 0, width, measures.isTallPhone ? 88.0 : 64.0};
    layout.nibView = {(width - 38) / 2, height - 20 - 38, 38, 38};

    const double penBottom = height - 25 - (measures.isTallPhone ? 11 : 0);
    const gfx::Point pen{width / 2, penBottom - 25};
    layout.penView = centred(pen, 50);
    layout.confirmButton = centred(pen, 60);
    layout.editButton = centred({pen.x + measures.configShift, pen.y}, 50);
    layout.deleteButton = centred({pen.x - measures.configShift, pen.y}, 50);

    // Two rows of dots with a gap above, between and below them.
    const double panelHeight = 3 * rowGap + 2 * rowHeight;
    const double panelRest = layout.confirmButton.minY() - panelHeight;
    layout.panelView = {0, panelRest + measures.panelShift, width, panelHeight};
    const double left = (width - measures.penPickerWidth) / 2;
    const double right = left + measures.penPickerWidth;
    const double lowerRow = panelHeight - rowGap - rowHeight;
    layout.penPicker = {left, lowerRow - rowGap - rowHeight, measures.penPickerWidth, rowHeight};
    layout.colorPicker = {left + measures.pickerInset, lowerRow, measures.colorPickerWidth,
                          rowHeight};
    layout.sizePicker = {right - measures.pickerInset - measures.sizePickerWidth, lowerRow,
                         measures.sizePickerWidth, rowHeight};

    // The gradient begins above the panel, where it is still clear, and does not slide with it.
    const double maskTop = std::max(panelRest - rowGap, 0.0);
    layout.maskView = {0, maskTop, width, height - maskTop};
    return layout;
}

PickerSpacing pickerSpacing(double viewWidth) {
    const double width = std::min(viewWidth, widestPanel);
    return {(width - 228) / 7, (width - 76) / 3};
}

}  // namespace kalim
