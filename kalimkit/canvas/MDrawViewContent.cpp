#include <algorithm>
#include <cmath>

#include "kalimkit/canvas/DrawnExtent.h"
#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/loop/FlagScope.h"

namespace kalim {

namespace {

// Far beyond every budget and every surface, yet finite, so that unions stay finite, too.
constexpr double farthest = 1e12;
// Of extents, points.
constexpr double roundingError = 1e-6;

constexpr gfx::Size budgetOfBasis{2560, 1440};

double withinReach(double coordinate) {
    return std::isnan(coordinate) ? farthest : std::clamp(coordinate, -farthest, farthest);
}

gfx::Rect withinReach(const gfx::Rect& rect) {
    return gfx::Rect::spanning({withinReach(rect.minX()), withinReach(rect.minY())},
                               {withinReach(rect.maxX()), withinReach(rect.maxY())});
}

// The budget in square points of the current screen; infinite without one.
double areaLimit(const ui::Environment& environment, bool hasBasis) {
    const std::optional<gfx::Size> budget = environment.areaBudget();
    if (!budget) return INFINITY;
    // What may be drawn must not depend on the screen then: canvas points.
    if (hasBasis) return budgetOfBasis.width * budgetOfBasis.height;
    const double scale = environment.screen().scale;
    return (budget->width / scale) * (budget->height / scale);
}

}  // namespace

gfx::Rect MDrawView::contentRect() const {
    gfx::Rect content = _picture.rect();
    if (cutsAtPicture()) return content;
    for (const ToolRef& tool : *_tools) {
        // The ground reaches no farther than the picture.
        if (tool->toolClass().layer() == ToolLayer::Ground) continue;
        // The extent follows the rotation as last drawn; an undone step has not been drawn yet.
        tool->refreshTransform();
        const gfx::Rect extent = withinReach(tool->frameIncludeLineWidth());
        if (!content.contains(extent)) content = content.unionWith(extent);
    }
    return content;
}

// Under forgiving rules shapes that reach beyond the content are not cut there: the heads of arrows
// are wider than what counts for them. A shadow alone makes nothing grow.
gfx::Rect MDrawView::exportedRect() const {
    const gfx::Rect content = contentRect();
    if (!forgiving() || cutsAtPicture()) return content;
    gfx::Rect whole = content;
    for (const ToolRef& tool : *_tools) {
        if (tool->toolClass().layer() == ToolLayer::Ground) continue;
        const gfx::Rect shape = shapeExtent(*tool).inset(roundingError, roundingError);
        if (shape.isEmpty() || content.contains(shape)) continue;
        whole = whole.unionWith(withinReach(drawnExtent(*tool)));
    }
    return whole;
}

bool MDrawView::refreshContextRect() {
    if (_isTakingBack) return false;
    const gfx::Rect old = _ctxRect;
    _ctxRect = contentRect();
    ui::Environment& environment = ui::Environment::current();
    if (_ctxRect.area() > old.area() &&
        _ctxRect.area() > areaLimit(environment, _picture.hasBasis())) {
        _ctxRect = old;
        environment.presentAlert({"",
                                  environment.localizedString("面积不能超过2K"),
                                  {environment.localizedString("我知道了")},
                                  {}});
        // Once: what is undone may leave the content as large, where vertices are in no snapshot.
        const ui::FlagScope takingBack(_isTakingBack);
        _undoManager->undo();
        return false;
    }
    if (_ctxRect == old) return false;
    // The background reaches as far as the content.
    for (const gfx::Rect& rect : {old, _ctxRect}) {
        _layers.invalidate(CanvasLayers::Ground, rect);
        mark(rect);
    }
    return true;
}

}  // namespace kalim
