#pragma once

#include <optional>
#include <set>
#include <string>

#include "tests/random/StepWatch.h"
#include "tests/random/UndoModel.h"

namespace kalim::test {

// Follows the steps of a scenario on a canvas that is not forgiving. What calls do it works out
// beforehand; of fingers, keys and time it lets the canvas say which tool came, went or was
// recorded, and holds all that must follow from that against the model of the undo.
class CanvasWatch : public StepWatch {
public:
    explicit CanvasWatch(MDrawView& canvas) : StepWatch(canvas) {}

    void willPlay() override;
    Fault didPlay(const JsonValue& step) override;
    bool comesBack(const ToolRef& tool) const override;

private:
    // What the canvas had before the step.
    struct Before {
        ToolList tools;
        ToolList invalid;
        // Of both stacks.
        std::set<ToolRef> entries;
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
    void noteUnrecorded(const JsonValue& step);
    void noteLetGo();

    UndoModel _model;
    Before _before;
    std::size_t _alerts = 0;
    // An undo or redo: what it recorded before it stepped may look otherwise by now.
    bool _stepsHistory = false;
    // Content was taken back because it grew too large.
    bool _hasTakenBack = false;
    // Moved by a gesture that broke off without a record; they may differ from their history.
    std::set<ToolRef> _unrecorded;
};

}  // namespace kalim::test
