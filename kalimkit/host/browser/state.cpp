#include <algorithm>
#include <array>

#include "kalimkit/backend/html/PackedColor.h"
#include "kalimkit/canvas/MDrawMutableSelect.h"
#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/editor/picker/TesselPopView.h"
#include "kalimkit/editor/sheet/KLMActionsheetView.h"
#include "kalimkit/host/browser/PageEditor.h"
#include "kalimkit/tool/MUndoManager.h"
#include "kalimkit/ui/control/AlertView.h"

// What the page watches after every call, to tell its listeners what has become different.

#define KALIM_EXPORT(name) __attribute__((export_name(name)))

namespace {

enum Flag { CanUndo = 1, CanRedo = 2, IsResting = 4, IsEditing = 8, IsAsking = 16, HasPen = 32 };

// They stand in the order of state.js.
struct State {
    double undoDepth = 0;
    double redoDepth = 0;
    double toolCount = 0;
    double flags = IsResting;
    double picture = 0;
    double pen = 0;
    double color = 0;
    double lineWidth = 0;
    double selectionCount = 0;
    double firstSelected = -1;
};

State current;
std::array<double, 10> numbers;

// Whether no gesture is in the middle of a step.
bool isResting(kalim::BrowserEditor& editor) {
    const kalim::MDrawView& canvas = *editor.canvas();
    return editor.window().activeTouches().empty() && !canvas.handingTool() &&
           !canvas.curEdittingTextTool();
}

bool isAsking(kalim::BrowserEditor& editor) {
    return kalim::ui::AlertView::topmostIn(editor.window()) || editor.controller()->actionSheet();
}

void readSelection(const kalim::MDrawView& canvas) {
    if (!canvas.hasSelectedTools()) return;
    const kalim::ToolList& selected = canvas.handingTools()->subTools();
    current.selectionCount = static_cast<double>(selected.size());
    const auto first = std::ranges::find(canvas.tools(), selected.front());
    current.firstSelected = static_cast<double>(first - canvas.tools().begin());
}

void readCanvas(kalim::BrowserEditor& editor) {
    kalim::MDrawView& canvas = *editor.canvas();
    current.undoDepth = static_cast<double>(canvas.undoManager().undoTools().size());
    current.redoDepth = static_cast<double>(canvas.undoManager().redoTools().size());
    current.toolCount = static_cast<double>(canvas.tools().size());
    current.picture = editor.picture();
    current.flags = (canvas.canUndo() ? CanUndo : 0) + (canvas.canRedo() ? CanRedo : 0) +
                    (isResting(editor) ? IsResting : 0) +
                    (canvas.curEdittingTextTool() ? IsEditing : 0) +
                    (isAsking(editor) ? IsAsking : 0);
    readSelection(canvas);
}

// There is none until the editor has appeared.
void readPen(kalim::BrowserEditor& editor) {
    const kalim::TesselViewController& controller = *editor.controller();
    if (!controller.penPopView()) return;
    current.flags += int{HasPen};
    current.pen = controller.currentPen();
    current.color = kalim::gfx::packedColor(*editor.canvas()->color());
    current.lineWidth = editor.canvas()->lineWidth();
}

}  // namespace

// Answers with the numbers of State.
KALIM_EXPORT("state") const double* state() {
    kalim::BrowserEditor& editor = *kalim::pageEditor();
    current = {};
    if (editor.canvas()) {
        readCanvas(editor);
        readPen(editor);
    }
    numbers = {current.undoDepth,      current.redoDepth,    current.toolCount, current.flags,
               current.picture,        current.pen,          current.color,     current.lineWidth,
               current.selectionCount, current.firstSelected};
    return numbers.data();
}

// Answers every question so that nothing is lost, where its picture is not wanted any more.
KALIM_EXPORT("withdraw_questions") void withdrawQuestions() {
    kalim::BrowserEditor& editor = *kalim::pageEditor();
    while (const auto alert = kalim::ui::AlertView::topmostIn(editor.window()))
        alert->dismissWithButton(0);
    editor.show();
}
