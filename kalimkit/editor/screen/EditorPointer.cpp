#include "kalimkit/editor/screen/EditorPointer.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/editor/screen/TesselViewController.h"
#include "kalimkit/ui/control/AlertView.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/window/Window.h"

namespace kalim {

namespace {

// Seconds without a notch after which a zoom has come to its end.
constexpr double zoomPause = 0.2;

}  // namespace

EditorPointer::EditorPointer(std::weak_ptr<TesselViewController> editor)
    : _editor(std::move(editor)) {}

EditorPointer::~EditorPointer() {
    for (const std::uint64_t end : {_zoomEnd, _scrollEnd}) {
        if (end) ui::Environment::current().runLoop().cancel(end);
    }
}

bool EditorPointer::pointerPressed(PointerButton button, gfx::Point place) {
    const bool isPanning =
        button == PointerButton::Middle || (button == PointerButton::Main && _mainButtonPans);
    if (!isPanning || _panButton) return _panButton.has_value();
    if (!isCanvasFree()) return button == PointerButton::Middle;
    endZoom();
    endScroll();
    _panButton = button;
    _panStart = _panEnd = place;
    showCursor();
    _editor.lock()->drawView()->handlePanGesture(ui::GestureState::Began, {});
    return true;
}

bool EditorPointer::pointerMoved(gfx::Point place) {
    const auto editor = _editor.lock();
    if (!_panButton || !editor || !editor->drawView()) return false;
    editor->drawView()->handlePanGesture(ui::GestureState::Changed,
                                         inCanvas(place) - inCanvas(_panStart));
    _panEnd = place;
    return true;
}

bool EditorPointer::pointerReleased(PointerButton button) {
    if (_panButton != button) return false;
    _panButton.reset();
    showCursor();
    if (const auto editor = _editor.lock()) {
        editor->drawView()->handlePanGesture(ui::GestureState::Ended,
                                             inCanvas(_panEnd) - inCanvas(_panStart));
    }
    return true;
}

void EditorPointer::setMainButtonPans(bool pans) {
    if (std::exchange(_mainButtonPans, pans) != pans) showCursor();
}

// A pan's own cursor; without one, that of what lies under the pointer.
void EditorPointer::showCursor() const {
    const auto editor = _editor.lock();
    if (!editor || !editor->window()) return;
    std::optional<ui::Cursor> cursor;
    if (_mainButtonPans) cursor = ui::Cursor::Grab;
    if (_panButton) cursor = ui::Cursor::Grabbing;
    editor->window()->hover().overrideCursor(cursor);
}

void EditorPointer::pointerZoomed(gfx::Point place, double factor) {
    if (_panButton || !isCanvasFree() || !std::isfinite(factor) || !(factor > 0)) return;
    endScroll();
    const auto canvas = _editor.lock()->drawView();
    ui::RunLoop& loop = ui::Environment::current().runLoop();
    if (_zoomEnd) {
        loop.cancel(_zoomEnd);
    } else {
        _zoom = 1;
        _scaleBeforeZoom = canvas->contextScale();
        canvas->handlePinchGesture(ui::GestureState::Began, 1, inCanvas(place));
    }
    _zoomPlace = place;
    // A wheel has no end that would spring back by itself, so it stops at the bounds.
    _zoom = std::clamp(_zoom * factor, canvas->defaultMinScale() / _scaleBeforeZoom,
                       std::max(1.0, canvas->largestScale() / _scaleBeforeZoom));
    canvas->handlePinchGesture(ui::GestureState::Changed, _zoom, inCanvas(place));
    _zoomEnd = loop.after(zoomPause, [this] { endZoom(); });
}

void EditorPointer::endZoom() {
    if (!_zoomEnd) return;
    ui::Environment::current().runLoop().cancel(std::exchange(_zoomEnd, 0));
    const auto editor = _editor.lock();
    if (!editor || !editor->drawView()) return;
    editor->drawView()->handlePinchGesture(ui::GestureState::Ended, _zoom, inCanvas(_zoomPlace));
}

void EditorPointer::pointerScrolled(gfx::Point distance) {
    if (_panButton || !isCanvasFree() || !std::isfinite(distance.x) || !std::isfinite(distance.y))
        return;
    endZoom();
    const auto canvas = _editor.lock()->drawView();
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

void EditorPointer::endScroll() {
    if (!_scrollEnd) return;
    ui::Environment::current().runLoop().cancel(std::exchange(_scrollEnd, 0));
    const auto editor = _editor.lock();
    if (!editor || !editor->drawView()) return;
    editor->drawView()->handlePanGesture(ui::GestureState::Ended, _scroll);
}

// Whether the canvas can be moved now: it is in sight and no finger works on it.
bool EditorPointer::isCanvasFree() const {
    const auto editor = _editor.lock();
    if (!editor || !editor->drawView() || !editor->window()) return false;
    const bool isTouched =
        std::ranges::any_of(editor->window()->activeTouches(), [&](const ui::TouchRef& touch) {
            return touch->view() && touch->view()->isDescendantOf(*editor->drawView());
        });
    return !isTouched && !editor->actionSheet() && !editor->editImageInitialView() &&
           !ui::AlertView::topmostIn(*editor->window());
}

gfx::Point EditorPointer::inCanvas(gfx::Point place) const {
    return _editor.lock()->drawView()->convertPointFrom(place, nullptr);
}

MDrawView* EditorPointer::canvasToZoom() {
    if (_panButton || !isCanvasFree()) return nullptr;
    endZoom();
    endScroll();
    return _editor.lock()->drawView().get();
}

}  // namespace kalim
