#pragma once

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/json/JsonValue.h"
#include "tests/random/ToolPrints.h"

namespace kalim::test {

// Follows the steps of a scenario and tells what the canvas got wrong. Nothing changes without a
// step, and every step is undone and redone to the letter: whenever the undo stack is as high as it
// was once, and nothing was recorded in between, the tools must print what they printed then. What
// a canvas that is not forgiving leaves without a step is exempt.
class CanvasWatch {
public:
    // What is wrong, one sentence.
    using Fault = std::optional<std::string>;

    // The canvas must be new, and outlive the watch, which takes the place of its delegate.
    explicit CanvasWatch(MDrawView& canvas);
    CanvasWatch(const CanvasWatch&) = delete;
    CanvasWatch& operator=(const CanvasWatch&) = delete;

    // Around every step.
    void willPlay();
    Fault didPlay(const JsonValue& step);

private:
    // What the canvas has told of its history.
    struct Listener;
    // An entry of a stack, with the latest snapshots of its tools: the same entry may be recorded
    // again.
    struct Entry {
        ToolRef entry;
        ToolList members;
        std::vector<FeatureRef> latest;
        bool operator==(const Entry&) const = default;
    };
    using Entries = std::vector<Entry>;
    struct Stacks {
        Entries undoable;
        Entries redoable;
        std::size_t height() const { return undoable.size() + redoable.size(); }
        bool operator==(const Stacks&) const = default;
    };
    // What the canvas had before the step.
    struct Before {
        Stacks stacks;
        bool couldUndo = false;
        bool isSeveralFingers = false;
        bool isFingerDown = false;
        // Made or typed just then, or not valid.
        ToolList unfinished;
        ToolList selected;
        ToolPrints prints;
    };

    Stacks stacks() const;
    ToolList selected() const;
    bool isQuiet() const;
    bool isSettled() const;
    void countQuietTime(const JsonValue& step);
    void noteNudging(const JsonValue& step, const Stacks& now);

    // ---- what the step has done
    Fault follow(const JsonValue& step, const Stacks& now);
    void followAlert(const Stacks& now);
    Fault followUndo(const Stacks& now);
    Fault followRedo(const Stacks& now);
    Fault followRecords(const Stacks& now, std::size_t undone);
    bool followDeletion(const Stacks& now);
    bool isForgotten(const Stacks& now) const;
    void forgetPrints(std::size_t from, const Stacks& now);
    void noteUnrecorded(const JsonValue& step);
    void noteRecorded(const Entry& entry);

    // ---- what must be so after it
    Fault checkNothingIsMade() const;
    Fault checkHistory(const Stacks& now) const;
    Fault checkPrints(std::size_t height);
    Fault checkContent() const;

    MDrawView& _canvas;
    std::shared_ptr<Listener> _listener;
    Before _before;
    // Seconds.
    double _quietTime = 0;
    // And have no step yet.
    bool _isNudged = false;
    // By the height of the undo stack; nothing where the canvas was not at rest at that height.
    std::vector<std::optional<ToolPrints>> _prints;
    // Moved by a gesture that broke off without a record; they may differ from their history.
    std::set<ToolRef> _unrecorded;
    // Deleted while they had something to redo: what that does then is not known.
    std::set<ToolRef> _unknown;
};

}  // namespace kalim::test
