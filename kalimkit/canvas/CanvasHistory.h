#pragma once

#include "kalimkit/canvas/ToolOrderStep.h"
#include "kalimkit/tool/MUndoManager.h"

namespace kalim {

class CanvasArrangement;
class CanvasContent;
class CanvasFinger;
class CanvasFreehand;
class CanvasHome;
class CanvasJournal;
class CanvasRestyling;
class CanvasScreen;
class CanvasSelection;
class CanvasTools;
class CanvasTyping;

// The steps of a canvas: what comes, goes, and is undone. It sees to it that everybody else knows.
class CanvasHistory : public MUndoManagerDelegate {
public:
    // What of the canvas it uses.
    struct Canvas {
        CanvasHome& home;
        CanvasTools& tools;
        CanvasContent& content;
        CanvasScreen& screen;
        CanvasSelection& selection;
        CanvasTyping& typing;
        CanvasFreehand& freehand;
        CanvasFinger& finger;
        CanvasJournal& journal;
        CanvasArrangement& arrangement;
        CanvasRestyling& restyling;
    };
    explicit CanvasHistory(const Canvas& canvas) : _canvas(canvas) {}
    // Once the view can be held.
    void listen();

    // Whether anything has changed since the last export.
    bool isDirty() const { return _isDirty; }
    void noteExported() { _isDirty = false; }

    // ---- steps; see the operations of MDrawView
    bool canUndo() const;
    bool canRedo() const;
    bool undo();
    bool redo();
    // What is being typed, drawn, dragged or selected comes to its end, with its step.
    void endUnderWay();
    bool add(const ToolRef& tool);
    void removeSelected();
    // Lays tools of the canvas at other places of the drawing order; whether that is a step.
    bool reorder(ToolPlacements placements);
    // It leaves no record.
    void clear();
    // Takes tools that have been finished elsewhere in the place of all there are; no steps.
    void open(ToolList tools);
    void removeInvalid();
    // The owner hears what can be undone and redone.
    void tell();

    // ---- from the undo manager
    void didStep(Step step, const ToolRef& entry) override;
    void canUndoStateChangedCanRedo(bool canUndo, bool canRedo) override;
    void toolsStateChangedState(const ToolRef& tool, State state) override;

private:
    bool step(bool (MUndoManager::*take)());
    bool stepUnselected(bool (MUndoManager::*take)());
    // Something has been done that has no record yet.
    bool isWaiting() const;
    void lay(const ToolPlacements& placements);

    Canvas _canvas;
    bool _isDirty = false;
};

}  // namespace kalim
