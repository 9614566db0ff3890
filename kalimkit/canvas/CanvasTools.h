#pragma once

#include <cstddef>
#include <memory>
#include <utility>

#include "kalimkit/canvas/CountedTools.h"
#include "kalimkit/canvas/NewTools.h"
#include "kalimkit/canvas/ToolOrderStep.h"
#include "kalimkit/tool/MDrawTool.h"
#include "kalimkit/tool/MUndoManager.h"

namespace kalim {

struct CanvasShown;

// The tools on a canvas in drawing order, their undo, and what tools get that are made from now on.
class CanvasTools {
public:
    explicit CanvasTools(const CanvasShown& shown);

    const ToolList& list() const { return *_list; }
    bool contains(const ToolRef& tool) const;
    MUndoManager& undoManager() { return _undoManager; }
    const MUndoManager& undoManager() const { return _undoManager; }
    NewTools& pen() { return _pen; }
    const NewTools& pen() const { return _pen; }

    bool forgiving() const { return _pen.rules.forgiving; }
    void setForgiving(bool forgiving);
    void setFineHandles(bool fine);
    // Readies a tool that is made from now on, on the picture as it is turned at present.
    void prepare(MDrawTool& tool) const;
    int quarterTurns() const;
    // Every tool gets what all of them share.
    void refreshShared();

    // ---- on the canvas and off it; what the undo manager says of each holds here, too
    void add(const ToolRef& tool);
    void record(const ToolRef& tool) { _undoManager.addToolSuccess(tool); }
    void remove(const ToolRef& tool) { _undoManager.removeTool(tool); }
    // Takes the tool off the canvas without a record.
    void forget(const ToolRef& tool) { _undoManager.removeToolFromAllSystem(tool); }
    void exchange(const ToolRef& leaving, const ToolRef& coming) {
        _undoManager.exchangeTool(leaving, coming);
    }
    void recordExchange(const ToolRef& left, const ToolRef& came);
    // The same for one that was being created.
    void discard(const ToolRef& tool);
    // All of them, with their records.
    void clear();
    // Lays tools onto the empty canvas, without a record.
    void open(ToolList tools);
    // Counts those that count, see CountedTools.
    ToolList recount() { return _counted.recount(*_list); }

    // Lays a tool below those from a place on, without a record.
    void insert(const ToolRef& tool, std::size_t place) {
        _list->insert(_list->begin() + static_cast<std::ptrdiff_t>(place), tool);
    }

    // Takes tools out of the drawing order and lays each at its place, from the lowest.
    void lay(const ToolPlacements& placements);

    // ---- by touch
    // The topmost finished tool under a canvas point; null for none.
    ToolRef topmostAt(gfx::Point p) const;
    // View points per canvas point for what keeps its size on the screen.
    double touchScale() const;
    // Has what a finger can grasp keep its size on the screen.
    void scaleForScreen(MDrawTool& tool) const;

private:
    void rulesChanged();

    const CanvasShown& _shown;
    // The undo manager shares it.
    std::shared_ptr<ToolList> _list;
    MUndoManager _undoManager;
    CountedTools _counted;
    NewTools _pen;
    bool _wantsFineHandles = false;
};

}  // namespace kalim
