#pragma once

#include <memory>

#include "kalimkit/canvas/MDrawMutableSelect.h"
#include "kalimkit/canvas/RotationUnderWay.h"
#include "kalimkit/canvas/TapMemory.h"
#include "kalimkit/ui/gesture/GestureRecognizer.h"

namespace kalim {

class CanvasArrangement;
class CanvasFinger;
class CanvasFreehand;
class CanvasHome;
class CanvasRestyling;
class CanvasTools;

// The selection of a canvas: which tools are in it, what the owner hears of it, and how two fingers
// turn it.
class CanvasSelection {
public:
    // What of the canvas it uses.
    struct Canvas {
        CanvasHome& home;
        CanvasTools& tools;
        CanvasFinger& finger;
        const CanvasFreehand& freehand;
        CanvasArrangement& arrangement;
        CanvasRestyling& restyling;
    };
    explicit CanvasSelection(const Canvas& canvas) : _canvas(canvas) {}

    // Null when nothing is selected.
    const std::shared_ptr<MDrawMutableSelect>& group() const { return _group; }
    bool isValid() const { return _group && _group->isValidTools(); }
    bool contains(const ToolRef& tool) const { return _group && _group->containTool(tool); }
    // Whether the tool may become a part of it.
    bool isPickable(const MDrawTool& tool) const;

    // Those that belong together with one of them, too, in drawing order.
    ToolList withGroups(const ToolList& tools) const;
    // Whether it may look different at every frame, and so is drawn over everything. Where a
    // pointer has made it, it otherwise lies where it lies in the drawing order, and only its
    // handles are drawn over everything.
    bool isLive() const;
    // Nothing of it is moved by fingers.
    bool isLocked() const;
    // Those of it that may be changed: itself, as far as it is not locked. Null for none.
    std::shared_ptr<MDrawMutableSelect> changeable() const;

    // ---- choosing
    // See MDrawView::selectTools(). Locked tools may be among them.
    void select(const ToolList& tools);
    void clear();
    // As by a finger at the point; a tool that is in it leaves it.
    void add(const ToolRef& tool, gfx::Point p);
    // The same on a forgiving canvas instead of all others, and with its group.
    void pick(const ToolRef& tool, gfx::Point p);
    // It becomes a part of the selection, or leaves it, alone or with its group.
    void toggle(const ToolRef& tool, bool withGroup);
    // Has its handles keep their size on the screen, and stay in sight.
    void readyForScreen() const;
    void remove(const ToolRef& tool);
    // Members that have left the canvas leave it.
    void dropAbsent();
    // Members have another look from now on: a step, unless somebody is still choosing it.
    void recordChange(const ToolRef& members);
    // What fingers are doing with it becomes a step of its own.
    void endStepUnderWay();
    // What keys have moved is a step of its own, before something else is done to it.
    void endNudging();

    // ---- taps on a text of it
    bool isSecondTap(const ToolRef& tool) const;
    void forgetTap() { _taps.forget(); }

    // ---- two fingers
    // `mayTurn`: no other gesture has the fingers.
    void turn(ui::GestureState state, double angle, bool mayTurn);
    bool holdsFingers() const { return _rotation.holdsFingers; }

private:
    bool isReachable(const MDrawTool& tool) const;
    std::shared_ptr<MDrawMutableSelect> makeGroup() const;
    void drop();
    void notify();
    void endRotationUnderWay();
    void endRotation(double angle);

    Canvas _canvas;
    std::shared_ptr<MDrawMutableSelect> _group;
    RotationUnderWay _rotation;
    TapMemory _taps;
};

}  // namespace kalim
