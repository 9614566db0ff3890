#pragma once

#include <memory>
#include <optional>

#include "kalimkit/canvas/MDrawMutableSelect.h"
#include "kalimkit/canvas/MemberStates.h"
#include "kalimkit/canvas/Snapping.h"
#include "kalimkit/ui/view/Modifiers.h"

namespace kalim {

class CanvasHome;
class CanvasScreen;
class CanvasSelection;
class CanvasTools;
struct CanvasShown;

// What a finger has hold of in the selection of a forgiving canvas: it carries the members from how
// they were when the finger landed to how they are to be, under the keys that are held, and lays
// them along others. Points are canvas points.
class CanvasGrip {
public:
    // What of the canvas it uses.
    struct Canvas {
        CanvasHome& home;
        CanvasShown& shown;
        CanvasTools& tools;
        CanvasScreen& screen;
        CanvasSelection& selection;
    };
    explicit CanvasGrip(const Canvas& canvas) : _canvas(canvas) {}

    // Whether shapes that are dragged are laid along others.
    bool snaps() const { return _snaps; }
    void setSnaps(bool snaps) { _snaps = snaps; }

    // The finger has landed on the selection, which knows what of it; or has hold of all of it.
    void take(gfx::Point p, bool ofAll = false);
    bool holds() const { return _group != nullptr; }
    // Whether the drag is the grip's. If not, it is the tool's own, step by step.
    bool drags(const ui::Modifiers& keys);
    void dragTo(gfx::Point p, const ui::Modifiers& keys);
    // Everything is again as it was when the finger landed.
    void putBack();
    void release();

private:
    bool apply(gfx::Point p, const ui::Modifiers& keys);
    void move(gfx::Point p, const ui::Modifiers& keys);
    void turn(gfx::Point p, const ui::Modifiers& keys);
    void resizeTool(gfx::Point p, const ui::Modifiers& keys);
    void resizeGroup(gfx::Point p, const ui::Modifiers& keys);
    void dragHandle(gfx::Point p, const ui::Modifiers& keys);
    gfx::Point snapped(const gfx::Rect& box, gfx::Point offset, const ui::Modifiers& keys);
    bool isSnapping(const ui::Modifiers& keys) const { return _snaps && !keys.control; }
    const SnapTargets& targets();
    double reach() const;

    Canvas _canvas;
    bool _snaps = false;
    std::shared_ptr<MDrawMutableSelect> _group;
    MoveDirection _part = MoveDirection::None;
    // That is a handle of the selection itself.
    bool _isOfFrame = false;
    MemberStates _base;
    // At the beginning: the box around all members, and of a single one its own and its turn.
    gfx::Rect _frame;
    gfx::Rect _box;
    gfx::AffineTransform _turn;
    double _angle = 0;
    gfx::Point _down;
    // The drag has been the grip's already.
    bool _isOwn = false;
    // Where the members were last seen to be valid.
    gfx::Point _goodPoint;
    ui::Modifiers _goodKeys;
    std::optional<SnapTargets> _targets;
    std::vector<SnapGuide> _guides;
};

}  // namespace kalim
