#include "tests/random/CanvasWatch.h"

#include <algorithm>
#include <array>
#include <utility>

#include "kalimkit/canvas/MDrawMutableSelect.h"
#include "kalimkit/host/headless/ScenarioValues.h"
#include "kalimkit/shapes/MDrawText.h"
#include "kalimkit/tool/MUndoManager.h"
#include "kalimkit/ui/window/Window.h"

namespace kalim::test {

namespace {

using Entry = UndoModel::Entry;

bool contains(const ToolList& list, const ToolRef& tool) {
    return std::ranges::find(list, tool) != list.end();
}

Entry entryOf(const ToolRef& tool) {
    if (!tool->mutabaleToolObjType()) return {{tool}, false};
    return {static_cast<const MDrawMutableSelect&>(*tool).subTools(), true};
}

std::vector<Entry> entriesOf(const ToolList& stack) {
    std::vector<Entry> entries;
    for (const ToolRef& tool : stack)
        entries.push_back(entryOf(tool));
    return entries;
}

std::array<const ToolList*, 2> stacksOf(MDrawView& canvas) {
    const MUndoManager& manager = canvas.undoManager();
    return {&manager.undoTools(), &manager.redoTools()};
}

std::string namesOf(const ToolList& tools) {
    std::string names = "[";
    for (const ToolRef& tool : tools)
        names += (names.size() > 1 ? " " : "") + tool->name();
    return names + "]";
}

std::string namesOf(const std::vector<Entry>& entries) {
    std::string names;
    for (const Entry& entry : entries)
        names += (entry.isGroup ? "group" : "") + namesOf(entry.members) + " ";
    return names.empty() ? "nothing" : names;
}

}  // namespace

void CanvasWatch::willPlay() {
    _before = {};
    _before.tools = _canvas.tools();
    for (const ToolList* stack : stacksOf(_canvas))
        _before.entries.insert(stack->begin(), stack->end());
    for (const ToolRef& tool : _before.tools) {
        if (tool->isNewBuild()) {
            _before.created.insert(tool);
        } else if (!tool->isDrawVaild()) {
            _before.invalid.push_back(tool);
        }
    }
    if (_canvas.curEdittingTextTool()) _before.created.insert(_canvas.curEdittingTextTool());
    if (_canvas.handingTools()) {
        _before.selection = entryOf(_canvas.handingTools());
        for (const ToolRef& tool : _before.selection->members)
            _before.looks.push_back(tool->getFeature());
    }
    _before.isSeveralFingers = _canvas.window()->activeTouches().size() > 1;
    _before.isFingerDown = !_canvas.window()->activeTouches().empty();
}

CanvasWatch::Fault CanvasWatch::didPlay(const JsonValue& step) {
    _alerts = takeAlerts();
    _hasTakenBack = _hasTakenBack || _alerts > 0;
    noteUnrecorded(step);
    noteLetGo();
    Fault fault;
    follow(step, fault);
    countQuietTime(step);
    return fault ? fault : check();
}

bool CanvasWatch::comesBack(const ToolRef& tool) const {
    return !_model.hasDeletedAfterUndo && !_hasTakenBack && !_unrecorded.contains(tool);
}

// A second finger, a call in the middle of a drag and a rotation that is refused or broken off
// leave what was dragged where it is.
void CanvasWatch::noteUnrecorded(const JsonValue& step) {
    const bool isTouch = step.find("touch");
    const bool isSeveral = _before.isSeveralFingers || _canvas.window()->activeTouches().size() > 1;
    if (!step.find("gesture") && !(isTouch && isSeveral) && !(_before.isFingerDown && !isTouch)) {
        return;
    }
    if (_before.selection) {
        _unrecorded.insert(_before.selection->members.begin(), _before.selection->members.end());
    }
    if (!_canvas.handingTools()) return;
    const ToolList& members = _canvas.handingTools()->subTools();
    _unrecorded.insert(members.begin(), members.end());
}

// Letting go of a tool may bring it within its bounds, without a record.
void CanvasWatch::noteLetGo() {
    for (std::size_t index = 0; index < _before.looks.size(); ++index) {
        const ToolRef& tool = _before.selection->members[index];
        if (_canvas.handingTools() && _canvas.handingTools()->containTool(tool)) continue;
        if (differingKey(*tool, _before.looks[index], tool->getFeature())) _unrecorded.insert(tool);
    }
}

// ---- what the step has done

void CanvasWatch::follow(const JsonValue& step, Fault& fault) {
    const JsonValue* call = step.find("call");
    _stepsHistory = false;
    if (step.find("picture")) {
        _model.reset();
        _unrecorded.clear();
    } else if (!call || !followCall(*call->string(), step)) {
        observe(fault);
    }
}

// Whether the call is one whose effect is known beforehand.
bool CanvasWatch::followCall(const std::string& name, const JsonValue& step) {
    _stepsHistory = name == "undo" || name == "redo";
    if (_stepsHistory) {
        followHistory(name == "undo");
    } else if (name == "clearTools") {
        _model.reset();
        _unrecorded.clear();
    } else if (name == "deleteSelectedTools") {
        if (_before.selection) _model.remove(*_before.selection);
        followEndOfRotation(1);
    } else if (name.starts_with("setDraw")) {
        // The canvas still has what it had: the call's own values are compared with the members'.
        if (changesSelection(name, *step.find("args")->array())) record(*_before.selection);
        takeBack();
    } else {
        return false;
    }
    return true;
}

void CanvasWatch::followHistory(bool isUndo) {
    for (const ToolRef& tool : _before.invalid)
        _model.forget(tool);
    followUnfinished();
    followEndOfRotation(0);
    if (!(isUndo ? _model.undo() : _model.redo())) return;
    for (const ToolRef& tool : (isUndo ? _model.redoStack : _model.undoStack).back().members)
        _unrecorded.erase(tool);
    takeBack();
}

// What is being made or typed ends before the history is stepped: on record, or as nothing.
void CanvasWatch::followUnfinished() {
    const auto stepsOf = [](std::vector<Entry> steps, const std::vector<Entry>& redoable) {
        steps.insert(steps.end(), redoable.rbegin(), redoable.rend());
        return steps;
    };
    const std::vector<Entry> steps = stepsOf(entriesOf(_canvas.undoManager().undoTools()),
                                             entriesOf(_canvas.undoManager().redoTools()));
    const std::vector<Entry> known = stepsOf(_model.undoStack, _model.redoStack);
    // The latest step of each tool, in the order of the steps.
    for (auto step = steps.begin(); step != steps.end(); ++step) {
        if (step->isGroup || !_before.created.contains(step->members.front())) continue;
        if (std::find(step + 1, steps.end(), *step) != steps.end()) continue;
        if (std::ranges::count(steps, *step) > std::ranges::count(known, *step)) record(*step);
    }
    for (const ToolRef& tool : _before.created) {
        if (!_model.current(tool) && !contains(_canvas.tools(), tool)) _model.forget(tool);
    }
}

// A selection that is dropped while it is being turned is recorded first.
void CanvasWatch::followEndOfRotation(std::size_t recordsToCome) {
    if (!_before.selection || !isTurning()) return;
    std::size_t records = 0;
    for (const ToolList* stack : stacksOf(_canvas))
        records += static_cast<std::size_t>(std::ranges::count_if(
            *stack, [this](const ToolRef& entry) { return !_before.entries.contains(entry); }));
    if (records > recordsToCome) record(*_before.selection);
}

bool CanvasWatch::changesSelection(const std::string& name,
                                   const JsonValue::Array& arguments) const {
    if (!_before.selection) return false;
    const ToolList& members = _before.selection->members;
    return std::ranges::any_of(members, [&](const ToolRef& tool) {
        const Feature* last = _model.current(tool);
        if (!last) return true;
        // A text's width is that of the pen for its type; no snapshot has it.
        if (name == "setDrawLineWidth" && isText(*tool)) {
            const double size = static_cast<const MDrawText&>(*tool).fontSize();
            return *last->get<double>("MDrawText-fontSize") != size ||
                   tool->lineWidth() != *arguments[0].number();
        }
        if (name == "setDrawLineWidth") {
            return *last->get<double>("MDrawTool-lineWidth") != *arguments[0].number();
        }
        if (name == "setDrawTypeForType") {
            const auto style = static_cast<std::int64_t>(*arguments[0].number());
            return *last->get<std::int64_t>("MDrawTool-drawType") != style;
        }
        gfx::ColorRef color;
        readValue(arguments[0], color);
        const auto* lastColor = last->get<gfx::ColorRef>("MDrawTool-color");
        // Members that have their colours from different steps share none.
        return !lastColor || !gfx::equalColors(*lastColor, color) ||
               *lastColor !=
                   *_model.current(members.front())->get<gfx::ColorRef>("MDrawTool-color");
    });
}

void CanvasWatch::record(const Entry& entry) {
    const bool isStepped = _alerts > 0 || _stepsHistory;
    _model.record(entry, [isStepped](MDrawTool& tool) -> std::optional<Feature> {
        if (!tool.isDrawVaild()) return std::nullopt;
        const bool hasChangedSince = isStepped || isText(tool);
        return hasChangedSince ? *tool.undoMgr().featureList().back() : tool.getFeature();
    });
    for (const ToolRef& tool : entry.members)
        _unrecorded.erase(tool);
}

void CanvasWatch::takeBack() {
    for (; _alerts > 0; --_alerts)
        _model.undo();
}

// Lets the canvas say what came, went and was recorded.
void CanvasWatch::observe(Fault& fault) {
    for (const ToolRef& tool : _canvas.tools()) {
        if (!_model.isOnCanvas(tool) && !_model.histories.contains(tool)) _model.begin(tool);
    }
    const std::vector<Entry> redone = entriesOf(_canvas.undoManager().redoTools());
    if (_alerts > 0 && !redone.empty()) {
        fault = observeRecord(redone.back());
        takeBack();
    }
    if (!fault) fault = observeVanished();
    const std::vector<Entry> recorded = entriesOf(_canvas.undoManager().undoTools());
    while (!fault && _model.undoStack.size() < recorded.size())
        fault = observeRecord(recorded[_model.undoStack.size()]);
}

CanvasWatch::Fault CanvasWatch::observeVanished() {
    const std::vector<Entry> recorded = entriesOf(_canvas.undoManager().undoTools());
    for (const ToolRef& tool : ToolList(_model.tools)) {
        if (contains(_canvas.tools(), tool)) continue;
        const bool isRecorded =
            recorded.size() > _model.undoStack.size() && contains(recorded.back().members, tool);
        if (isRecorded) continue;
        const bool isUnfinished = _before.created.contains(tool) || !tool->isDrawVaild();
        if (!isUnfinished) return tool->name() + " has gone without a record";
        _model.forget(tool);
    }
    return std::nullopt;
}

CanvasWatch::Fault CanvasWatch::observeRecord(const Entry& entry) {
    const ToolRef& first = entry.members.front();
    if (entry.isGroup) {
        const bool wasSelected = _before.selection && *_before.selection == entry;
        if (!wasSelected) return "a record of tools that were not selected: " + namesOf({entry});
    } else if (contains(_before.tools, first) && !_before.created.contains(first)) {
        return "a record of a tool that was neither made nor edited: " + first->name();
    }
    const bool isRemoved =
        _alerts == 0 && _model.isOnCanvas(first) && !contains(_canvas.tools(), first);
    if (isRemoved) {
        _model.remove(entry);
    } else {
        record(entry);
    }
    return std::nullopt;
}

// ---- what must be so after every step

CanvasWatch::Fault CanvasWatch::check() const {
    if (Fault fault = checkStacks()) return fault;
    for (const ToolRef& tool : _canvas.tools()) {
        if (Fault fault = checkHistory(tool)) return fault;
        if (!isQuiet() || tool->isNewBuild()) continue;
        if (Fault fault = checkResting(tool)) return fault;
    }
    if (Fault fault = checkNothingIsMade()) return fault;
    return isQuiet() ? checkContent(_unrecorded) : std::nullopt;
}

CanvasWatch::Fault CanvasWatch::checkStacks() const {
    const auto compare = [](const std::string& what, const auto& expected,
                            const auto& actual) -> Fault {
        if (expected == actual) return std::nullopt;
        return what + ": " + namesOf(actual) + " instead of " + namesOf(expected);
    };
    if (Fault fault = compare("the tools", _model.tools, _canvas.tools())) return fault;
    MUndoManager& manager = _canvas.undoManager();
    const auto undoable = entriesOf(manager.undoTools());
    const auto redoable = entriesOf(manager.redoTools());
    if (Fault fault = compare("to undo", _model.undoStack, undoable)) return fault;
    if (Fault fault = compare("to redo", _model.redoStack, redoable)) return fault;
    if (_canvas.canUndo() != !undoable.empty() || _canvas.canRedo() != !redoable.empty()) {
        return "canUndo and canRedo do not say what the stacks hold";
    }
    return std::nullopt;
}

CanvasWatch::Fault CanvasWatch::checkHistory(const ToolRef& tool) const {
    const auto found = _model.histories.find(tool);
    const MToolUndoManager& kept = tool->undoMgr();
    const std::size_t states = found == _model.histories.end() ? 0 : found->second.states.size();
    if (kept.featureList().size() != states) {
        return tool->name() + " has " + std::to_string(kept.featureList().size()) +
               " states instead of " + std::to_string(states);
    }
    const Feature* expected = _model.current(tool);
    if (!expected) return std::nullopt;
    const auto key = kept.feature() ? differingKey(*tool, *expected, *kept.feature()) : "state";
    if (key) return tool->name() + " has another " + *key + " on record than when it was recorded";
    return std::nullopt;
}

CanvasWatch::Fault CanvasWatch::checkResting(const ToolRef& tool) const {
    if (_unrecorded.contains(tool)) return std::nullopt;
    const Feature* expected = _model.current(tool);
    if (!expected) return tool->name() + " is on the canvas without a record";
    const auto key = differingKey(*tool, *expected, tool->getFeature());
    const bool isFitted = isText(*tool) && (key == "box" || key == "MDrawText-fontSize");
    if (key && !isFitted) {
        return tool->name() + " has another " + *key + " than its record";
    }
    return std::nullopt;
}

}  // namespace kalim::test
