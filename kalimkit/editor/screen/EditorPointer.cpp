#include "kalimkit/editor/screen/EditorPointer.h"

#include <utility>

#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/editor/screen/TesselViewController.h"

namespace kalim {

EditorPointer::EditorPointer(std::weak_ptr<TesselViewController> editor)
    : _editor(std::move(editor)) {}

std::shared_ptr<MDrawView> EditorPointer::canvas() const {
    const auto editor = _editor.lock();
    return editor ? editor->drawView() : nullptr;
}

bool EditorPointer::isCovered() const {
    const auto editor = _editor.lock();
    return !editor || editor->actionSheet() || editor->editImageInitialView();
}

}  // namespace kalim
