#include <algorithm>

#include "kalimkit/canvas/DrawnSpan.h"
#include "kalimkit/canvas/MDrawMutableSelect.h"

// The handles of the selection itself, and what they do to several under forgiving rules.

namespace kalim {

SelectionFrame MDrawMutableSelect::selectionFrame() const {
    SelectionFrame selection;
    if (_subTools.empty() || !rules().forgiving) return selection;
    const MDrawTool& first = *_subTools.front();
    const bool isFine = rules().fineHandles;
    selection.box = frame();
    selection.screenPoint = onCanvas(1);
    if (std::ranges::any_of(_subTools, &MDrawTool::isLocked)) return selection;
    if (hasSeveral()) {
        selection.hasCorners = true;
        selection.isForFingers = !isFine;
        selection.hasSides = selection.hasTurn = isFine;
    } else {
        selection.turn = first.turning();
        const ToolSpan span = first.toolClass().span();
        selection.hasCorners = selection.hasSides = isFine && span == ToolSpan::Box;
        selection.hasTurn = isFine && span != ToolSpan::Line && first.isSupportGestureRotate();
    }
    if (selection.hasTurn && !_sight.isEmpty() &&
        !_sight.contains(selection.placeOf(MoveDirection::Turn))) {
        selection.turnsBelow = true;
        selection.turnsBelow = _sight.contains(selection.placeOf(MoveDirection::Turn));
    }
    return selection;
}

// A single member has handles of its own, too.
bool MDrawMutableSelect::hitOnOwnHandle(gfx::Point p) {
    _moveDirection = selectionFrame().handleAt(p);
    if (_moveDirection == MoveDirection::None) return false;
    _subTools.front()->setMoveDirection(MoveDirection::None);
    return true;
}

MoveDirection MDrawMutableSelect::grip() const {
    return hasSeveral() || ownsGrip() || _subTools.empty() ? _moveDirection
                                                           : _subTools.front()->moveDirection();
}

bool MDrawMutableSelect::ownsGrip() const {
    return _moveDirection != MoveDirection::None;
}

void MDrawMutableSelect::turnTo(double angle) {
    if (_turned.isEmpty()) {
        _turned = MemberStates(_subTools);
        _turnCenter = frame().center();
    }
    _turned.restore();
    for (const ToolRef& member : _subTools)
        member->turnBy(_turnCenter, angle);
}

void MDrawMutableSelect::drawHandles(gfx::Context& context) {
    for (const ToolRef& member : _subTools) {
        member->setIsMutableTool(hasSeveral());
        member->drawSelection(context);
    }
    drawSelectionFrame(context);
}

// A single member draws its corners itself.
void MDrawMutableSelect::drawSelectionFrame(gfx::Context& context) const {
    const bool isShown = !_subTools.empty() && _subTools.front()->selected();
    if (!isShown || !rules().forgiving) return;
    const SelectionFrame selection = selectionFrame();
    const gfx::GraphicsStateGuard guard(context);
    context.setStrokeColor(*handleFillColor());
    context.setLineWidth(onCanvas(1));
    context.beginPath();
    if (hasSeveral()) context.addRect(selection.box);
    if (selection.hasTurn) {
        const auto side = selection.turnsBelow ? MoveDirection::Bottom : MoveDirection::Top;
        context.moveTo(selection.placeOf(side));
        context.lineTo(selection.placeOf(MoveDirection::Turn));
    }
    context.stroke();
    context.setStrokeColor({1, 1, 1, 1});
    for (const MoveDirection handle : selection.handles()) {
        const MovedSides sides = movedSides(handle);
        const bool isCorner = sides.x != 0 && sides.y != 0;
        if (hasSeveral() || !isCorner) drawHandleAtPoint(context, selection.placeOf(handle));
    }
}

}  // namespace kalim
