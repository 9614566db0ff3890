#include <utility>

#include "kalimkit/editor/screen/TesselViewController.h"

namespace kalim {

void TesselViewController::initEditCutView() {
    if (_editImageInitialView) return;
    const auto alive = self();
    const auto editor = EditImageIntialView::initWithFrame(view()->bounds());
    _editImageInitialView = editor;
    editor->setFillsSuperview(true);
    editor->setAccessibilityModal(true);
    editor->setDelegate(self());
    editor->setLeavesWhenUnchanged(_forgiving);
    view()->addSubview(editor);
    editor->onEditImageWithEditEntrance(nullptr, 0);
}

void TesselViewController::dropEditCutView() {
    if (const auto editor = std::exchange(_editImageInitialView, nullptr)) {
        editor->fadeOut();
    }
    if (!_forgiving) return;
    _penView->setPen(_currentPen);
    showPenInRow(_currentPen);
}

// ---- from the crop editor

void TesselViewController::getOriginalImage(const OriginalImageCallback& callback) {
    const auto alive = self();
    callback(exportedImage(), 0);
}

void TesselViewController::getDisplayImage(const DisplayImageCallback& callback) {
    const auto alive = self();
    callback(nullptr, 0, 1);
    if (isPanelUp()) hidePop();
}

std::optional<gfx::Rect> TesselViewController::originalImageFrame() {
    return shownByCanvas(_drawView->ctxRect());
}

void TesselViewController::onCropImageDone(const gfx::ImageRef& image) {
    const auto alive = self();
    const gfx::ImageRef content = exportedImage();
    // In points the two differ although nothing was cut: what was cut out has a scale of 1.
    if (content && image && content->pixelSize() != image->pixelSize()) _isImageCroped = true;
    _hasCropped = true;
    _drawView->setSnipImage(image);
    dropEditCutView();
}

void TesselViewController::OnClickEditImageDoneBarButton() {
    if (isPanelUp()) hidePop();
}

void TesselViewController::OnClickEditImageBackBarButton() {
    dropEditCutView();
}

}  // namespace kalim
