#include <algorithm>
#include <utility>
#include <vector>

#include "kalimkit/canvas/CanvasFinger.h"
#include "kalimkit/canvas/CanvasFreehand.h"
#include "kalimkit/canvas/CanvasGrip.h"
#include "kalimkit/canvas/CanvasHome.h"
#include "kalimkit/canvas/CanvasLoupe.h"
#include "kalimkit/canvas/CanvasSelection.h"
#include "kalimkit/canvas/CanvasTools.h"
#include "kalimkit/canvas/CanvasTyping.h"
#include "kalimkit/canvas/HandleUnder.h"
#include "kalimkit/tool/QVGeometry.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/environment/LateCode.h"

// How the finger touches, and what was no touch of one finger after all.

namespace kalim {

namespace {

// Fingers that come so soon after each other, seconds, or before the first has gone so far, view
// points, are meant together.
constexpr double companionTime = 0.15;
constexpr double companionReach = 10;

double now() {
    return ui::Environment::current().runLoop().now();
}

}  // namespace

void CanvasFinger::comeDown(const ui::Touch& touch) {
    _downPlace = touch.locationIn(&_canvas.home.view());
    _downTime = now();
    _reach = 0;
    feel(touch);
    _downContact = _contact;
}

// What it makes is told how it touches.
void CanvasFinger::feel(const ui::Touch& touch) {
    _contact = touch.contact();
    const gfx::Point place = touch.locationIn(&_canvas.home.view());
    _reach = std::max(_reach, QVPointDistance(_downPlace, place));
    if (_tool) _tool->takeContact(_contact);
}

void CanvasFinger::predicted(const std::vector<gfx::Point>& places) {
    if (!_isAlone || _state != FingerState::Drawing || !isCreating()) return;
    std::vector<gfx::Point> points;
    for (const gfx::Point place : places)
        points.push_back(_canvas.home.view().invertViewPoint(place));
    _tool->predict(points);
    _canvas.home.redisplay();
}

bool CanvasFinger::isYoung() const {
    const bool isSoon = now() - _downTime <= companionTime || _reach < companionReach;
    return _canvas.tools.forgiving() && _state != FingerState::Idle && isSoon;
}

// Nothing of what the finger has done was meant. Other strokes of the drawing stay.
void CanvasFinger::takeBack() {
    forgetRest();
    if (_state == FingerState::Idle || _state == FingerState::Aborted) return;
    if (isPlacing()) {
        letGoOfPoint();
    } else if (isCreating(ToolRecorder::Strokes) && !_stroke && _tool->dropStroke()) {
        _tool = nullptr;
        _canvas.freehand.endStroke();
    } else if (isCreating()) {
        deleteCreated();
    } else if (_dragged && _canvas.grip.holds()) {
        _canvas.grip.putBack();
        std::exchange(_dragged, nullptr)->releaseHandles();
    }
    const auto& group = _canvas.selection.group();
    if ((group ? group->subTools() : ToolList()) != _selectedBefore)
        _canvas.selection.select(_selectedBefore);
    _hasMoved = false;
    _canvas.home.redisplay();
}

// ---- the loupe

// A fingertip hides the very point that it drags; a mouse and a pen do not.
void CanvasFinger::showLoupe(const ui::Touch& touch) {
    const auto& group = _canvas.selection.group();
    const bool isOnHandle = _state == FingerState::Dragging && _dragged && group &&
                            group->grip() != MoveDirection::Turn && isHandle(group->grip());
    const bool isOnVertex = isPlacing() && _state == FingerState::Drawing;
    const bool isWanted = _canvas.tools.forgiving() && (isOnHandle || isOnVertex) && _isAlone &&
                          _contact.kind == ui::TouchKind::Finger;
    // It comes with the next move where its code is not there yet.
    if (!isWanted || !ui::Environment::current().attachment<ui::LateCode>().isThere([] {}))
        return hideLoupe();
    _loupe = showCanvasLoupe(_canvas.home, _canvas.screen, _loupe,
                             touch.locationIn(&_canvas.home.view()));
}

void CanvasFinger::hideLoupe() {
    if (const auto loupe = std::exchange(_loupe, nullptr)) loupe->removeFromSuperview();
}

// ---- without a finger

bool CanvasFinger::drawWithin(const gfx::Rect& box) {
    const ToolClass* const kind = _canvas.tools.pen().toolClass;
    const bool isByTaps = kind && kind->beginning() == ToolBeginning::Taps;
    if (!kind || isCreating() || _state != FingerState::Idle) return false;
    if (isByTaps && !_canvas.tools.pen().placesPoints) return false;
    _canvas.typing.finish();
    _canvas.freehand.end();
    _canvas.selection.endStepUnderWay();
    _canvas.selection.clear();
    const bool isAtPoint = kind->beginning() == ToolBeginning::TouchDown;
    const gfx::Point from = isAtPoint ? box.center() : gfx::Point{box.minX(), box.maxY()};
    const gfx::Point to = isAtPoint ? from : gfx::Point{box.maxX(), box.minY()};
    _keys = {};
    _contact = _downContact = {.kind = ui::TouchKind::Mouse};
    _isAlone = true;
    _isHeldToKeys = false;
    _drawnPoint.reset();
    _meaning = {.draws = true};
    _downPoint = _origin = _takenPoint = from;
    create(from);
    if (isByTaps) {
        for (const gfx::Point p :
             {gfx::Point{box.midX(), box.minY()}, gfx::Point{box.maxX(), box.maxY()}}) {
            if (isPlacing()) setPoint(p);
        }
        completePoints();
    } else {
        _hasMoved = !isAtPoint;
        if (!isAtPoint) drawTo(to);
        up(to);
        _canvas.freehand.end();
    }
    return true;
}

}  // namespace kalim
