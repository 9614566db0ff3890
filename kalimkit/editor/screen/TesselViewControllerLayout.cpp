#include <utility>

#include "kalimkit/editor/screen/EditorParts.h"
#include "kalimkit/editor/screen/TesselViewController.h"
#include "kalimkit/theme/SafeArea.h"
#include "kalimkit/ui/window/Window.h"

namespace kalim {

namespace {

// A view may be scaled while it is placed, so its frame cannot be set.
void place(ui::View& view, const gfx::Rect& rect) {
    view.setBounds({{}, rect.size});
    view.setCenter(rect.center());
}

EditorMeasures measuresOf(const EditorParts& parts) {
    EditorMeasures measures;
    measures.view = parts.stage.view().bounds().size;
    // A window that the editor is shown in stands for the whole screen.
    const ui::Window* const window = parts.stage.window();
    measures.screenHeight = window ? window->size().height : measures.view.height;
    measures.safeArea = safeAreaInsets();
    measures.panelShift = parts.panel.shift();
    measures.configShift = parts.buttons.shift();
    parts.pickers.measure(measures);
    return measures;
}

}  // namespace

void TesselViewController::viewWillLayoutSubviews() {
    const gfx::Size size = view()->bounds().size;
    if (!_sizeHandler || std::exchange(_handledSize, size) == size) return;
    const auto handler = _sizeHandler;
    handler(size);
}

void TesselViewController::viewDidLayoutSubviews() {
    parts().pickers.spreadOver(view()->bounds().size.width - safeAreaInsets().horizontal());
    placeViews();
}

void TesselViewController::placeViews() {
    const EditorParts& all = parts();
    const EditorLayout layout = editorLayout(measuresOf(all));
    MDrawView& canvas = *all.picture.canvas();
    place(canvas, layout.drawView);
    canvas.setLayoutMargin(canvasMargin(layout));
    place(*all.bar, layout.toolView);
    place(*all.panel.mask(), layout.maskView);
    place(*all.nib, layout.nibView);
    place(*all.pen.view(), layout.penView);
    place(*all.panel.confirmButton(), layout.confirmButton);
    place(*all.panel.view(), layout.panelView);
    if (!all.pickers.areMade()) return;
    place(*all.pickers.penPicker(), layout.penPicker);
    place(*all.pickers.colorPicker(), layout.colorPicker);
    place(*all.pickers.sizePicker(), layout.sizePicker);
    place(*all.buttons.editButton(), layout.editButton);
    place(*all.buttons.deleteButton(), layout.deleteButton);
}

ui::EdgeInsets TesselViewController::canvasMargin(const EditorLayout& layout) {
    if (const auto& bars = shell()) return bars->coveredEdges(view()->bounds().size);
    return _laysPictureBetweenBars ? layout.canvasMargin() : ui::EdgeInsets{};
}

void TesselViewController::safeAreaDidChange() {
    if (!drawView()) return;
    view()->setNeedsLayout();
    parts().stage.tellShell();
    toolView()->setNeedsLayout();
    if (actionSheet()) actionSheet()->setNeedsLayout();
    if (editImageInitialView()) editImageInitialView()->safeAreaDidChange();
}

}  // namespace kalim
