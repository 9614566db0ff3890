#include "kalimkit/ui/gesture/GestureRecognizer.h"

#include <algorithm>
#include <utility>

#include "kalimkit/ui/loop/FlagScope.h"
#include "kalimkit/ui/view/View.h"

namespace kalim::ui {

namespace {

bool isOver(GestureState state) {
    return state == GestureState::Ended || state == GestureState::Cancelled ||
           state == GestureState::Failed;
}

}  // namespace

GestureRecognizer::~GestureRecognizer() = default;

void GestureRecognizer::setHandler(Handler handler) {
    _handler = handler ? std::make_shared<const Handler>(std::move(handler)) : nullptr;
}

void GestureRecognizer::setEnabled(bool enabled) {
    if (_enabled == enabled) return;
    _enabled = enabled;
    if (!enabled) abandon();
}

gfx::Point GestureRecognizer::locationIn(const View* view) const {
    return view ? view->convertPointFrom(_location, nullptr) : _location;
}

void GestureRecognizer::screen(const std::vector<TouchRef>& landed) {
    std::erase_if(_refused, [](const auto& touch) { return touch.expired(); });
    for (const TouchRef& touch : landed) {
        if (!mayReceive(*touch)) _refused.push_back(touch);
    }
}

bool GestureRecognizer::mayReceive(const Touch& touch) const {
    if (_isForFingersAlone && touch.contact().kind != TouchKind::Finger) return false;
    const auto touched = touch.view();
    for (const View* view = touched.get(); view; view = view->superview()) {
        if (!view->admitsGesture(*this)) return false;
        if (view == this->view()) break;
    }
    const auto delegate = _delegate.lock();
    return !delegate || delegate->shouldReceiveTouch(*this, touch);
}

bool GestureRecognizer::isRefused(const TouchRef& touch) const {
    return std::ranges::any_of(_refused,
                               [&touch](const auto& refused) { return refused.lock() == touch; });
}

bool GestureRecognizer::feed(TouchPhase phase, const TouchEvent& event,
                             const std::vector<TouchRef>& active) {
    const FlagScope feeding(_isFed);
    _hasFingers = !active.empty();
    _touched.clear();
    for (const TouchRef& touch : event.allTouches)
        _touched.push_back(touch->view());
    // What it waited for is gone, and nobody has said so.
    if (phase == TouchPhase::Began && _wanted && chance() != Chance::Waits) fail();
    if (!_enabled) {
        sitOut();
    } else if (!isOver(_state) && _wanted != GestureState::Ended) {
        _isWatching = true;
        dispatch(phase, event, active);
    }
    const bool isRecognized = isUnderWay() || _state == GestureState::Ended;
    if (!_hasFingers && _isWatching && _wanted != GestureState::Ended && !awaitsFingers()) fail();
    settle();
    return isRecognized;
}

void GestureRecognizer::dispatch(TouchPhase phase, const TouchEvent& event,
                                 const std::vector<TouchRef>& active) {
    switch (phase) {
        case TouchPhase::Began:
            return touchesBegan(event, active);
        case TouchPhase::Moved:
            return touchesMoved(event, active);
        case TouchPhase::Ended:
            return touchesEnded(event, active);
        case TouchPhase::Cancelled:
            return touchesCancelled(event, active);
        case TouchPhase::Stationary:
            return;
    }
}

void GestureRecognizer::enter(GestureState state) {
    _state = state;
    tellHandler();
}

void GestureRecognizer::tellHandler() {
    // The handler may let go of the recogniser.
    const auto alive = weak_from_this().lock();
    if (const auto handler = _handler) (*handler)(*this);
}

void GestureRecognizer::drive(GestureState state) {
    const auto alive = weak_from_this().lock();
    if (!_enabled) return;
    enter(state);
    settle();
}

void GestureRecognizer::settle() {
    if (_hasFingers || !isOver(_state)) return;
    reset();
    _state = GestureState::Possible;
    _isWatching = false;
}

// Cancels what is under way and drops what has only been watched so far.
void GestureRecognizer::abandon() {
    const auto alive = weak_from_this().lock();
    if (isUnderWay()) {
        enter(GestureState::Cancelled);
    } else {
        fail();
    }
    settle();
}

void GestureRecognizer::didLeaveView() {
    _hasFingers = false;
    abandon();
}

// Fails without a word until the fingers that are down have left.
void GestureRecognizer::sitOut() {
    if (_hasFingers && _state == GestureState::Possible) _state = GestureState::Failed;
}

gfx::Point GestureRecognizer::middleOf(const std::vector<TouchRef>& touches) {
    gfx::Point sum;
    for (const TouchRef& touch : touches)
        sum = sum + touch->locationIn(nullptr);
    const auto count = static_cast<double>(touches.size());
    return {sum.x / count, sum.y / count};
}

}  // namespace kalim::ui
