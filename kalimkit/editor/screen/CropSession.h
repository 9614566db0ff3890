#pragma once

#include <memory>

#include "kalimkit/crop/EditImageIntialView.h"
#include "kalimkit/editor/screen/EditorStage.h"

namespace kalim {

// The crop editor over the whole screen, from the tap on the crop pen until it is left.
class CropSession {
public:
    explicit CropSession(const EditorStage& stage) : _stage(stage) {}

    // Ignored while one is open.
    void open(std::weak_ptr<EditImageInitialViewDelegate> delegate);
    // It fades out, and is no longer open from now on.
    void leave();
    // Whether it would lose something if it were left.
    bool hasWork() const { return _editor && _editor->hasChanged(); }
    // Null while none is open.
    const std::shared_ptr<EditImageIntialView>& editor() const { return _editor; }

private:
    const EditorStage& _stage;
    std::shared_ptr<EditImageIntialView> _editor;
};

}  // namespace kalim
