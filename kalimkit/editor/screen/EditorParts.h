#pragma once

#include <memory>

#include "kalimkit/editor/bar/TesselTopTool.h"
#include "kalimkit/editor/picker/TesselDot.h"
#include "kalimkit/editor/screen/ClosingQuestion.h"
#include "kalimkit/editor/screen/CropSession.h"
#include "kalimkit/editor/screen/EditorOffer.h"
#include "kalimkit/editor/screen/EditorPanel.h"
#include "kalimkit/editor/screen/EditorPickers.h"
#include "kalimkit/editor/screen/EditorPicture.h"
#include "kalimkit/editor/screen/EditorStage.h"
#include "kalimkit/editor/screen/PenButton.h"
#include "kalimkit/editor/screen/PictureTransition.h"
#include "kalimkit/editor/screen/SelectionButtons.h"
#include "kalimkit/editor/screen/ToolChoice.h"
#include "kalimkit/editor/screen/ToolMemory.h"

namespace kalim {

// What the editor's screen is put together from. Each part has its state and what can be done with
// it; the controller passes on to them what comes from the outside.
class EditorParts {
public:
    explicit EditorParts(ui::ViewController& screen) : stage(screen) {}
    EditorParts(const EditorParts&) = delete;
    EditorParts& operator=(const EditorParts&) = delete;

    EditorStage stage;
    std::shared_ptr<TesselTopTool> bar;
    // Of the pen before there was a button; hidden.
    std::shared_ptr<TesselDot> nib;
    EditorOffer offer;
    EditorPicture picture{stage};
    PenButton pen{stage};
    EditorPickers pickers{stage, offer};
    EditorPanel panel{stage, picture, pen, pickers};
    SelectionButtons buttons{stage, picture, pen, panel};
    ToolChoice choice{picture, pen, pickers};
    ToolMemory memory;
    PictureTransition transition{stage, picture, bar};
    CropSession crop{stage};
    ClosingQuestion closing{stage};
};

}  // namespace kalim
