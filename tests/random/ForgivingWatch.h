#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/random/StepWatch.h"

namespace kalim::test {

// Follows the steps of a scenario on a forgiving canvas. Nothing there changes without a step, and
// every step is undone and redone to the letter: whenever the undo stack is as high as it was once,
// and nothing was recorded in between, the canvas must print what it printed then.
class ForgivingWatch : public StepWatch {
public:
    // Takes the place of the canvas's delegate.
    explicit ForgivingWatch(MDrawView& canvas);

    void willPlay() override;
    Fault didPlay(const JsonValue& step) override;
    bool comesBack(const ToolRef&) const override { return true; }

private:
    // What the canvas has told of its history.
    struct Listener;
    // An entry of a stack, with the latest snapshots of its tools: the same entry may be recorded
    // again.
    struct Entry {
        ToolRef entry;
        std::vector<FeatureRef> latest;
        bool operator==(const Entry&) const = default;
    };
    struct Stacks {
        std::vector<Entry> undoable;
        std::vector<Entry> redoable;
        bool operator==(const Stacks&) const = default;
    };

    Stacks stacks() const;
    bool isSettled() const;
    std::string print() const;
    Fault follow(const JsonValue& step, const Stacks& now);
    Fault followUndo(const Stacks& now);
    Fault followRedo(const Stacks& now);
    Fault followRecords(const Stacks& now, std::size_t undone);
    Fault checkHistory(const Stacks& now) const;
    Fault checkPrint(std::size_t height);

    std::shared_ptr<Listener> _listener;
    Stacks _before;
    bool _couldUndo = false;
    // By the height of the undo stack; nothing where the canvas was not at rest at that height.
    std::vector<std::optional<std::string>> _prints;
};

}  // namespace kalim::test
