#include "kalimkit/canvas/CanvasParts.h"
#include "kalimkit/canvas/HandleUnder.h"
#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/canvas/PenOnlyMenu.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/environment/LateCode.h"
#include "kalimkit/ui/gesture/PanGestureRecognizer.h"
#include "kalimkit/ui/window/Window.h"

namespace kalim {

// Once there is a pen, fingers are for looking. Those that join others do as they do.
bool MDrawView::beginsViewing(const ui::TouchEvent& event) {
    if (event.allTouches.size() > event.touches.size()) return isForViewing(event);
    const bool isFinger = event.touches.front()->contact().kind == ui::TouchKind::Finger;
    _isViewing = isFinger && forgiving() && window() && window()->hasSeenPen() &&
                 ui::Environment::current().userDefault(penOnlySetting).value_or(true);
    panGesture().setMinimumNumberOfTouches(_isViewing ? 1 : 2);
    panGesture().setIsForFingersAlone(forgiving());
    return _isViewing;
}

bool MDrawView::isForViewing(const ui::TouchEvent& event) const {
    const bool isFinger = event.touches.front()->contact().kind == ui::TouchKind::Finger;
    return _isReadOnly || (_isViewing && isFinger);
}

void MDrawView::touchesBegan(const ui::TouchEvent& event) {
    if (_isReadOnly) {
        // Nothing else is meant by one finger, or a pen.
        panGesture().setMinimumNumberOfTouches(1);
        panGesture().setIsForFingersAlone(false);
        return View::touchesBegan(event);
    }
    const auto parts = held();
    parts->restyling.breakOff();
    parts->screen.lightHandle(std::nullopt);
    if (beginsViewing(event)) {
        parts->typing.endByTouch();
        if (const auto owner = parts->home.owner()) {
            owner->didDrawStarted();
            const auto& code = ui::Environment::current().attachment<ui::LateCode>();
            if (code.isThere(nullptr)) offerPenOnly(*this, owner, event.touches.front());
        }
        return View::touchesBegan(event);
    }
    // Points are those of the view as it is now, also where it has not been displayed since.
    fitIntoView();
    endCutGlide();
    if (parts->finger.began(event)) View::touchesBegan(event);
}

void MDrawView::touchesMoved(const ui::TouchEvent& event) {
    if (isForViewing(event)) return View::touchesMoved(event);
    const auto parts = held();
    parts->finger.moved(event);
    View::touchesMoved(event);
}

void MDrawView::touchesEnded(const ui::TouchEvent& event) {
    if (isForViewing(event)) return View::touchesEnded(event);
    const auto parts = held();
    parts->finger.ended(event);
    View::touchesEnded(event);
}

void MDrawView::touchesCancelled(const ui::TouchEvent& event) {
    if (isForViewing(event)) return View::touchesCancelled(event);
    const auto parts = held();
    parts->finger.cancelled(event);
    View::touchesCancelled(event);
}

void MDrawView::touchPredicted(const ui::Touch& /*touch*/, const std::vector<gfx::Point>& places) {
    if (!_isReadOnly && !_isViewing && forgiving()) held()->finger.predicted(places);
}

// ---- a pointer that hovers

// The handle that a press would take hold of.
void MDrawView::pointerMoved(gfx::Point p) {
    const auto parts = held();
    const auto& group = parts->selection.group();
    std::optional<FoundHandle> handle;
    const bool isFree = !_isReadOnly && forgiving() && fingerState() == FingerState::Idle;
    const auto& code = ui::Environment::current().attachment<ui::LateCode>();
    if (isFree && group && !parts->selection.isLocked() && code.isThere(nullptr)) {
        parts->selection.readyForScreen();
        handle = handleUnder(*group, invertViewPoint(p));
    }
    parts->screen.lightHandle(handle ? std::optional(handle->place) : std::nullopt);
}

void MDrawView::pointerExited() {
    _parts->screen.lightHandle(std::nullopt);
}

}  // namespace kalim
