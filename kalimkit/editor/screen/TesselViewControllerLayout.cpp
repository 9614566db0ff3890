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

}  // namespace

void TesselViewController::viewDidLayoutSubviews() {
    spacePickers();
    placeViews();
}

void TesselViewController::spacePickers() {
    if (!_penPopView) return;
    const PickerSpacing spacing =
        pickerSpacing(view()->bounds().size.width - safeAreaInsets().horizontal());
    if (spacing.padding == _padding && spacing.offset == _offset) return;
    _padding = spacing.padding;
    _offset = spacing.offset;
    for (const auto& picker : {_colorPopView, _sizePopView, _penPopView})
        picker->setStaticPadding(_padding);
}

EditorMeasures TesselViewController::measures() const {
    EditorMeasures measures;
    measures.view = _drawView->superview()->bounds().size;
    // A window that the editor is shown in stands for the whole screen.
    measures.screenHeight = window() ? window()->size().height : measures.view.height;
    measures.safeArea = safeAreaInsets();
    measures.panelShift = _panelShift;
    measures.pickerInset = _arePickersInset ? _offset : 0;
    measures.configShift = _configShift;
    if (!_penPopView) return measures;
    measures.penPickerWidth = _penPopView->intrinsicContentSize().width;
    measures.colorPickerWidth = _colorPopView->intrinsicContentSize().width;
    measures.sizePickerWidth = _sizePopView->intrinsicContentSize().width;
    return measures;
}

void TesselViewController::placeViews() {
    const EditorLayout layout = editorLayout(measures());
    place(*_drawView, layout.drawView);
    _drawView->setLayoutMargin(_laysPictureBetweenBars ? layout.canvasMargin() : ui::EdgeInsets{});
    place(*_toolView, layout.toolView);
    place(*_maskView, layout.maskView);
    place(*_nibView, layout.nibView);
    place(*_penView, layout.penView);
    place(*_confirmButton, layout.confirmButton);
    place(*_panelView, layout.panelView);
    if (!_penPopView) return;
    place(*_penPopView, layout.penPicker);
    place(*_colorPopView, layout.colorPicker);
    place(*_sizePopView, layout.sizePicker);
    place(*_configViewEdit, layout.editButton);
    place(*_configViewDelete, layout.deleteButton);
}

void TesselViewController::safeAreaDidChange() {
    if (!_drawView) return;
    view()->setNeedsLayout();
    _toolView->setNeedsLayout();
    if (_actionSheet) _actionSheet->setNeedsLayout();
    if (_editImageInitialView) _editImageInitialView->safeAreaDidChange();
}

void TesselViewController::layout() {
    view()->setNeedsLayout();
    view()->layoutIfNeeded();
}

}  // namespace kalim
