#include <utility>

#include "kalimkit/canvas/CanvasFinger.h"
#include "kalimkit/canvas/CanvasHistory.h"
#include "kalimkit/canvas/CanvasHome.h"
#include "kalimkit/canvas/CanvasSelection.h"
#include "kalimkit/canvas/CanvasTools.h"
#include "kalimkit/tool/QVGeometry.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

namespace {

// Two taps so close in time, seconds, and so near each other, view points, are one double tap.
constexpr double doubleTapTime = 0.35;
constexpr double doubleTapReach = 12;

double now() {
    return ui::Environment::current().runLoop().now();
}

}  // namespace

bool CanvasFinger::isPlacing() const {
    return isCreating() && _tool->toolClass().beginning() == ToolBeginning::Taps;
}

// The pen's kind begins with a tap on nothing, while nothing is selected that the tap lets go of.
bool CanvasFinger::startsByTap() const {
    const NewTools& pen = _canvas.tools.pen();
    return pen.placesPoints && _meaning.draws && !_canvas.selection.group() && pen.toolClass &&
           pen.toolClass->beginning() == ToolBeginning::Taps;
}

// The tool's first point is where it is made.
void CanvasFinger::startByTap() {
    create(_downPoint);
    _pointTime = now();
    _pointPlace = _downPlace;
    _canvas.history.tell();
}

void CanvasFinger::leadPoint(gfx::Point p) {
    enter(FingerState::Tapping);
    _downPoint = _movePoint = p;
    _meaning = {.draws = true};
    _tool->drawMove(p);
    _canvas.home.redisplay();
}

void CanvasFinger::letGoOfPoint() {
    _tool->letGoOfPoint();
    _canvas.home.redisplay();
}

void CanvasFinger::setPoint(gfx::Point p) {
    const gfx::Point place = _canvas.home.view().mViewTransform().apply(p);
    const bool isSecondTap = !_hasMoved && now() - _pointTime <= doubleTapTime &&
                             QVPointDistance(place, _pointPlace) <= doubleTapReach;
    _pointTime = now();
    _pointPlace = place;
    isSecondTap ? void(_tool->completePoints()) : _tool->drawUp(p);
    if (_tool->finalized()) return endPlacing();
    _tool->letGoOfPoint();
    _canvas.history.tell();
}

void CanvasFinger::endPlacing() {
    const ToolRef tool = std::exchange(_tool, nullptr);
    _canvas.tools.record(tool);
    tool->setIsNewBuild(false);
    _canvas.home.redisplay();
}

bool CanvasFinger::completePoints() {
    if (!isPlacing()) return false;
    _tool->completePoints() ? endPlacing() : deleteCreated();
    _canvas.history.tell();
    return true;
}

bool CanvasFinger::dropPoints() {
    if (!isPlacing()) return false;
    abort();
    deleteCreated();
    _canvas.history.tell();
    return true;
}

bool CanvasFinger::takeBackPoint() {
    if (!isPlacing()) return false;
    abort();
    if (!_tool->takeBackPoint()) return dropPoints();
    _canvas.home.redisplay();
    _canvas.history.tell();
    return true;
}

}  // namespace kalim
