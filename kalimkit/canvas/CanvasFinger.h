#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "kalimkit/canvas/FingerState.h"
#include "kalimkit/canvas/MDrawMutableSelect.h"
#include "kalimkit/canvas/TouchMeaning.h"
#include "kalimkit/ui/view/Touch.h"

namespace kalim {

class CanvasArrangement;
class CanvasFreehand;
class CanvasGrip;
class CanvasHistory;
class CanvasHome;
class CanvasScreen;
class CanvasSelection;
class CanvasTools;
class CanvasTyping;

// The one finger on a canvas: it taps, makes a tool, or drags the selection. Points are canvas
// points.
class CanvasFinger {
public:
    // What of the canvas it uses.
    struct Canvas {
        CanvasHome& home;
        CanvasTools& tools;
        CanvasScreen& screen;
        CanvasSelection& selection;
        CanvasTyping& typing;
        CanvasFreehand& freehand;
        CanvasHistory& history;
        CanvasGrip& grip;
        CanvasArrangement& arrangement;
    };
    explicit CanvasFinger(const Canvas& canvas) : _canvas(canvas) {}

    FingerState state() const { return _state; }
    // Whether the finger has gone farther than a tap; one that another finger has joined, too,
    // until the next comes down.
    bool hasMoved() const { return _hasMoved; }

    // ---- touches
    // Whether the view is still touched once the owner has been told.
    bool began(const ui::TouchEvent& event);
    void moved(const ui::TouchEvent& event);
    void ended(const ui::TouchEvent& event);
    void cancelled(const ui::TouchEvent& event);
    // Where the finger is about to be.
    void predicted(const std::vector<gfx::Point>& places);

    // Draws with the pen in hand as a finger would that goes from the box's corner at the bottom
    // left to the opposite one. Whether there is such a pen, and nothing else is under way.
    bool drawWithin(const gfx::Rect& box);

    // ---- the tool that it makes
    // Null between gestures.
    const ToolRef& tool() const { return _tool; }
    bool isCreating() const;
    // Whether a tool is being created that is recorded so.
    bool isCreating(ToolRecorder recorder) const;
    // The tool is finished as it is by now, and the gesture makes no more.
    void stopDrawing();
    // What is being drawn is finished as it is by now, with its step, and so is a drawing that
    // waits for more strokes. A text that nobody has typed yet shows nothing and may go on.
    void endCreation();
    // Whether the stroke that it drew has become a shape, which it still holds.
    bool isStraightening() const { return _stroke != nullptr; }

    // ---- a tool that is made point by point; it outlives the gestures that set its points
    bool isPlacing() const;
    // See MDrawView.
    bool completePoints();
    bool dropPoints();
    // The last point goes, and with the first one the tool. Whether there was one.
    bool takeBackPoint();

    // The tool goes without a record.
    void deleteCreated();
    void letGoOf(const ToolRef& tool);

    // ---- the rest of the gesture
    // What it draws goes, and what it drags is again where it was; whether there was anything.
    bool cancelGesture();
    // Of a group that is selected as a whole, what lies under the finger alone is picked.
    void pickMemberAt(gfx::Point p);
    // The finger has done its work.
    void abort();
    // The selection follows the finger.
    bool isDragging() const { return _dragged != nullptr; }
    // What broke a drag off gives it its record, under forgiving rules.
    void endDrag();
    // The selection has lost members.
    void forgetDragged() { _dragged = nullptr; }
    // What was found under the finger may be off the canvas.
    void forgetFound() { _found = nullptr; }
    // Every tool is off the canvas.
    void forgetTools();

private:
    // ---- transitions
    void enter(FingerState state);
    bool staysAlone(const ui::TouchEvent& event);
    void comeDown(const ui::Touch& touch);
    void showLoupe(const ui::Touch& touch);
    void hideLoupe();
    void feel(const ui::Touch& touch);
    bool isYoung() const;
    void takeBack();
    void down(gfx::Point p);
    void move(gfx::Point from, gfx::Point to);
    void up(gfx::Point p);
    void join();

    bool isTapping(const ui::Touch& touch) const;
    gfx::Point placeOf(const ui::Touch& touch) const;
    gfx::Point lastMovePoint() const;
    void tellDrawnOver();

    // ---- drawing
    void create(gfx::Point p);
    ToolRef makeTool(gfx::Point p);
    bool finishCreation(gfx::Point p);
    void drawNoMore();
    bool makesDot() const;
    void makeDot(gfx::Point p);
    void watchRest(gfx::Point place);
    void forgetRest();
    void straighten();
    gfx::Point shapePoint(gfx::Point p) const;
    void finishStraightening(const ToolRef& shape);
    void giveUpStraightening();
    void leadPoint(gfx::Point p);
    void letGoOfPoint();
    bool startsByTap() const;
    void startByTap();
    void setPoint(gfx::Point p);
    void endPlacing();

    // ---- dragging and tapping
    void takeHold();
    void finishDrag();
    void finishTap(gfx::Point p);
    void drag(gfx::Point from, gfx::Point to);
    void spanMarquee(gfx::Point to);
    void finishMarquee(gfx::Point p);
    void tapSelected(const ToolRef& tool);
    void drawTo(gfx::Point to);
    gfx::Point drawnEnd(gfx::Point p);

    Canvas _canvas;
    FingerState _state = FingerState::Idle;
    // What the finger came down for.
    TouchMeaning _meaning;
    // No other finger has joined it.
    bool _isAlone = false;
    bool _hasMoved = false;

    ToolRef _tool;
    // The unselected tool that was under the finger at touch-down.
    ToolRef _found;
    // The selection as far as it has been dragged; null while it has not.
    std::shared_ptr<MDrawMutableSelect> _dragged;

    // The keys that are held, and how the finger touches.
    ui::Modifiers _keys;
    ui::TouchContact _contact;
    // As it landed.
    ui::TouchContact _downContact;
    // Above a fingertip that drags a handle; null otherwise.
    std::shared_ptr<ui::View> _loupe;
    // What is being drawn begins there as far as keys do not say otherwise, and they have.
    gfx::Point _origin;
    bool _isHeldToKeys = false;
    // Where it was drawn to last.
    std::optional<gfx::Point> _drawnPoint;

    gfx::Point _downPoint;
    gfx::Point _movePoint;
    // Where a drag goes on from: how far the selection has followed the finger.
    gfx::Point _takenPoint;
    // The finger landed there, in view points, at that time, and has since been as far away.
    gfx::Point _downPlace;
    double _downTime = 0;
    double _reach = 0;
    // What was selected then.
    ToolList _selectedBefore;
    // What waits for the finger to rest, 0 for nothing, and where it does, view points.
    std::uint64_t _rest = 0;
    gfx::Point _restPlace;
    // The stroke in whose place the tool is drawn on; where the tool ended and the finger was then.
    ToolRef _stroke;
    gfx::Point _shapeEnd;
    gfx::Point _shapeFinger;
    // When and where the last point was set, seconds of the run loop and view points.
    double _pointTime = 0;
    gfx::Point _pointPlace;
    // The owner has been told that something is drawn, and not yet that it is not any more.
    bool _isDrawingOver = false;
};

}  // namespace kalim
