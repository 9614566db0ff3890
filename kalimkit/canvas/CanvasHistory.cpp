#include "kalimkit/canvas/CanvasHistory.h"

#include <algorithm>
#include <utility>

#include "kalimkit/canvas/CanvasArrangement.h"
#include "kalimkit/canvas/CanvasContent.h"
#include "kalimkit/canvas/CanvasFinger.h"
#include "kalimkit/canvas/CanvasFreehand.h"
#include "kalimkit/canvas/CanvasHome.h"
#include "kalimkit/canvas/CanvasJournal.h"
#include "kalimkit/canvas/CanvasRestyling.h"
#include "kalimkit/canvas/CanvasScreen.h"
#include "kalimkit/canvas/CanvasSelection.h"
#include "kalimkit/canvas/CanvasTools.h"
#include "kalimkit/canvas/CanvasTyping.h"
#include "kalimkit/canvas/DeletionQuestion.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

void CanvasHistory::listen() {
    _canvas.tools.undoManager().setDelegate(_canvas.home.held(*this));
}

// ---- undo

bool CanvasHistory::canUndo() const {
    return isWaiting() || _canvas.tools.undoManager().canUndo();
}

bool CanvasHistory::canRedo() const {
    return !isWaiting() && _canvas.tools.undoManager().canRedo();
}

bool CanvasHistory::isWaiting() const {
    return _canvas.freehand.isWaiting() || _canvas.arrangement.isNudging() ||
           _canvas.finger.isPlacing();
}

bool CanvasHistory::undo() {
    if (_canvas.finger.takeBackPoint()) return true;
    return step(&MUndoManager::undo);
}

bool CanvasHistory::redo() {
    if (_canvas.finger.isPlacing()) return false;
    return step(&MUndoManager::redo);
}

void CanvasHistory::endUnderWay() {
    _canvas.typing.finish();
    _canvas.finger.endCreation();
    removeInvalid();
    _canvas.selection.clear();
    _canvas.finger.forgetFound();
}

bool CanvasHistory::step(bool (MUndoManager::*take)()) {
    // What is still chosen is no step yet.
    if (_canvas.restyling.breakOff()) return true;
    // A pointer goes on with what it has selected.
    const auto& group = _canvas.selection.group();
    const bool keepsSelection = group && _canvas.tools.pen().rules.fineHandles;
    ToolList selected = keepsSelection ? group->subTools() : ToolList();
    const bool isTaken = stepUnselected(take);
    std::erase_if(selected, [this](const ToolRef& tool) { return !_canvas.tools.contains(tool); });
    if (!selected.empty()) _canvas.selection.select(selected);
    return isTaken;
}

bool CanvasHistory::stepUnselected(bool (MUndoManager::*take)()) {
    // What is being typed or fades in is the step that is meant.
    _canvas.typing.finish();
    // A finger that is still drawing has done its work with that.
    if (_canvas.tools.forgiving() &&
        (_canvas.finger.isCreating(ToolRecorder::Strokes) || _canvas.finger.isStraightening())) {
        _canvas.finger.endCreation();
    }
    _canvas.freehand.end();
    removeInvalid();
    _canvas.selection.clear();
    _canvas.finger.forgetFound();
    if (!(_canvas.tools.undoManager().*take)()) return false;
    // A tool that comes back has missed what was set while it was away.
    _canvas.tools.refreshShared();
    _canvas.content.refresh();
    _canvas.home.redisplay();
    return true;
}

void CanvasHistory::tell() {
    if (const auto owner = _canvas.home.owner()) {
        owner->canUndoStateChangedCanRedo(canUndo(), canRedo());
    }
}

// ---- tools

bool CanvasHistory::add(const ToolRef& tool) {
    // A tool with a history belongs, or belonged, to a canvas and its steps.
    if (!tool || tool->mutabaleToolObjType() || !tool->undoMgr().featureList().empty() ||
        !tool->isDrawVaild() || _canvas.tools.contains(tool)) {
        return false;
    }
    const NewTools& pen = _canvas.tools.pen();
    if (!tool->color()) tool->setColor(pen.color);
    pen.applyShared(*tool);
    pen.applyRules(*tool);
    if (tool->quarterTurns() == 0) tool->setQuarterTurns(_canvas.tools.quarterTurns());
    _canvas.typing.adopt(tool);
    tool->setIsNewBuild(false);
    tool->setSelected(false);
    if (!tool->finalized()) tool->finalize();
    tool->settle();
    _canvas.tools.add(tool);
    _canvas.tools.record(tool);
    _canvas.home.redisplay();
    return _canvas.tools.contains(tool);
}

void CanvasHistory::removeSelected() {
    CanvasSelection& selection = _canvas.selection;
    if (!selection.group()) return;
    // What fingers are still doing is a step of its own, and may have been the selection's last.
    selection.endNudging();
    if (_canvas.tools.forgiving()) selection.endStepUnderWay();
    if (!selection.group()) return;
    const auto leaving = selection.changeable();
    if (!leaving) return;
    const auto& question = ui::Environment::current().attachment<DeletionQuestion>();
    if (!question.answer(leaving->subTools().size())) return;
    _canvas.tools.remove(leaving);
    selection.clear();
    _canvas.content.refresh();
    _canvas.home.redisplay();
}

bool CanvasHistory::reorder(ToolPlacements placements) {
    const ToolList& list = _canvas.tools.list();
    ToolPlacements before;
    for (std::size_t place = 0; place < list.size(); ++place) {
        if (std::ranges::find(placements, list[place], &ToolPlacement::tool) != placements.end())
            before.push_back({list[place], place});
    }
    if (before.size() != placements.size() || before == placements) return false;
    lay(placements);
    const auto weak = std::weak_ptr(_canvas.home.held(*this));
    _canvas.tools.record(ToolOrderStep::make(std::move(before), std::move(placements),
                                             [weak](const ToolPlacements& stepped) {
                                                 const auto history = weak.lock();
                                                 if (history) history->lay(stepped);
                                             }));
    return true;
}

void CanvasHistory::lay(const ToolPlacements& placements) {
    _canvas.tools.lay(placements);
    for (const ToolPlacement& placement : placements)
        _canvas.screen.markChanged(placement.tool);
    _canvas.home.redisplay();
}

void CanvasHistory::clear() {
    _canvas.typing.finish();
    _canvas.freehand.drop();
    _canvas.selection.clear();
    _canvas.finger.forgetTools();
    _canvas.screen.forgetCreated();
    _canvas.tools.clear();
    _canvas.home.redisplay();
}

void CanvasHistory::open(ToolList tools) {
    clear();
    _canvas.tools.open(std::move(tools));
    _canvas.screen.markListChanged();
    _isDirty = false;
    _canvas.home.redisplay();
}

void CanvasHistory::removeInvalid() {
    const ToolList tools = _canvas.tools.list();
    for (const ToolRef& tool : tools) {
        if (tool->isNewBuild() || tool->isDrawVaild()) continue;
        _canvas.selection.remove(tool);
        _canvas.tools.forget(tool);
    }
}

// ---- messages

void CanvasHistory::didStep(Step step, const ToolRef& entry) {
    for (const ToolRef& tool : _canvas.tools.recount())
        _canvas.screen.markChanged(tool);
    _canvas.journal.note(step, entry);
}

void CanvasHistory::canUndoStateChangedCanRedo(bool canUndo, bool canRedo) {
    if (const auto owner = _canvas.home.owner()) {
        const bool waits = isWaiting();
        owner->canUndoStateChangedCanRedo(canUndo || waits, canRedo && !waits);
    }
}

void CanvasHistory::toolsStateChangedState(const ToolRef& tool, State state) {
    _isDirty = true;
    _canvas.screen.markListChanged();
    _canvas.screen.markChanged(tool);
    if (state != State::AddedOrChanged) _canvas.selection.dropAbsent();
    ZoomedCanvasView& view = _canvas.home.view();
    const gfx::Rect before = view.ctxRect();
    const bool isChanged = (tool || state != State::AddedOrChanged) && _canvas.content.refresh();
    if (isChanged && !before.contains(view.ctxRect())) view.autoScaleWhenCtxEnlarged();
    _canvas.home.redisplay();
}

}  // namespace kalim
