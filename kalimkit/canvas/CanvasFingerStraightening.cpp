#include <utility>

#include "kalimkit/canvas/CanvasFinger.h"
#include "kalimkit/canvas/CanvasFreehand.h"
#include "kalimkit/canvas/CanvasHome.h"
#include "kalimkit/canvas/CanvasScreen.h"
#include "kalimkit/canvas/CanvasTools.h"
#include "kalimkit/tool/QVGeometry.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/environment/LateCode.h"

namespace kalim {

namespace {

// A finger rests that stays so near for so long, view points and seconds.
constexpr double restReach = 4;
constexpr double restTime = 0.5;

// Where the code that knows shapes is still to come, a stroke stays one.
bool knowsShapes() {
    return ui::Environment::current().attachment<ui::LateCode>().isThere(nullptr);
}

}  // namespace

// A stroke that has become a shape is one for good.
void CanvasFinger::watchRest(gfx::Point place) {
    if (!_canvas.tools.forgiving() || !isCreating(ToolRecorder::Strokes)) return;
    if (_rest != 0 && QVPointDistance(place, _restPlace) <= restReach) return;
    // Asked for with the stroke, it is there before the finger rests.
    if (_rest == 0) knowsShapes();
    forgetRest();
    _restPlace = place;
    _rest = ui::Environment::current().runLoop().after(
        restTime, [self = std::weak_ptr<CanvasFinger>(_canvas.home.held(*this))] {
            if (const auto finger = self.lock()) finger->straighten();
        });
}

void CanvasFinger::forgetRest() {
    if (_rest != 0) ui::Environment::current().runLoop().cancel(std::exchange(_rest, 0));
}

// The stroke is a step of its own, so that undoing goes back to it.
void CanvasFinger::straighten() {
    _rest = 0;
    if (!_isAlone || _state != FingerState::Drawing || !isCreating(ToolRecorder::Strokes)) return;
    if (!knowsShapes()) return;
    const ToolRef shape = _tool->straightened();
    if (!shape) return;
    const ToolRef stroke = std::exchange(_tool, nullptr);
    stroke->drawUp(_movePoint);
    _canvas.freehand.end();
    // The owner, told of the step, may have taken it away.
    if (!_canvas.tools.contains(stroke) || isCreating()) return;
    const gfx::Point start = shape->startPoint();
    const gfx::Point end = shape->endPoint();
    _canvas.tools.prepare(*shape);
    shape->setStartPoint(start);
    shape->setEndPoint(end);
    _canvas.tools.exchange(stroke, shape);
    _stroke = stroke;
    _tool = shape;
    _shapeEnd = end;
    _shapeFinger = _movePoint;
    _canvas.screen.markCreated(shape);
    _canvas.home.redisplay();
}

// The shape's end goes along with the finger, which lay beside it.
gfx::Point CanvasFinger::shapePoint(gfx::Point p) const {
    return _stroke ? _shapeEnd + (p - _shapeFinger) : p;
}

void CanvasFinger::finishStraightening(const ToolRef& shape) {
    const ToolRef stroke = std::exchange(_stroke, nullptr);
    shape->setIsNewBuild(false);
    if (!shape->isDrawVaild()) {
        _canvas.tools.exchange(shape, stroke);
        _canvas.screen.markListChanged();
        return;
    }
    _canvas.tools.recordExchange(stroke, shape);
}

void CanvasFinger::giveUpStraightening() {
    const ToolRef shape = std::exchange(_tool, nullptr);
    shape->setIsNewBuild(false);
    _canvas.tools.exchange(shape, std::exchange(_stroke, nullptr));
    _canvas.screen.markListChanged();
    _canvas.home.redisplay();
}

}  // namespace kalim
