#include "tests/random/ForgivingWatch.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "kalimkit/canvas/MDrawMutableSelect.h"
#include "kalimkit/host/headless/CanvasPrint.h"
#include "kalimkit/host/headless/JsonText.h"
#include "kalimkit/shapes/MDrawRect.h"
#include "kalimkit/shapes/MDrawText.h"
#include "kalimkit/tool/MUndoManager.h"
#include "tests/scenarios/JsonMatch.h"

namespace kalim::test {

namespace {

ToolList membersOf(const ToolRef& entry) {
    if (!entry->mutabaleToolObjType()) return {entry};
    return static_cast<const MDrawMutableSelect&>(*entry).subTools();
}

// What is in no snapshot: how a finger holds the tool, and what is measured.
bool isKept(const MDrawTool& tool, std::string_view key) {
    for (const char* other : {"selected", "finalized", "moveDirection", "isNewBuild",
                              "lastRotateAngle", "measureText"}) {
        if (key == other) return false;
    }
    // Hit tests may put the corners of a box in order; its frame says the same.
    const bool isCorner = key == "startPoint" || key == "endPoint";
    return !isCorner || !tool.toolClass().isKindOf(MDrawRect::Class());
}

}  // namespace

struct ForgivingWatch::Listener : MDrawViewDelegate {
    void canUndoStateChangedCanRedo(bool canUndo, bool canRedo) override {
        told = {canUndo, canRedo};
    }
    std::pair<bool, bool> told;
};

ForgivingWatch::ForgivingWatch(MDrawView& canvas)
    : StepWatch(canvas), _listener(std::make_shared<Listener>()), _prints{print()} {
    canvas.setDrawViewdelegate(_listener);
}

void ForgivingWatch::willPlay() {
    _before = stacks();
    _couldUndo = _canvas.canUndo();
}

ForgivingWatch::Fault ForgivingWatch::didPlay(const JsonValue& step) {
    const Stacks now = stacks();
    if (Fault fault = follow(step, now)) return fault;
    countQuietTime(step);
    if (Fault fault = checkHistory(now)) return fault;
    if (Fault fault = checkNothingIsMade()) return fault;
    if (!isSettled()) return std::nullopt;
    if (Fault fault = checkPrint(now.undoable.size())) return fault;
    return checkContent({});
}

ForgivingWatch::Stacks ForgivingWatch::stacks() const {
    const auto entriesOf = [](const ToolList& stack) {
        std::vector<Entry> entries;
        for (const ToolRef& entry : stack) {
            entries.push_back({entry, {}});
            for (const ToolRef& tool : membersOf(entry)) {
                const auto& features = tool->undoMgr().featureList();
                entries.back().latest.push_back(features.empty() ? nullptr : features.back());
            }
        }
        return entries;
    };
    const MUndoManager& manager = _canvas.undoManager();
    return {entriesOf(manager.undoTools()), entriesOf(manager.redoTools())};
}

// Nothing is under way that has no step yet.
bool ForgivingWatch::isSettled() const {
    return isQuiet() && std::ranges::none_of(_canvas.tools(), &MDrawTool::isNewBuild);
}

std::string ForgivingWatch::print() const {
    JsonValue described = describeCanvas(_canvas);
    JsonValue tools = *described.find("tools");
    for (std::size_t index = 0; index < tools.array()->size(); ++index) {
        std::erase_if(*(*tools.array())[index].object(), [&](const JsonValue::Member& member) {
            return !isKept(*_canvas.tools()[index], member.first);
        });
    }
    return dumpJson(tools);
}

// ---- what the step has done

ForgivingWatch::Fault ForgivingWatch::follow(const JsonValue& step, const Stacks& now) {
    const JsonValue* call = step.find("call");
    const std::string name = call ? *call->string() : "";
    const bool isEmptied = step.find("picture") || name == "clearTools";
    const bool isTakenBack = takeAlerts() > 0;
    if (isEmptied || isTakenBack) {
        // Content that grew too large was taken back, and may have been a step more.
        const std::size_t kept =
            isEmptied ? 0 : std::min(_before.undoable.size(), now.undoable.size()) + 1;
        _prints.resize(kept);
        _prints.resize(now.undoable.size() + now.redoable.size() + 1);
        return std::nullopt;
    }
    if (name == "undo") return followUndo(now);
    if (name == "redo") return followRedo(now);
    return now.redoable == _before.redoable && now.undoable.size() == _before.undoable.size()
               ? std::nullopt
               : followRecords(now, 0);
}

ForgivingWatch::Fault ForgivingWatch::followUndo(const Stacks& now) {
    if (now == _before) {
        if (_couldUndo) return "canUndo was true, and undo did nothing";
        return std::nullopt;
    }
    if (!_couldUndo && isSettled()) return "canUndo was false, and undo did something";
    const std::vector<Entry>& redoable = _before.redoable;
    const bool isPlain = now.undoable.size() + 1 == _before.undoable.size() &&
                         now.redoable.size() == redoable.size() + 1 &&
                         std::equal(redoable.begin(), redoable.end(), now.redoable.begin());
    return isPlain ? std::nullopt : followRecords(now, 1);
}

ForgivingWatch::Fault ForgivingWatch::followRedo(const Stacks& now) {
    if (now == _before) {
        if (!_before.redoable.empty()) return "there was something to redo, and nothing was";
        return std::nullopt;
    }
    const bool isPlain = !_before.redoable.empty() &&
                         now.redoable.size() + 1 == _before.redoable.size() &&
                         now.undoable.back() == _before.redoable.back();
    return isPlain ? std::nullopt : followRecords(now, 0);
}

// Records come on top of what there was, empty what was to be redone, and may then be undone.
ForgivingWatch::Fault ForgivingWatch::followRecords(const Stacks& now, std::size_t undone) {
    const std::size_t before = _before.undoable.size();
    const std::size_t height = now.undoable.size() + now.redoable.size();
    if (now.redoable.size() != undone || height <= before) {
        return "the steps to undo and redo were " + std::to_string(before) + " and " +
               std::to_string(_before.redoable.size()) + " and are " +
               std::to_string(now.undoable.size()) + " and " + std::to_string(now.redoable.size());
    }
    _prints.resize(before + 1);
    _prints.resize(height + 1);
    return std::nullopt;
}

// ---- what must be so after every step

ForgivingWatch::Fault ForgivingWatch::checkHistory(const Stacks& now) const {
    const std::pair known{_canvas.canUndo(), _canvas.canRedo()};
    if (_listener->told != known) return "the owner was told otherwise of canUndo and canRedo";
    const std::pair held{!now.undoable.empty(), !now.redoable.empty()};
    if (isSettled() && known != held) return "canUndo and canRedo do not say what the stacks hold";
    return std::nullopt;
}

ForgivingWatch::Fault ForgivingWatch::checkPrint(std::size_t height) {
    const std::string now = print();
    std::optional<std::string>& then = _prints[height];
    if (!then) then = now;
    const std::string difference = differenceOfJson(*then, now);
    if (difference.empty()) return std::nullopt;
    return "with " + std::to_string(height) +
           " steps done there was another picture: " + difference;
}

}  // namespace kalim::test
