#include "kalimkit/canvas/CanvasPointer.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/ui/control/AlertView.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/window/Window.h"

namespace kalim {

namespace {

// Seconds without a notch after which a zoom has come to its end.
constexpr double zoomPause = 0.2;

gfx::Point pointIn(const MDrawView& canvas, gfx::Point place) {
    return canvas.convertPointFrom(place, nullptr);
}

}  // namespace

CanvasPointer::CanvasPointer(std::weak_ptr<MDrawView> canvas) : _canvas(std::move(canvas)) {}

CanvasPointer::~CanvasPointer() {
    for (const std::uint64_t end : {_zoomEnd, _scrollEnd}) {
        if (end) ui::Environment::current().runLoop().cancel(end);
    }
}

bool CanvasPointer::pointerPressed(PointerButton button, gfx::Point place) {
    const bool isPanning =
        button == PointerButton::Middle || (button == PointerButton::Main && _mainButtonPans);
    if (!isPanning || _panButton) return _panButton.has_value();
    const auto canvas = freeCanvas();
    if (!canvas) return button == PointerButton::Middle;
    endZoom();
    endScroll();
    _panButton = button;
    _panStart = _panEnd = place;
    showCursor();
    canvas->handlePanGesture(ui::GestureState::Began, {});
    return true;
}

bool CanvasPointer::pointerMoved(gfx::Point place) {
    const auto shown = canvas();
    if (!_panButton || !shown) return false;
    shown->handlePanGesture(ui::GestureState::Changed,
                            pointIn(*shown, place) - pointIn(*shown, _panStart));
    _panEnd = place;
    return true;
}

bool CanvasPointer::pointerReleased(PointerButton button) {
    if (_panButton != button) return false;
    _panButton.reset();
    showCursor();
    if (const auto shown = canvas()) {
        shown->handlePanGesture(ui::GestureState::Ended,
                                pointIn(*shown, _panEnd) - pointIn(*shown, _panStart));
    }
    return true;
}

void CanvasPointer::setMainButtonPans(bool pans) {
    if (std::exchange(_mainButtonPans, pans) != pans) showCursor();
}

// A pan's own cursor; without one, that of what lies under the pointer.
void CanvasPointer::showCursor() const {
    const auto shown = canvas();
    if (!shown || !shown->window()) return;
    std::optional<ui::Cursor> cursor;
    if (_mainButtonPans) cursor = ui::Cursor::Grab;
    if (_panButton) cursor = ui::Cursor::Grabbing;
    shown->window()->hover().overrideCursor(cursor);
}

void CanvasPointer::pointerZoomed(gfx::Point place, double factor) {
    const auto canvas = freeCanvas();
    if (_panButton || !canvas || !std::isfinite(factor) || !(factor > 0)) return;
    endScroll();
    ui::RunLoop& loop = ui::Environment::current().runLoop();
    if (_zoomEnd) {
        loop.cancel(_zoomEnd);
    } else {
        _zoom = 1;
        _scaleBeforeZoom = canvas->contextScale();
        canvas->handlePinchGesture(ui::GestureState::Began, 1, pointIn(*canvas, place));
    }
    _zoomPlace = place;
    // A wheel has no end that would spring back by itself, so it stops at the bounds.
    _zoom = std::clamp(_zoom * factor, canvas->defaultMinScale() / _scaleBeforeZoom,
                       std::max(1.0, canvas->largestScale() / _scaleBeforeZoom));
    canvas->handlePinchGesture(ui::GestureState::Changed, _zoom, pointIn(*canvas, place));
    _zoomEnd = loop.after(zoomPause, [this] { endZoom(); });
}

void CanvasPointer::endZoom() {
    if (!_zoomEnd) return;
    ui::Environment::current().runLoop().cancel(std::exchange(_zoomEnd, 0));
    const auto shown = canvas();
    if (!shown) return;
    shown->handlePinchGesture(ui::GestureState::Ended, _zoom, pointIn(*shown, _zoomPlace));
}

void CanvasPointer::pointerScrolled(gfx::Point distance) {
    const auto canvas = freeCanvas();
    if (_panButton || !canvas || !std::isfinite(distance.x) || !std::isfinite(distance.y)) return;
    endZoom();
    ui::RunLoop& loop = ui::Environment::current().runLoop();
    if (_scrollEnd) {
        loop.cancel(_scrollEnd);
    } else {
        _scroll = {};
        canvas->handlePanGesture(ui::GestureState::Began, {});
    }
    _scroll += distance;
    canvas->handlePanGesture(ui::GestureState::Changed, _scroll);
    _scrollEnd = loop.after(zoomPause, [this] { endScroll(); });
}

void CanvasPointer::endScroll() {
    if (!_scrollEnd) return;
    ui::Environment::current().runLoop().cancel(std::exchange(_scrollEnd, 0));
    if (const auto shown = canvas()) shown->handlePanGesture(ui::GestureState::Ended, _scroll);
}

// The canvas where it can be moved now: it is in sight and no finger works on it. Null otherwise.
std::shared_ptr<MDrawView> CanvasPointer::freeCanvas() const {
    const auto shown = canvas();
    if (!shown || !shown->window()) return nullptr;
    const bool isTouched =
        std::ranges::any_of(shown->window()->activeTouches(), [&](const ui::TouchRef& touch) {
            return touch->view() && touch->view()->isDescendantOf(*shown);
        });
    const bool isFree = !isTouched && !isCovered() && !ui::AlertView::topmostIn(*shown->window());
    return isFree ? shown : nullptr;
}

MDrawView* CanvasPointer::canvasToZoom() {
    const auto canvas = freeCanvas();
    if (_panButton || !canvas) return nullptr;
    endZoom();
    endScroll();
    return canvas.get();
}

}  // namespace kalim
