#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/tool/MDrawTool.h"
#include "kalimkit/tool/ToolPlaces.h"

namespace kalim {

// What the owner of the tool list hears after every change of the stacks.
class KALIM_API MUndoManagerDelegate {
public:
    enum State { UndoneOrRedone = 0, AddedOrChanged = 1, Removed = 2 };

    // What was done to the stacks. Recorded and Removed have put the entry onto the undo stack;
    // Forgotten has left no record, and Reset has no entry. Exchanged is recorded, too: of its two
    // members the second has taken the place of the first.
    enum class Step { Recorded, Removed, Undone, Redone, Forgotten, Reset, Exchanged };

    virtual ~MUndoManagerDelegate() = default;
    // Comes before the two below.
    virtual void didStep(Step /*step*/, const ToolRef& /*entry*/) {}
    virtual void canUndoStateChangedCanRedo(bool /*canUndo*/, bool /*canRedo*/) {}
    // The tool is null after a reset.
    virtual void toolsStateChangedState(const ToolRef& /*tool*/, State /*state*/) {}
};

// The tools that an entry of the stacks stands for: a group's members, or the one tool.
KALIM_API ToolList membersOf(const ToolRef& entry);

// The canvas's undo: two stacks of touched tools (not of states or commands). An entry says only
// that this tool was touched; what undoing it means is decided at undo time, from whether the tool
// is on the canvas and whether its own history can step. The stacks have no limit.
class KALIM_API MUndoManager {
public:
    using State = MUndoManagerDelegate::State;

    // The list is shared with the canvas, not copied.
    explicit MUndoManager(std::shared_ptr<ToolList> tools) : _tools(std::move(tools)) {}
    MUndoManager(const MUndoManager&) = delete;
    MUndoManager& operator=(const MUndoManager&) = delete;

    bool canUndo() const { return !_undoTools.empty(); }
    bool canRedo() const { return !_redoTools.empty(); }

    // Under forgiving rules a change that changed nothing has no record, a deletion empties the
    // redo stack, and what comes back lies where it lay in the order.
    void setRules(const ToolRules& rules) { _rules = rules; }

    // Puts a tool on the canvas without a record, when its creation starts.
    void addTool(const ToolRef& tool);
    // Records an addition or a change; a group is recorded as a copy of itself. Tools that are not
    // on the canvas, or not valid, are ignored. Empties the redo stack.
    void addToolSuccess(const ToolRef& tool);
    // Takes a tool, or a group's members, off the canvas and records it. The redo stack
    // deliberately stays, except under forgiving rules.
    void removeTool(const ToolRef& tool);
    // A tool takes the place of another on the canvas, without a record.
    void exchangeTool(const ToolRef& leaving, const ToolRef& coming);
    // Records that: the group is of the two, in this order. Undoing it exchanges them back.
    void addExchange(const ToolRef& group);
    // Forgets a tool everywhere without a record.
    void removeToolFromAllSystem(const ToolRef& tool);
    // Takes a tool out of every recorded group and drops the groups that this empties.
    void removeInvaildMutableToolsByTool(const ToolRef& tool);

    // Whether there was anything to step.
    bool undo();
    bool redo();
    // Empties both stacks and the histories of the tools on the canvas.
    void reset();

    // How often the stacks have changed: equal counts are the same work.
    std::uint64_t changeCount() const { return _changeCount; }
    const ToolList& undoTools() const { return _undoTools; }
    const ToolList& redoTools() const { return _redoTools; }
    void setDelegate(std::weak_ptr<MUndoManagerDelegate> delegate) {
        _delegate = std::move(delegate);
    }

private:
    // What a step takes off the canvas and puts back.
    struct Crossing {
        ToolList leaving;
        ToolList returning;
    };
    bool undoTool(const ToolRef& tool, Crossing& crossing) const;
    bool redoTool(const ToolRef& tool, Crossing& crossing) const;
    void cross(const Crossing& crossing);
    bool isOnCanvas(const ToolRef& tool) const;
    void cutRedo();
    void report(MUndoManagerDelegate::Step step, const ToolRef& tool);

    std::shared_ptr<ToolList> _tools;
    ToolList _undoTools;
    ToolList _redoTools;
    ToolRules _rules;
    ToolPlaces _places;
    std::uint64_t _changeCount = 0;
    std::weak_ptr<MUndoManagerDelegate> _delegate;
};

}  // namespace kalim
