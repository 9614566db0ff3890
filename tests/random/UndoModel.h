#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "kalimkit/tool/MDrawTool.h"

namespace kalim::test {

// The undo of two levels as it is meant to be, to hold the canvas against: every tool has a list of
// states, and the canvas two stacks that say which tools were touched. It is told what happened and
// knows nothing of how the canvas does it; tools serve as names, and of their snapshots only copies
// are kept.
class UndoModel {
public:
    // A tool, or the members of a group.
    struct Entry {
        ToolList members;
        bool isGroup = false;
        bool operator==(const Entry&) const = default;
    };
    struct History {
        std::vector<Feature> states;
        // Of the state in force; nothing while there is none.
        std::optional<std::size_t> place;
    };
    // What a tool looks like at the moment of a record; nothing for a tool that is not valid.
    using Look = std::function<std::optional<Feature>(MDrawTool&)>;

    // ---- what happened
    void begin(const ToolRef& tool) { tools.push_back(tool); }
    void record(const Entry& entry, const Look& look);
    void remove(const Entry& entry);
    void forget(const ToolRef& tool);
    bool undo();
    bool redo();
    void reset();

    // The state in force; null when there is none.
    const Feature* current(const ToolRef& tool) const;
    bool isOnCanvas(const ToolRef& tool) const;

    ToolList tools;
    std::vector<Entry> undoStack;
    std::vector<Entry> redoStack;
    std::map<ToolRef, History> histories;
    // Something was deleted while there was something to redo: what is redone then may differ.
    bool hasDeletedAfterUndo = false;

private:
    void cut(const ToolRef& tool);
};

// The key whose values differ; nothing when two snapshots of one tool say the same. Properties that
// come back in single precision may differ by that much, and hit tests may put the corners of a box
// in order.
std::optional<std::string> differingKey(const MDrawTool& tool, const Feature& expected,
                                        const Feature& actual);

}  // namespace kalim::test
