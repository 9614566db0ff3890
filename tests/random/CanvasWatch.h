#pragma once

#include <optional>
#include <set>
#include <string>

#include "kalimkit/canvas/view/MDrawView.h"
#include "kalimkit/host/headless/JsonValue.h"
#include "tests/random/UndoModel.h"

namespace kalim::test {

// Follows the steps of a scenario and tells what the canvas got wrong. What calls do it works out
// beforehand; of fingers, keys and time it lets the canvas say which tool came, went or was
// recorded, and holds all that must follow from that against the model of the undo.
class CanvasWatch {
public:
    // The canvas must be new, and outlive the watch.
    explicit CanvasWatch(MDrawView& canvas) : _canvas(canvas) {}

    // Around every step. The answer is what is wrong, one sentence.
    void willPlay();
    std::optional<std::string> didPlay(const JsonValue& step);

    const UndoModel& model() const { return _model; }
    // Moved by a gesture that broke off without a record; they may differ from their history.
    const std::set<ToolRef>& unrecorded() const { return _unrecorded; }
    // Fingers, texts and freehand drawings have had the time to come to rest.
    bool isAtRest() const { return isQuiet() && _quietTime >= 3; }
    // Content was taken back because it grew too large.
    bool hasTakenBack() const { return _hasTakenBack; }

private:
    using Fault = std::optional<std::string>;

    // What the canvas had before the step.
    struct Before {
        ToolList tools;
        ToolList invalid;
        std::set<ToolRef> created;
        std::optional<UndoModel::Entry> selection;
        // What the selected tools look like, in that order.
        std::vector<Feature> looks;
        bool isSeveralFingers = false;
        bool isFingerDown = false;
    };

    void follow(const JsonValue& step, Fault& fault);
    bool followCall(const std::string& name, const JsonValue& step);
    void followHistory(bool isUndo);
    void followUnfinished();
    bool changesSelection(const std::string& name, const JsonValue::Array& arguments) const;
    void followEndOfRotation(std::size_t recordsToCome);
    void observe(Fault& fault);
    Fault observeVanished();
    Fault observeRecord(const UndoModel::Entry& entry);
    void record(const UndoModel::Entry& entry);
    void takeBack();

    Fault check() const;
    Fault checkStacks() const;
    Fault checkHistory(const ToolRef& tool) const;
    Fault checkResting(const ToolRef& tool) const;
    Fault checkContent() const;
    bool isQuiet() const;
    void noteUnrecorded(const JsonValue& step);
    void noteLetGo();

    MDrawView& _canvas;
    UndoModel _model;
    Before _before;
    std::size_t _alerts = 0;
    bool _hasTakenBack = false;
    // Seconds.
    double _quietTime = 0;
    std::set<ToolRef> _unrecorded;
};

}  // namespace kalim::test
