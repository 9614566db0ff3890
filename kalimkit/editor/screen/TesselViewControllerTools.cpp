#include <algorithm>
#include <iterator>
#include <utility>

#include "kalimkit/canvas/ToolType.h"
#include "kalimkit/editor/screen/EditorTables.h"
#include "kalimkit/editor/screen/TesselViewController.h"
#include "kalimkit/theme/HexColor.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/window/Window.h"

namespace kalim {

namespace {

constexpr std::int64_t discardQuestionTag = 0x636C6174;
constexpr int sendAnswer = 2;
constexpr unsigned firstPen = EditorPenArrow;
constexpr unsigned firstSize = 1;

// The first dot that matches; the first of all when none does.
template <typename Matches>
int indexOf(const TesselViewController::Dots& dots, Matches matches) {
    const auto found =
        std::ranges::find_if(dots, [&matches](const auto& dot) { return matches(*dot->config()); });
    if (found == dots.end()) return 0;
    return static_cast<int>(std::distance(dots.begin(), found));
}

}  // namespace

// ---- from the tool bar

void TesselViewController::clickTool() {
    resetOffset();
}

bool TesselViewController::hasWork() const {
    return _drawView && (_drawView->hasDrawed() || _hasCropped);
}

bool TesselViewController::asksBeforeClosing() const {
    if (!_drawView) return false;
    if (!_forgiving) return _drawView->hasDrawed();
    const bool isCropping = _editImageInitialView && _editImageInitialView->canRevert();
    return hasWork() || _hasOpenedPicture || isCropping;
}

bool TesselViewController::canContinueClose() {
    const auto alive = self();
    if (!asksBeforeClosing()) return true;
    if (_actionSheet) return false;
    const ui::Environment& environment = ui::Environment::current();
    _actionSheet = KLMActionsheetView::initActionSheetCancelButtonTitleDelegate(
        environment.localizedString("继续标注"), environment.localizedString("放弃修改"), self());
    _actionSheet->setTag(discardQuestionTag);
    // Not while a crop is under way, which would not be in what is sent.
    if (_forgiving && !_editImageInitialView) {
        // A host may have emptied the button; an answer without a word is none.
        const std::string title = _toolView->confirmButton()->title(ui::ControlState::Normal);
        _actionSheet->addAnswer(title.empty() ? environment.localizedString("发送") : title,
                                sendAnswer);
    }
    _actionSheet->showAlert(window() ? *window()->rootView() : *view());
    return false;
}

void TesselViewController::modalAlertPressedWithButtonIndex(KLMActionsheetView& sheet, int index) {
    const auto alive = self();
    if (_actionSheet.get() == &sheet) _actionSheet = nullptr;
    if (sheet.tag() != discardQuestionTag) return;
    if (index == sendAnswer) return _toolView->handleConfirm();
    if (index != 1) return;
    clickTool();
    clickToolClose();
}

void TesselViewController::clickToolClose() {
    const auto alive = self();
    if (const auto delegate = _delegate.lock()) delegate->close();
}

gfx::ImageRef TesselViewController::exportedImage() {
    return _exportsAtPictureScale ? _drawView->exportImageAtPictureScale()
                                  : _drawView->exportImage();
}

void TesselViewController::clickToolConfirm() {
    const auto alive = self();
    const gfx::ImageRef image = exportedImage();
    // Exporting ends what is being typed, and whoever hears of that may have let go.
    if (const auto delegate = _delegate.lock()) {
        delegate->didDrawViewControllerFinishHandleImage(*this, image);
    }
}

void TesselViewController::clickToolUndo() {
    const auto alive = self();
    _drawView->undo();
}

void TesselViewController::clickToolRedo() {
    const auto alive = self();
    _drawView->redo();
}

void TesselViewController::clickToolDone() {
    const auto alive = self();
    _drawView->finishEditText();
    _toolView->setEditMode(false);
}

// ---- from the canvas

void TesselViewController::canUndoStateChangedCanRedo(bool canUndo, bool canRedo) {
    _toolView->setUndoEnableRedoEnable(canUndo, canRedo);
}

void TesselViewController::textToolEditing(bool isEditing) {
    _toolView->setEditMode(isEditing);
}

void TesselViewController::currentSelectedToolsPropertyChangedColorLineWidth(
    std::int64_t type, const gfx::ColorRef& color, double lineWidth) {
    _penView->setPen(penForToolType(type).value_or(_currentPen));
    _penView->setColor(color ? color : _currentColor);
    _penView->setSize(sizeForLineWidth(lineWidth).value_or(_currentSize));
    resetPopSelectIndexWithColorSizePen(_penView->color(), _penView->size(), _penView->pen());
}

void TesselViewController::resetPopSelectIndexWithColorSizePen(const gfx::ColorRef& color,
                                                               unsigned size, unsigned pen) {
    if (!_penPopView) return;
    _colorPopView->setSelectIndex(indexOf(_colorViews, [&color](const TesselConfig& config) {
        return gfx::equalColors(config.color(), color);
    }));
    _sizePopView->setSelectIndex(
        indexOf(_sizeViews, [size](const TesselConfig& config) { return config.size() == size; }));
    showPenInRow(pen);
}

// The first dot stands in for a pen in use that has none of its own.
void TesselViewController::showPenInRow(unsigned pen) {
    if (!_penPopView) return;
    const std::vector<unsigned>& pens = editorPens();
    const bool hasDot = std::ranges::find(pens, pen) != pens.end();
    const unsigned first = pen == _currentPen && !hasDot ? pen : pens.front();
    if (_penViews.front()->config()->pen() != first) _penViews.front()->setPen(first);
    _penPopView->setSelectIndex(
        indexOf(_penViews, [pen](const TesselConfig& config) { return config.pen() == pen; }));
}

// ---- from the pickers

void TesselViewController::clickDotWithConfig(const std::shared_ptr<TesselConfig>& config) {
    const auto alive = self();
    _currentType = config->type();
    switch (_currentType) {
        case 0:
            return chooseColor(config->color());
        case 1:
            return chooseSize(config->size());
        case 2:
            return choosePen(config->pen());
        case 3:
            return chooseShape(config->shape());
        default:
            return;
    }
}

void TesselViewController::chooseColor(const gfx::ColorRef& color) {
    _penView->setColor(color);
    _drawView->setDrawColorIsTranslucent(color, false);
    _currentColor = color;
}

void TesselViewController::chooseSize(unsigned size) {
    _penView->setSize(size);
    if (const auto width = lineWidthForSize(size)) _drawView->setDrawLineWidth(*width);
    _currentSize = size;
}

void TesselViewController::choosePen(unsigned pen) {
    _penView->setPen(pen);
    if (pen == EditorPenCrop) return initEditCutView();
    if (const auto type = toolTypeForPen(pen)) _drawView->beginDrawingForTypeWithDrawType(*type, 0);
    _currentPen = pen;
    showPenInRow(pen);
}

void TesselViewController::chooseShape(unsigned shape) {
    _currentShape = shape;
    switch (shape) {
        case 0:
            _drawView->beginDrawingForTypeWithDrawType(ToolType::Rectangle, 0);
            _drawView->setDrawTypeForType(0, ToolType::Rectangle);
            return;
        case 1:
            _drawView->beginDrawingForTypeWithDrawType(ToolType::Ellipse, 0);
            _drawView->setDrawTypeForType(0, ToolType::Ellipse);
            return;
        case 2:
            return _drawView->beginDrawingForTypeWithDrawType(ToolType::Line, 0);
        default:
            return;
    }
}

// ---- set-up

void TesselViewController::initDraw() {
    if (_isConfigViewOut) return;
    _currentColor = colorWithHexString(editorColors().front());
    _currentPen = firstPen;
    _currentSize = firstSize;
    _penView->setColor(_currentColor);
    _penView->setPen(_currentPen);
    _penView->setSize(_currentSize);
    _penPopView->setSelectIndex(0);
    _colorPopView->setSelectIndex(0);
    _sizePopView->setSelectIndex(firstSize);

    _drawView->setDrawColorIsTranslucent(_currentColor, false);
    _drawView->beginDrawingForTypeWithDrawType(*toolTypeForPen(firstPen), 0);
    _drawView->setDrawLineWidth(*lineWidthForSize(firstSize));
    blinkPenview();
}

void TesselViewController::blinkPenview() {
    // A zoom from the thumbnail brings the pen button by itself.
    if (!_shouldBlinkPenview || _needInitAnimate) return;
    _penView->setAlpha(0);
    after(0.1, [](TesselViewController& controller) { controller.showPenview(); });
}

}  // namespace kalim
