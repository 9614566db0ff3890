#include "kalimkit/tool/MUndoManager.h"

#include <algorithm>
#include <utility>

namespace kalim {

namespace {

// The entry that stands for a tool on the stacks: a group is copied, so that the entry keeps the
// members it had at that moment.
ToolRef entryFor(const ToolRef& tool) {
    return tool->mutabaleToolObjType() ? tool->copyOfGroup() : tool;
}

using Step = MUndoManagerDelegate::Step;

MUndoManager::State stateAfter(Step step) {
    switch (step) {
        case Step::Recorded:
            return MUndoManager::State::AddedOrChanged;
        case Step::Undone:
        case Step::Redone:
            return MUndoManager::State::UndoneOrRedone;
        default:
            return MUndoManager::State::Removed;
    }
}

}  // namespace

ToolList membersOf(const ToolRef& entry) {
    if (!entry->mutabaleToolObjType()) return {entry};
    ToolList members;
    entry->addSubToolToArray(members);
    return members;
}

void MUndoManager::addTool(const ToolRef& tool) {
    if (tool && !isOnCanvas(tool)) _tools->push_back(tool);
}

void MUndoManager::addToolSuccess(const ToolRef& tool) {
    if (!tool) return;
    const bool isGroup = tool->mutabaleToolObjType();
    if (!isGroup && (!isOnCanvas(tool) || !tool->isDrawVaild())) return;
    if (_rules.forgiving && !tool->hasUnrecordedChange()) return;
    const ToolRef entry = entryFor(tool);
    // The histories are cut before the new snapshot is recorded: recording appends at the end.
    cutRedo();
    entry->updatefeature();
    _undoTools.push_back(entry);
    report(Step::Recorded, entry);
}

void MUndoManager::cutRedo() {
    for (const ToolRef& tool : *_tools)
        tool->resetRedo();
    for (const ToolRef& tool : _redoTools)
        tool->resetRedo();
    _redoTools.clear();
}

void MUndoManager::removeTool(const ToolRef& tool) {
    if (!tool) return;
    const ToolRef entry = entryFor(tool);
    if (_rules.forgiving) cutRedo();
    cross({membersOf(entry), {}});
    _undoTools.push_back(entry);
    report(Step::Removed, entry);
}

void MUndoManager::exchangeTool(const ToolRef& leaving, const ToolRef& coming) {
    std::erase(*_tools, coming);
    const auto place = std::ranges::find(*_tools, leaving) - _tools->begin();
    if (place == std::ssize(*_tools)) return;
    const ToolRef kept = leaving;  // The caller's reference may be an element of the list.
    _places.takeOut(*_tools, {kept});
    _tools->insert(_tools->begin() + place, coming);
}

void MUndoManager::addExchange(const ToolRef& group) {
    const ToolRef entry = entryFor(group);
    cutRedo();
    for (const ToolRef& tool : membersOf(entry)) {
        if (isOnCanvas(tool)) tool->updatefeature();
    }
    _undoTools.push_back(entry);
    report(Step::Exchanged, entry);
}

void MUndoManager::removeToolFromAllSystem(const ToolRef& tool) {
    if (!tool) return;
    const ToolRef kept = tool;  // The caller's reference may be an element of one of these lists.
    if (kept->mutabaleToolObjType()) {
        removeInvaildMutableToolsByTool(kept);
    } else {
        std::erase(*_tools, kept);
        std::erase(_redoTools, kept);
        std::erase(_undoTools, kept);
    }
    report(Step::Forgotten, kept);
}

void MUndoManager::removeInvaildMutableToolsByTool(const ToolRef& tool) {
    ToolList invalid;
    for (ToolList* list : {_tools.get(), &_undoTools, &_redoTools}) {
        for (const ToolRef& entry : *list) {
            if (!entry->mutabaleToolObjType()) continue;
            entry->removeSubTool(tool);
            if (!entry->isDrawVaild()) invalid.push_back(entry);
        }
    }
    for (const ToolRef& group : invalid) {
        group->removeSubToolFromArray(*_tools);
        std::erase(_redoTools, group);
        std::erase(_undoTools, group);
    }
}

bool MUndoManager::undo() {
    if (_undoTools.empty()) return false;
    const ToolRef entry = _undoTools.back();
    _undoTools.pop_back();
    Crossing crossing;
    if (entry->mutabaleToolObjType()) {
        entry->undo([&](const ToolRef& tool) { return undoTool(tool, crossing); });
    } else {
        undoTool(entry, crossing);
    }
    cross(crossing);
    _redoTools.push_back(entry);
    report(Step::Undone, entry);
    return true;
}

bool MUndoManager::redo() {
    if (_redoTools.empty()) return false;
    const ToolRef entry = _redoTools.back();
    _redoTools.pop_back();
    Crossing crossing;
    if (entry->mutabaleToolObjType()) {
        entry->redo([&](const ToolRef& tool) { return redoTool(tool, crossing); });
    } else {
        redoTool(entry, crossing);
    }
    cross(crossing);
    _undoTools.push_back(entry);
    report(Step::Redone, entry);
    return true;
}

bool MUndoManager::undoTool(const ToolRef& tool, Crossing& crossing) const {
    if (!isOnCanvas(tool)) {
        tool->revertLastValidfeature();
        crossing.returning.push_back(tool);
    } else if (!tool->undo()) {
        crossing.leaving.push_back(tool);
    }
    return true;
}

bool MUndoManager::redoTool(const ToolRef& tool, Crossing& crossing) const {
    if (!isOnCanvas(tool)) {
        tool->revertLastValidfeature();
        crossing.returning.push_back(tool);
    } else if (!tool->redo()) {
        tool->revertLastValidfeature();
        crossing.leaving.push_back(tool);
    }
    return true;
}

void MUndoManager::cross(const Crossing& crossing) {
    _places.takeOut(*_tools, crossing.leaving);
    if (_rules.forgiving) {
        _places.putBack(*_tools, crossing.returning);
    } else {
        // They come back on top, which is meant.
        _tools->insert(_tools->end(), crossing.returning.begin(), crossing.returning.end());
    }
}

void MUndoManager::reset() {
    for (const ToolRef& tool : *_tools)
        tool->reset();
    _undoTools.clear();
    _redoTools.clear();
    _places = {};
    report(Step::Reset, nullptr);
}

bool MUndoManager::isOnCanvas(const ToolRef& tool) const {
    return std::ranges::find(*_tools, tool) != _tools->end();
}

void MUndoManager::report(Step step, const ToolRef& tool) {
    ++_changeCount;
    const std::shared_ptr<MUndoManagerDelegate> delegate = _delegate.lock();
    if (!delegate) return;
    delegate->didStep(step, tool);
    delegate->canUndoStateChangedCanRedo(canUndo(), canRedo());
    delegate->toolsStateChangedState(tool, stateAfter(step));
}

}  // namespace kalim
