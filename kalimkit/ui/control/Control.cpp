#include "kalimkit/ui/control/Control.h"

#include "kalimkit/ui/gesture/TapGestureRecognizer.h"

namespace kalim::ui {

std::shared_ptr<Control> Control::initWithFrame(const gfx::Rect& frame) {
    struct Constructible : Control {};
    const std::shared_ptr<Control> control = std::make_shared<Constructible>();
    control->init(frame);
    return control;
}

// ---- events

void Control::addAction(ControlEvent event, Action action) {
    if (action) _actions.emplace_back(event, std::make_shared<const Action>(std::move(action)));
}

void Control::removeActions(ControlEvent event) {
    std::erase_if(_actions, [event](const auto& entry) { return entry.first == event; });
}

void Control::sendActions(ControlEvent event) {
    const auto alive = shared_from_this();
    const auto actions = _actions;
    for (const auto& [when, action] : actions) {
        if (when == event) (*action)(*this);
    }
}

void Control::touchesBegan(const TouchEvent& /*event*/) {
    if (!_enabled || _tracking) return;
    const auto alive = shared_from_this();
    _tracking = true;
    setHighlighted(true);
    sendActions(ControlEvent::TouchDown);
}

void Control::touchesMoved(const TouchEvent& event) {
    if (_tracking) setHighlighted(isWithinGrace(event));
}

void Control::touchesEnded(const TouchEvent& event) {
    endTracking(isWithinGrace(event) ? ControlEvent::TouchUpInside : ControlEvent::TouchUpOutside);
}

void Control::touchesCancelled(const TouchEvent& /*event*/) {
    endTracking(ControlEvent::TouchCancel);
}

void Control::endTracking(ControlEvent event) {
    if (!_tracking) return;
    const auto alive = shared_from_this();
    _tracking = false;
    setHighlighted(false);
    sendActions(event);
}

bool Control::isWithinGrace(const TouchEvent& event) const {
    const gfx::Point place = event.touches.front()->locationIn(this);
    return bounds().inset(-grace, -grace).contains(place);
}

bool Control::admitsGesture(const GestureRecognizer& recognizer) const {
    const bool isOwn = recognizer.view() && recognizer.view()->isDescendantOf(*this);
    return isOwn || !dynamic_cast<const TapGestureRecognizer*>(&recognizer);
}

// ---- state

void Control::setEnabled(bool enabled) {
    if (enabled == _enabled) return;
    const auto alive = shared_from_this();
    change(_enabled, enabled);
    if (!enabled) endTracking(ControlEvent::TouchCancel);
}

void Control::setHighlighted(bool highlighted) {
    change(_highlighted, highlighted);
}

void Control::setSelected(bool selected) {
    change(_selected, selected);
}

void Control::change(bool& state, bool value) {
    if (state == value) return;
    state = value;
    stateDidChange();
}

}  // namespace kalim::ui
