#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <utility>

#include "kalimkit/gfx/Point.h"
#include "kalimkit/ui/desk/DeskControl.h"

namespace kalim::ui {

// A value that a finger or a pointer drags, or keys change. A finger that is cancelled gives the
// value back that it has found.
template <typename Value>
class DraggedControl : public DeskControl {
public:
    // What is changed: while a finger is down, and then once more as the last, which a host takes
    // for one step to undo; also where the finger has gone back to what it has found. A key's
    // change is final at once.
    using Handler = std::function<void(const Value& value, bool isFinal)>;

    void setHandler(Handler handler) { _handler = std::move(handler); }

    void touchesBegan(const TouchEvent& event) override {
        Control::touchesBegan(event);
        if (!isTracking()) return;
        _before = _value;
        _isTold = false;
        follow(event);
    }
    void touchesMoved(const TouchEvent& event) override {
        if (_before) follow(event);
    }
    void touchesEnded(const TouchEvent& event) override {
        const auto alive = shared_from_this();
        if (_before) {
            follow(event);
            letGo();
        }
        Control::touchesEnded(event);
    }
    void touchesCancelled(const TouchEvent& event) override {
        const auto alive = shared_from_this();
        giveBack();
        Control::touchesCancelled(event);
    }
    // Takes a finger's change back, if one is on it; what that goes on doing is nothing.
    void giveBack() {
        if (!_before) return;
        show(*_before);
        letGo();
    }
    bool admitsGesture(const GestureRecognizer& recognizer) const override {
        return admitsGestureButPan(recognizer);
    }
    void activate() override {}

protected:
    explicit DraggedControl(Value value = {}) : _value(std::move(value)) {}
    const Value& shown() const { return _value; }
    // Without a word to the handler.
    void show(Value value) {
        _value = std::move(value);
        setNeedsDisplay();
    }
    // Whether it is a finger's now. A control that is disabled loses its finger.
    bool isHeld() {
        if (!isTracking()) _before.reset();
        return _before.has_value();
    }
    void change(const Value& value, bool isFinal) {
        if (value == _value) return;
        show(value);
        tell(isFinal);
    }
    // What a finger at a place of its own chooses.
    virtual Value valueAt(gfx::Point p) const = 0;

private:
    void follow(const TouchEvent& event) {
        change(valueAt(event.touches.front()->locationIn(this)), false);
    }
    void tell(bool isFinal) {
        const auto alive = shared_from_this();
        _isTold = true;
        if (const Handler handler = _handler) handler(_value, isFinal);
    }
    void letGo() {
        _before.reset();
        if (_isTold) tell(true);
    }

    Value _value;
    Handler _handler;
    // What a finger that is on it has found, and whether it has changed that since.
    std::optional<Value> _before;
    bool _isTold = false;
};

}  // namespace kalim::ui
