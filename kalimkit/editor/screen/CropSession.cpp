#include "kalimkit/editor/screen/CropSession.h"

#include <utility>

namespace kalim {

void CropSession::open(std::weak_ptr<EditImageInitialViewDelegate> delegate) {
    if (_editor) return;
    // It may be left while it opens.
    const auto editor = EditImageIntialView::initWithFrame(_stage.view().bounds());
    _editor = editor;
    editor->setFillsSuperview(true);
    editor->setAccessibilityModal(true);
    editor->setDelegate(std::move(delegate));
    editor->setLeavesWhenUnchanged(_stage.isForgiving());
    editor->setForgiving(_stage.isForgiving());
    _stage.view().addSubview(editor);
    editor->onEditImageWithEditEntrance(nullptr, 0);
}

void CropSession::leave() {
    if (const auto editor = std::exchange(_editor, nullptr)) editor->fadeOut();
}

}  // namespace kalim
