#include "tests/random/CanvasWatch.h"

#include <algorithm>
#include <utility>

#include "kalimkit/canvas/MDrawMutableSelect.h"
#include "kalimkit/host/headless/HeadlessEnvironment.h"
#include "kalimkit/shapes/MDrawText.h"
#include "kalimkit/tool/MUndoManager.h"
#include "kalimkit/ui/gesture/RotationGestureRecognizer.h"
#include "kalimkit/ui/window/Window.h"

namespace kalim::test {

namespace {

bool contains(const ToolList& list, const ToolRef& tool) {
    return std::ranges::find(list, tool) != list.end();
}

bool isAnyOf(const ToolList& tools, const auto& predicate) {
    return std::ranges::any_of(tools, predicate);
}

}  // namespace

struct CanvasWatch::Listener : MDrawViewDelegate {
    void canUndoStateChangedCanRedo(bool canUndo, bool canRedo) override {
        told = {canUndo, canRedo};
    }
    std::pair<bool, bool> told;
};

CanvasWatch::CanvasWatch(MDrawView& canvas)
    : _canvas(canvas), _listener(std::make_shared<Listener>()), _prints{printsOf(canvas)} {
    canvas.setDrawViewdelegate(_listener);
}

void CanvasWatch::willPlay() {
    const std::size_t fingers = _canvas.window()->activeTouches().size();
    _before = {stacks(), _canvas.canUndo(), fingers > 1, fingers > 0, {}, selected(), {}};
    for (const ToolRef& tool : _canvas.tools()) {
        if (tool->isNewBuild() || !tool->isDrawVaild()) _before.unfinished.push_back(tool);
    }
    if (_canvas.curEdittingTextTool()) {
        _before.unfinished.push_back(_canvas.curEdittingTextTool());
    }
    if (!_before.selected.empty()) _before.prints = printsOf(_canvas);
}

CanvasWatch::Fault CanvasWatch::didPlay(const JsonValue& step) {
    const Stacks now = stacks();
    if (!_canvas.forgiving()) noteUnrecorded(step);
    if (Fault fault = follow(step, now)) return fault;
    countQuietTime(step);
    noteNudging(step, now);
    if (Fault fault = checkHistory(now)) return fault;
    if (Fault fault = checkNothingIsMade()) return fault;
    if (!isSettled()) return std::nullopt;
    if (Fault fault = checkPrints(now.undoable.size())) return fault;
    return checkContent();
}

// ---- what the canvas has

CanvasWatch::Stacks CanvasWatch::stacks() const {
    const auto entriesOf = [](const ToolList& stack) {
        Entries entries;
        for (const ToolRef& entry : stack) {
            entries.push_back({entry, membersOf(entry), {}});
            for (const ToolRef& tool : entries.back().members) {
                const auto& features = tool->undoMgr().featureList();
                entries.back().latest.push_back(features.empty() ? nullptr : features.back());
            }
        }
        return entries;
    };
    const MUndoManager& manager = _canvas.undoManager();
    return {entriesOf(manager.undoTools()), entriesOf(manager.redoTools())};
}

ToolList CanvasWatch::selected() const {
    return _canvas.handingTools() ? _canvas.handingTools()->subTools() : ToolList();
}

// No fingers, nothing typed or turned.
bool CanvasWatch::isQuiet() const {
    const ui::GestureState state = _canvas.rotationGesture().state();
    return _canvas.window()->activeTouches().empty() && !_canvas.curEdittingTextTool() &&
           state != ui::GestureState::Began && state != ui::GestureState::Changed;
}

// Nothing is under way that has no step yet.
bool CanvasWatch::isSettled() const {
    return isQuiet() && !_isNudged && std::ranges::none_of(_canvas.tools(), &MDrawTool::isNewBuild);
}

void CanvasWatch::countQuietTime(const JsonValue& step) {
    const JsonValue* seconds = step.find("wait");
    _quietTime = seconds && isQuiet() ? _quietTime + *seconds->number() : 0;
}

// Nudges become a step once they have paused, or before anything else that does.
void CanvasWatch::noteNudging(const JsonValue& step, const Stacks& now) {
    const JsonValue* call = step.find("call");
    if (now != _before.stacks || _quietTime > 1) _isNudged = false;
    if (call && *call->string() == "nudge") _isNudged = true;
}

// ---- what the step has done

CanvasWatch::Fault CanvasWatch::follow(const JsonValue& step, const Stacks& now) {
    const JsonValue* call = step.find("call");
    const std::string name = call ? *call->string() : "";
    const bool isTakenBack =
        !static_cast<HeadlessEnvironment&>(ui::Environment::current()).takeAlerts().empty();
    if (step.find("picture") || name == "clearTools") {
        forgetPrints(0, now);
        _unrecorded.clear();
        _unknown.clear();
    } else if (isTakenBack) {
        followAlert(now);
    } else if (isForgotten(now)) {
        forgetPrints(0, now);
    } else if (name == "undo") {
        return followUndo(now);
    } else if (name == "redo") {
        return followRedo(now);
    } else if (now.redoable != _before.stacks.redoable ||
               now.undoable.size() != _before.stacks.undoable.size()) {
        // Ink that is broken off is a step that has been undone.
        return followRecords(now, name == "cancelGesture" ? now.redoable.size() : 0);
    }
    return std::nullopt;
}

// Content that grew too large was taken back, and may have been a step more.
void CanvasWatch::followAlert(const Stacks& now) {
    if (!now.redoable.empty()) noteRecorded(now.redoable.back());
    forgetPrints(std::min(_before.stacks.undoable.size(), now.undoable.size()) + 1, now);
}

CanvasWatch::Fault CanvasWatch::followUndo(const Stacks& now) {
    const Stacks& before = _before.stacks;
    if (now == before) {
        if (_before.couldUndo) return "canUndo was true, and undo did nothing";
        return std::nullopt;
    }
    // What is being typed becomes a step only then.
    if (!_before.couldUndo && _canvas.forgiving() && _before.unfinished.empty() && isSettled()) {
        return "canUndo was false, and undo did something";
    }
    const bool isPlain =
        now.undoable.size() + 1 == before.undoable.size() &&
        now.redoable.size() == before.redoable.size() + 1 &&
        std::equal(before.redoable.begin(), before.redoable.end(), now.redoable.begin());
    if (!isPlain) return followRecords(now, 1);
    noteRecorded(now.redoable.back());
    return std::nullopt;
}

CanvasWatch::Fault CanvasWatch::followRedo(const Stacks& now) {
    const Stacks& before = _before.stacks;
    if (now == before) {
        if (!before.redoable.empty()) return "there was something to redo, and nothing was";
        return std::nullopt;
    }
    const bool isPlain = !before.redoable.empty() &&
                         now.redoable.size() + 1 == before.redoable.size() &&
                         now.undoable.back() == before.redoable.back();
    if (!isPlain) return followRecords(now, 0);
    noteRecorded(now.undoable.back());
    return std::nullopt;
}

// Records come on top of what there was, empty what was to be redone, and may then be undone.
CanvasWatch::Fault CanvasWatch::followRecords(const Stacks& now, std::size_t undone) {
    const Stacks& before = _before.stacks;
    const bool isRecorded = now.redoable.size() == undone && now.height() > before.undoable.size();
    if (!isRecorded && !followDeletion(now)) {
        return "the steps to undo and redo were " + std::to_string(before.undoable.size()) +
               " and " + std::to_string(before.redoable.size()) + " and are " +
               std::to_string(now.undoable.size()) + " and " + std::to_string(now.redoable.size());
    }
    for (std::size_t step = before.undoable.size(); step < now.undoable.size(); ++step)
        noteRecorded(now.undoable[step]);
    if (undone > 0) noteRecorded(now.redoable.back());
    forgetPrints(before.undoable.size() + 1, now);
    return std::nullopt;
}

// By itself a deletion leaves what there is to redo.
bool CanvasWatch::followDeletion(const Stacks& now) {
    const auto isGone = [this](const ToolRef& tool) { return !contains(_canvas.tools(), tool); };
    const bool isDeletion = !_canvas.forgiving() && now.redoable == _before.stacks.redoable &&
                            now.undoable.size() == _before.stacks.undoable.size() + 1 &&
                            std::ranges::all_of(now.undoable.back().members, isGone);
    if (!isDeletion) return false;
    for (const Entry& entry : now.redoable) {
        for (const ToolRef& tool : entry.members)
            if (contains(now.undoable.back().members, tool)) _unknown.insert(tool);
    }
    return true;
}

// By itself the canvas sweeps away, with all their steps, tools that were never finished or that
// are not valid any more.
bool CanvasWatch::isForgotten(const Stacks& now) const {
    const auto isSwept = [this](const ToolRef& tool) { return !contains(_canvas.tools(), tool); };
    if (_canvas.forgiving() || !isAnyOf(_before.unfinished, isSwept)) return false;
    return std::ranges::any_of(_before.stacks.undoable, [&](const Entry& entry) {
        const auto isIt = [&](const Entry& other) { return other.entry == entry.entry; };
        return std::ranges::none_of(now.undoable, isIt) && std::ranges::none_of(now.redoable, isIt);
    });
}

void CanvasWatch::forgetPrints(std::size_t from, const Stacks& now) {
    _prints.resize(from);
    _prints.resize(now.height() + 1);
}

// A second finger, a call in the middle of a drag and a rotation that is refused or broken off
// leave what was dragged where it is; letting go of a tool may bring it within its bounds, also
// where it is selected anew.
void CanvasWatch::noteUnrecorded(const JsonValue& step) {
    const bool isTouch = step.find("touch");
    const bool isSeveral = _before.isSeveralFingers || _canvas.window()->activeTouches().size() > 1;
    const bool breaksOff =
        step.find("gesture") || (isTouch && isSeveral) || (_before.isFingerDown && !isTouch);
    const ToolList held = selected();
    const JsonValue* call = step.find("call");
    const bool letsGoOfAll =
        call && (*call->string() == "selectTools" || *call->string() == "finalizeCurrentDrawing");
    if (breaksOff) _unrecorded.insert(held.begin(), held.end());
    for (const ToolRef& tool : _before.selected) {
        const bool isLetGo = letsGoOfAll || !contains(held, tool);
        const auto print = isLetGo ? printOf(printsOf(_canvas), tool) : std::nullopt;
        const bool isChanged = print && print != printOf(_before.prints, tool);
        if (breaksOff || isChanged) _unrecorded.insert(tool);
    }
}

void CanvasWatch::noteRecorded(const Entry& entry) {
    for (const ToolRef& tool : entry.members)
        _unrecorded.erase(tool);
}

// ---- what must be so after every step

CanvasWatch::Fault CanvasWatch::checkNothingIsMade() const {
    // Fingers, texts and freehand drawings have had the time to come to rest.
    if (!isQuiet() || _quietTime < 3) return std::nullopt;
    for (const ToolRef& tool : _canvas.tools())
        if (tool->isNewBuild()) return tool->name() + " is still being made";
    if (_canvas.handingTool()) {
        return "the canvas still holds " + _canvas.handingTool()->name() + " as being made";
    }
    return std::nullopt;
}

CanvasWatch::Fault CanvasWatch::checkHistory(const Stacks& now) const {
    const std::pair known{_canvas.canUndo(), _canvas.canRedo()};
    if (_listener->told != known) return "the owner was told otherwise of canUndo and canRedo";
    const std::pair held{!now.undoable.empty(), !now.redoable.empty()};
    if (isSettled() && known != held) return "canUndo and canRedo do not say what the stacks hold";
    return std::nullopt;
}

CanvasWatch::Fault CanvasWatch::checkPrints(std::size_t height) {
    const ToolPrints now = printsOf(_canvas, _unrecorded);
    std::optional<ToolPrints>& then = _prints[height];
    if (!then) then = now;
    const auto difference = differenceOf(*then, now, _unknown);
    if (difference) {
        return "with " + std::to_string(height) +
               " steps done there was another picture: " + *difference;
    }
    for (ToolPrint& each : *then)
        if (!each.print) each.print = printOf(now, each.tool);
    return std::nullopt;
}

// Rotations are kept in single precision, so an extent may lie a little beyond. Drawing fits a
// text's box and font to each other after the content's measuring.
CanvasWatch::Fault CanvasWatch::checkContent() const {
    if (_canvas.clipsToPicture() || _canvas.pictureCut().crop) return std::nullopt;
    const gfx::Rect room = _canvas.ctxRect().inset(-0.001, -0.001);
    for (const ToolRef& tool : _canvas.tools()) {
        // Whatever lies below the items ends with the content.
        const bool isItem = tool->toolClass().layer() == ToolLayer::Items;
        if (!isItem || tool->toolClass().isKindOf(MDrawText::Class())) continue;
        if (_unrecorded.contains(tool) || room.contains(tool->frameIncludeLineWidth())) continue;
        return tool->name() + " reaches beyond ctxRect";
    }
    return std::nullopt;
}

}  // namespace kalim::test
