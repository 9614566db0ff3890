#include "kalimkit/ui/touch/GestureRecognizer.h"

#include <utility>

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

bool GestureRecognizer::feed(TouchPhase phase, const TouchEvent& event,
                             const std::vector<TouchRef>& active) {
    _hasFingers = !active.empty();
    if (!_enabled) {
        sitOut();
    } else if (!isOver(_state)) {
        dispatch(phase, event, active);
    }
    const bool isRecognized = isUnderWay() || _state == GestureState::Ended;
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
    if (const auto handler = _handler) (*handler)(*this);
}

void GestureRecognizer::settle() {
    if (_hasFingers || !isOver(_state)) return;
    reset();
    _state = GestureState::Possible;
}

// Cancels what is under way and drops what has only been watched so far.
void GestureRecognizer::abandon() {
    if (isUnderWay()) {
        enter(GestureState::Cancelled);
    } else if (_state == GestureState::Possible) {
        reset();
        sitOut();
    }
    settle();
}

// Fails without a word until the fingers that are down have left.
void GestureRecognizer::sitOut() {
    if (_hasFingers && _state == GestureState::Possible) _state = GestureState::Failed;
}

}  // namespace kalim::ui
