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
// recogniser of the hit view and of its ancestors before the view itself gets the touches. Once a
// gesture is over, the recogniser sees nothing more until the last finger has left; then it returns
// to Possible.
class KALIM_API GestureRecognizer {
public:
    using Handler = std::function<void(GestureRecognizer&)>;

    virtual ~GestureRecognizer();

    // Called at every change of state except the return to Possible, and at every move while the
    // gesture goes on.
    void setHandler(Handler handler);
    GestureState state() const { return _state; }
    bool isEnabled() const { return _enabled; }
    // Disabling a gesture under way cancels it. A disabled recogniser sees no touches, and enabling
    // it does not take up fingers that are down already.
    void setEnabled(bool enabled);
    // Once the gesture begins, the touches of the view and of those below it are cancelled, and
    // fingers that join before it is over are kept from them. Off for those that only observe.
    bool cancelsTouches() const { return _cancelsTouches; }
    void setCancelsTouches(bool cancels) { _cancelsTouches = cancels; }
    // The view it is attached to; null when there is none.
    View* view() const { return _view; }

    // ---- for the window: touches of this view or below it. `active` are those still down after
    // this event. True while a gesture is recognised, its end included: the touches are its own.
    bool feed(TouchPhase phase, const TouchEvent& event, const std::vector<TouchRef>& active);

protected:
    // Each gets the touches that changed and those that are still down.
    virtual void touchesBegan(const TouchEvent& event, const std::vector<TouchRef>& active) = 0;
    virtual void touchesMoved(const TouchEvent& event, const std::vector<TouchRef>& active) = 0;
    virtual void touchesEnded(const TouchEvent& event, const std::vector<TouchRef>& active) = 0;
    virtual void touchesCancelled(const TouchEvent& event, const std::vector<TouchRef>& active) = 0;
    // Forgets the gesture; called when it is over and the last finger has left, or when what has
    // been seen so far is not to count.
    virtual void reset() = 0;

    bool isUnderWay() const {
        return _state == GestureState::Began || _state == GestureState::Changed;
    }
    // Enters a state and tells the handler.
    void enter(GestureState state);
    // Returns to Possible if the gesture is over and no finger is down.
    void settle();

private:
    friend class View;

    void dispatch(TouchPhase phase, const TouchEvent& event, const std::vector<TouchRef>& active);
    void abandon();
    void sitOut();

    GestureState _state = GestureState::Possible;
    bool _enabled = true;
    bool _cancelsTouches = true;
    // Whether fingers are down that it has been told of.
    bool _hasFingers = false;
    View* _view = nullptr;
    // Shared, so that it survives being replaced while it runs.
    std::shared_ptr<const Handler> _handler;
};

}  // namespace kalim::ui
