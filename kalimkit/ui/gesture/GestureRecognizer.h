#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/gesture/GestureDelegate.h"
#include "kalimkit/ui/view/Touch.h"
#include "kalimkit/ui/view/ViewGesture.h"

namespace kalim::ui {

class View;

enum class GestureState { Possible, Began, Changed, Ended, Cancelled, Failed };

// Watches the touches of one view and reports a gesture to its handler. The window feeds every
// recogniser of the hit view and of its ancestors before the view itself gets the touches. Once a
// gesture is over, the recogniser sees nothing more until the last finger has left; then it returns
// to Possible.
//
// Recognisers that watch the same touches, on one view or on views above each other, compete: the
// first one that recognises its gesture makes the others fail, unless the two may go on at once.
class KALIM_API GestureRecognizer : public ViewGesture,
                                    public std::enable_shared_from_this<GestureRecognizer> {
public:
    using Handler = std::function<void(GestureRecognizer&)>;

    ~GestureRecognizer() override;

    // Called at every change of state except the return to Possible and the failing of what never
    // began, and at every move while the gesture goes on.
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
    std::shared_ptr<GestureRecognizer> recognizer() override { return shared_from_this(); }
    // Yields the middle of the gesture's fingers, in the view's coordinates; in window coordinates
    // for null. It means nothing before the first finger.
    gfx::Point locationIn(const View* view) const;

    // ---- beside others
    // Goes on at once with every other recogniser.
    bool recognizesSimultaneously() const { return _recognizesSimultaneously; }
    void setRecognizesSimultaneously(bool isTolerant) { _recognizesSimultaneously = isTolerant; }
    // Neither a pen's nor a mouse's touches are its own. Off at first.
    void setIsForFingersAlone(bool isForFingers) { _isForFingersAlone = isForFingers; }
    void setDelegate(std::weak_ptr<GestureDelegate> delegate) { _delegate = std::move(delegate); }
    // Holds this gesture back until the other can no longer be recognised from the same touches;
    // if the other is, this one fails. Both must be held by shared pointers.
    void requireToFail(const std::shared_ptr<GestureRecognizer>& other);

    // ---- for the window: touches of this view or below it. `active` are those still down after
    // this event. True while a gesture is recognised, its end included: the touches are its own.
    bool feed(TouchPhase phase, const TouchEvent& event, const std::vector<TouchRef>& active);
    // Which of the touches that have just landed it is never to be fed with: its delegate is asked,
    // and the touched view with those between that and its own.
    void screen(const std::vector<TouchRef>& landed);
    bool isRefused(const TouchRef& touch) const;
    // Others wait for it to fail, so it is fed before them.
    bool isAwaited() const { return !_dependents.empty(); }

protected:
    // Each gets the touches that changed and those that are still down.
    virtual void touchesBegan(const TouchEvent& event, const std::vector<TouchRef>& active) = 0;
    virtual void touchesMoved(const TouchEvent& event, const std::vector<TouchRef>& active) = 0;
    virtual void touchesEnded(const TouchEvent& event, const std::vector<TouchRef>& active) = 0;
    virtual void touchesCancelled(const TouchEvent& event, const std::vector<TouchRef>& active) = 0;
    // Forgets the gesture; called when it is over and the last finger has left, or when what has
    // been seen so far is not to count.
    virtual void reset() = 0;
    // Just before the state becomes Began or Ended by recognize(): what is measured counts from
    // here.
    virtual void willRecognize() {}
    // More fingers may complete the gesture although all have left.
    virtual bool awaitsFingers() const { return false; }

    bool isUnderWay() const {
        return _state == GestureState::Began || _state == GestureState::Changed;
    }
    // Enters Began, or Ended for a gesture without a course, and tells the handler. Beside one that
    // excludes it, it fails instead; while one that must fail first has not, it waits.
    void recognize(GestureState state);
    // What has been seen so far does not count. Ignored once the gesture was recognised.
    void fail();
    // The same as far as others wait for it, but goes on watching.
    void concede();
    // Enters a state and tells the handler.
    void enter(GestureState state);
    // Enters a state as if fingers had led to it. Ignored while disabled.
    void drive(GestureState state);
    // Returns to Possible if the gesture is over and no finger is down.
    void settle();
    // Locations are window points.
    void setLocation(gfx::Point location) { _location = location; }
    // Window points; `touches` must not be empty.
    static gfx::Point middleOf(const std::vector<TouchRef>& touches);

private:
    using Recognizers = std::vector<std::shared_ptr<GestureRecognizer>>;
    enum class Chance { Free, Waits, Lost };

    void didLeaveView() override;
    bool mayReceive(const Touch& touch) const;
    void dispatch(TouchPhase phase, const TouchEvent& event, const std::vector<TouchRef>& active);
    void abandon();
    void sitOut();
    void tellHandler();

    // ---- GestureRecognizerCompetition.cpp
    Recognizers rivals() const;
    bool goesWith(const GestureRecognizer& other) const;
    Chance chance() const;
    void exclude();
    void takeTouchesLater();
    Recognizers dependents() const;

    GestureState _state = GestureState::Possible;
    bool _enabled = true;
    bool _cancelsTouches = true;
    bool _recognizesSimultaneously = false;
    bool _isForFingersAlone = false;
    // Whether fingers are down that it has been told of.
    bool _hasFingers = false;
    // Has seen touches that may still become a gesture.
    bool _isWatching = false;
    bool _isFed = false;
    // Recognised but for another that has yet to fail.
    std::optional<GestureState> _wanted;
    gfx::Point _location;
    // Shared, so that it survives being replaced while it runs.
    std::shared_ptr<const Handler> _handler;
    std::weak_ptr<GestureDelegate> _delegate;
    // Touches that are down and not its own.
    std::vector<std::weak_ptr<Touch>> _refused;
    // Those that must fail before this one, and those that wait for this one.
    std::vector<std::weak_ptr<GestureRecognizer>> _required;
    std::vector<std::weak_ptr<GestureRecognizer>> _dependents;
    // The views that the touches it was last told of are on.
    std::vector<std::weak_ptr<View>> _touched;
};

}  // namespace kalim::ui
