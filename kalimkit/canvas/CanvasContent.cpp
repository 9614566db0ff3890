#include "kalimkit/canvas/CanvasContent.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "kalimkit/canvas/CanvasScreen.h"
#include "kalimkit/canvas/CanvasShown.h"
#include "kalimkit/canvas/CanvasTools.h"
#include "kalimkit/canvas/DrawnExtent.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/loop/FlagScope.h"

namespace kalim {

namespace {

// Far beyond every budget and every surface, yet finite, so that unions stay finite, too.
constexpr double farthest = 1e12;
// Extents may be off by as much, in points.
constexpr double roundingError = 1e-6;

constexpr gfx::Size budgetOfBasis{2560, 1440};

double withinReach(double coordinate) {
    return std::isnan(coordinate) ? farthest : std::clamp(coordinate, -farthest, farthest);
}

gfx::Rect withinReach(const gfx::Rect& rect) {
    return gfx::Rect::spanning({withinReach(rect.minX()), withinReach(rect.minY())},
                               {withinReach(rect.maxX()), withinReach(rect.maxY())});
}

// Yields the budget in square points of the current screen; infinite without one.
double areaLimit(const ui::Environment& environment, bool hasBasis) {
    const std::optional<gfx::Size> budget = environment.areaBudget();
    if (!budget) return INFINITY;
    // What may be drawn must not depend on the screen then: canvas points.
    if (hasBasis) return budgetOfBasis.width * budgetOfBasis.height;
    const double scale = environment.screen().scale;
    return (budget->width / scale) * (budget->height / scale);
}

}  // namespace

bool CanvasContent::endsAtPicture() const {
    return _canvas.shown.isCropped() || (_clipsToPicture && _canvas.shown.picture.source());
}

gfx::Rect CanvasContent::measured() const {
    gfx::Rect content = _canvas.shown.picture.rect();
    if (_canvas.shown.isCropped()) return _canvas.shown.picture.part();
    if (endsAtPicture()) return content;
    for (const ToolRef& tool : _canvas.tools.list()) {
        // The ground reaches no farther than the picture, and the shade no farther than the
        // content.
        if (tool->toolClass().layer() != ToolLayer::Items) continue;
        // The extent follows the rotation as last drawn; an undone step has not been drawn yet.
        tool->refreshTransform();
        const gfx::Rect extent = withinReach(tool->frameIncludeLineWidth());
        if (!content.contains(extent)) content = content.unionWith(extent);
    }
    return content;
}

void CanvasContent::measure() {
    _canvas.shown.content = measured();
}

// Under forgiving rules shapes that reach beyond the content are not cut there: the heads of arrows
// are wider than what counts for them. A shadow alone makes nothing grow.
gfx::Rect CanvasContent::exported() const {
    const gfx::Rect content = measured();
    if (!_canvas.tools.forgiving() || endsAtPicture()) return content;
    gfx::Rect whole = content;
    for (const ToolRef& tool : _canvas.tools.list()) {
        if (tool->toolClass().layer() != ToolLayer::Items) continue;
        const gfx::Rect shape = shapeExtent(*tool).inset(roundingError, roundingError);
        if (shape.isEmpty() || content.contains(shape)) continue;
        whole = whole.unionWith(withinReach(drawnExtent(*tool)));
    }
    return whole;
}

std::shared_ptr<void> CanvasContent::suspended() {
    _isSuspended = true;
    return {nullptr, [this](void*) {
                _isSuspended = false;
                measure();
            }};
}

bool CanvasContent::refresh() {
    if (_isTakingBack || _isSuspended) return false;
    gfx::Rect& content = _canvas.shown.content;
    const gfx::Rect old = content;
    content = measured();
    const ui::Environment& environment = ui::Environment::current();
    if (content.area() > old.area() &&
        content.area() > areaLimit(environment, _canvas.shown.picture.hasBasis())) {
        content = old;
        takeBack();
        return false;
    }
    if (content == old) return false;
    // The background reaches as far as the content.
    for (const gfx::Rect& rect : {old, content})
        _canvas.screen.invalidateGround(rect);
    return true;
}

void CanvasContent::takeBack() {
    ui::Environment& environment = ui::Environment::current();
    environment.presentAlert({"",
                              environment.localizedString("面积不能超过2K"),
                              {environment.localizedString("我知道了")},
                              {}});
    // Once: what is undone may leave the content as large, where vertices are in no snapshot.
    const ui::FlagScope takingBack(_isTakingBack);
    _canvas.tools.undoManager().undo();
}

}  // namespace kalim
