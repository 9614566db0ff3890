#include <utility>

#include "kalimkit/editor/screen/EditorParts.h"
#include "kalimkit/editor/screen/EditorTables.h"
#include "kalimkit/editor/screen/TesselViewController.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/environment/LateCode.h"

// What the controller hears from the views. Whoever calls may let go of it meanwhile, also in what
// the canvas logs.

namespace kalim {

namespace {

// The pen button springs up so long after it has vanished.
constexpr double penDelay = 0.1;
// Of the pen button, or what stands in for it, while something is drawn under it.
constexpr double fadedAlpha = 0.2;

}  // namespace

// ---- from the canvas

void TesselViewController::didDrawStarted() {
    if (isPanelUp()) hidePop();
}

void TesselViewController::seletedToolsStateChanged(bool hasSelection) {
    parts().buttons.selectionChanged(hasSelection);
    tellShell();
}

void TesselViewController::currentSelectedToolsPropertyChangedColorLineWidth(
    std::int64_t type, const gfx::ColorRef& color, double lineWidth) {
    parts().choice.showTool(type, color, lineWidth);
    tellShell();
}

void TesselViewController::canUndoStateChangedCanRedo(bool canUndo, bool canRedo) {
    parts().bar->setUndoEnableRedoEnable(canUndo, canRedo);
    tellShell();
}

void TesselViewController::textToolEditing(bool isEditing) {
    parts().bar->setEditMode(isEditing);
    tellShell();
}

void TesselViewController::didCanvasScaleAndPanStart() {
    fadeTool(0);
}

void TesselViewController::didCanvasScaleAndPanEnd() {
    fadeTool(1);
}

void TesselViewController::canvasWillShow() {
    tellShell();
}

bool TesselViewController::opensMenus() {
    return !shell() || shell()->opensMenus();
}

void TesselViewController::tellShell() {
    parts().stage.tellShell();
}

void TesselViewController::didDrawOver(const std::optional<gfx::Rect>& viewRect) {
    if (!_laysPictureBetweenBars || shell()) return;
    const SelectionButtons& buttons = parts().buttons;
    const gfx::Rect covered = buttons.standIn() ? buttons.frame() : penView()->frame();
    const bool isUnder =
        viewRect &&
        drawView()->convertRectTo(*viewRect, view().get()).intersects(view()->mirrored(covered));
    if (std::exchange(_isDrawnUnderPen, isUnder) == isUnder) return;
    fadeTool(isUnder ? fadedAlpha : 1);
}

void TesselViewController::fadeTool(double alpha) {
    if (parts().buttons.standIn()) {
        parts().buttons.fade(alpha);
    } else {
        parts().pen.fade(alpha);
    }
}

// ---- from the tool bar

void TesselViewController::clickTool() {
    parts().pickers.fold();
}

bool TesselViewController::hasWork() const {
    return parts().picture.hasWork();
}

void TesselViewController::noteSaved() {
    parts().picture.noteSaved();
}

bool TesselViewController::asksBeforeClosing() const {
    const EditorPicture& picture = parts().picture;
    if (!picture.canvas()) return false;
    if (!forgiving()) return picture.canvas()->hasDrawed();
    // Where windows have a file open, that is where it was.
    return hasWork() || (picture.hasOpened() && !shell()) || parts().crop.hasWork();
}

bool TesselViewController::canContinueClose() {
    const auto alive = self();
    if (!asksBeforeClosing()) return true;
    std::optional<std::string> sendTitle;
    // Not while a crop is under way, which would not be in what is sent.
    if (forgiving() && !editImageInitialView())
        sendTitle = toolView()->confirmButton()->title(ui::ControlState::Normal);
    parts().closing.ask(self(), sendTitle);
    return false;
}

void TesselViewController::modalAlertPressedWithButtonIndex(KLMActionsheetView& sheet, int index) {
    const auto alive = self();
    const auto answer = parts().closing.answered(sheet, index);
    if (answer == ClosingQuestion::Answer::Send) return toolView()->handleConfirm();
    if (answer != ClosingQuestion::Answer::Discard) return;
    clickTool();
    clickToolClose();
}

void TesselViewController::clickToolClose() {
    const auto alive = self();
    if (const auto delegate = _delegate.lock()) delegate->close();
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
    drawView()->undo();
}

void TesselViewController::clickToolRedo() {
    const auto alive = self();
    drawView()->redo();
}

void TesselViewController::clickToolDone() {
    const auto alive = self();
    drawView()->finishEditText();
    toolView()->setEditMode(false);
}

// ---- from the pen button and the panel

int TesselViewController::clickAtPenView() {
    const auto alive = self();
    parts().pen.endRing();
    if (shell()) {
        // The bars have come while the buttons were on their way out for it.
        parts().buttons.editingEnded();
        parts().buttons.move();
        return 0;
    }
    EditorPanel& panel = parts().panel;
    if (panel.isMoving()) return 0;
    if (panel.isUp()) {
        panel.close();
    } else {
        panel.open();
    }
    return 0;
}

void TesselViewController::clickAtConfirm() {
    if (!isAnimation()) hidePop();
}

void TesselViewController::clickAtMaskView() {
    if (!forgiving() || !parts().buttons.isDoubleClicked()) hidePop();
}

void TesselViewController::clickAtPop(TesselPopView& picker) {
    parts().pickers.toggle(picker);
}

// Whoever takes another pen wants to draw with it at once, and what it is remembered with is not
// for the text that was being typed.
void TesselViewController::endTypingFor(unsigned pen) {
    if (!shell() && !remembersTools()) return;
    const auto canvas = drawView();
    if (!canvas->curEdittingTextTool()) return;
    canvas->finishEditText();
    if (pen != EditorPenSelect) canvas->selectNone();
}

void TesselViewController::clickDotWithConfig(const std::shared_ptr<TesselConfig>& config) {
    const auto alive = self();
    EditorParts& all = parts();
    const bool isPen = config->type() == 2;
    if (isPen) endTypingFor(config->pen());
    if (isPen) all.memory.leave(all.choice.pen(), *all.picture.canvas());
    all.choice.choose(*config);
    if (isPen && config->pen() != EditorPenCrop) {
        all.memory.storeLast(config->pen());
        all.choice.recall(all.memory);
    } else if (!isPen) {
        rememberTool();
    }
    tellShell();
    if (!isPen || config->pen() != EditorPenCrop || isReadOnly()) return;
    const std::weak_ptr<TesselViewController> weak = alive;
    const auto again = [weak] {
        const auto editor = weak.lock();
        const bool isHere = editor && editor->view()->window() && !editor->isReadOnly();
        if (isHere) editor->parts().crop.open(weak);
    };
    const auto& code = ui::Environment::current().attachment<ui::LateCode>();
    if (code.isThere(again)) parts().crop.open(weak);
}

bool TesselViewController::shouldReceiveTouch(const ui::GestureRecognizer& /*recognizer*/,
                                              const ui::Touch& touch) {
    return !parts().pickers.hold(touch);
}

void TesselViewController::showPop() {
    const auto alive = self();
    parts().panel.open();
}

void TesselViewController::hidePop() {
    const auto alive = self();
    parts().panel.close();
}

void TesselViewController::showPenview() {
    if (!parts().buttons.standIn()) parts().pen.pop();
}

void TesselViewController::blinkPenview() {
    // A zoom from the thumbnail brings the pen button by itself.
    if (shouldBlinkPenview() && !needInitAnimate()) bringPenButton();
}

void TesselViewController::bringPenButton() {
    parts().pen.vanish();
    parts().stage.after(penDelay, [this] { showPenview(); });
}

// ---- from the buttons beside the pen button

void TesselViewController::clickConfigEdit() {
    const auto alive = self();
    parts().buttons.edit([this] { clickAtPenView(); });
}

void TesselViewController::clickDelete() {
    const auto alive = self();
    drawView()->deleteSelectedTools();
}

// ---- from the crop editor

void TesselViewController::getOriginalImage(const OriginalImageCallback& callback) {
    const auto alive = self();
    callback(parts().picture.pictureToCrop(), 0);
}

void TesselViewController::getDisplayImage(const DisplayImageCallback& callback) {
    const auto alive = self();
    callback(nullptr, 0, 1);
    if (isPanelUp()) hidePop();
}

std::optional<gfx::Rect> TesselViewController::originalImageFrame() {
    return parts().picture.shown(parts().picture.contentToCrop());
}

std::optional<gfx::Rect> TesselViewController::originalCrop() {
    return parts().picture.presentCrop();
}

bool TesselViewController::onCropChosen(const PictureCut& cut, const gfx::Rect& frame) {
    const auto alive = self();
    if (!parts().picture.takeCut(cut, frame)) return false;
    leaveCrop();
    return true;
}

void TesselViewController::onCropImageDone(const gfx::ImageRef& image) {
    const auto alive = self();
    parts().picture.takeCropped(image);
    leaveCrop();
}

void TesselViewController::OnClickEditImageDoneBarButton() {
    if (isPanelUp()) hidePop();
}

void TesselViewController::OnClickEditImageBackBarButton() {
    leaveCrop();
}

void TesselViewController::leaveCrop() {
    parts().crop.leave();
    if (forgiving()) parts().choice.showPen();
    tellShell();
}

}  // namespace kalim
