#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/touch/Touch.h"

namespace kalim::ui {

class View;

enum class GestureState { Possible, Began, Changed, Ended, Cancelled, Failed };

// Watches the touches of one view and reports a gesture to its handler. The window feeds every
// recogniser of the hit view and of its ancestors before the view itself gets the touches.
class KALIM_API GestureRecognizer {
public:
    using Handler = std::function<void(GestureRecognizer&)>;

    virtual ~GestureRecognizer() = default;

    // Called at every change of state except the return to Possible, and at every move while the
    // gesture goes on.
    void setHandler(Handler handler) { _handler = std::move(handler); }
    GestureState state() const { return _state; }
    bool isEnabled() const { return _enabled; }
    // Disabling a gesture under way cancels it.
    void setEnabled(bool enabled);
    // Once the gesture begins, the view's touches are cancelled. Off for those that only observe.
    bool cancelsTouches() const { return _cancelsTouches; }
    void setCancelsTouches(bool cancels) { _cancelsTouches = cancels; }
    // The view it is attached to; null when there is none.
    View* view() const { return _view; }

    // ---- for the window: touches of this view or below it. `active` are those still down after
    // this event.
    void feed(TouchPhase phase, const TouchEvent& event, const std::vector<TouchRef>& active);

protected:
    // Each gets the touches that changed and those that are still down.
    virtual void touchesBegan(const TouchEvent& event, const std::vector<TouchRef>& active) = 0;
    virtual void touchesMoved(const TouchEvent& event, const std::vector<TouchRef>& active) = 0;
    virtual void touchesEnded(const TouchEvent& event, const std::vector<TouchRef>& active) = 0;
    virtual void touchesCancelled(const TouchEvent& event, const std::vector<TouchRef>& active) = 0;
    // Forgets the gesture; called when it is over and the last finger has left.
    virtual void reset() = 0;

    // Enters a state and tells the handler.
    void enter(GestureState state);

private:
    friend class View;

    GestureState _state = GestureState::Possible;
    bool _enabled = true;
    bool _cancelsTouches = true;
    View* _view = nullptr;
    Handler _handler;
};

}  // namespace kalim::ui
