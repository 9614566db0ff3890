#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Point.h"
#include "kalimkit/ui/loop/RunLoop.h"
#include "kalimkit/ui/view/Modifiers.h"
#include "kalimkit/ui/view/TouchContact.h"

namespace kalim::ui {

class View;

enum class TouchPhase { Began, Moved, Stationary, Ended, Cancelled };

// One finger, from the moment it lands until it leaves. The same object stands for it throughout;
// the window updates it before each delivery.
class KALIM_API Touch {
public:
    Touch(std::int64_t id, gfx::Point windowLocation, Time time, TouchContact contact = {});

    std::int64_t id() const { return _id; }
    TouchPhase phase() const { return _phase; }
    // As of the last event.
    const TouchContact& contact() const { return _contact; }
    // Cancelled because it was none: a hand's that rests on the screen.
    bool isRejected() const { return _isRejected; }
    // The last event that changed it happened then.
    Time timestamp() const { return _time; }
    // The view that was hit when the finger landed; it gets the whole sequence. Null once gone.
    std::shared_ptr<View> view() const { return _view.lock(); }
    // In the view's own coordinates; in window coordinates for null. The previous location is that
    // of the delivery before.
    gfx::Point locationIn(const View* view) const;
    gfx::Point previousLocationIn(const View* view) const;

private:
    friend class Window;

    // Whether its view knows of it. A view never learns of a withheld touch, or has been told that
    // it was cancelled.
    enum class Delivery { Pending, Delivered, Withheld };

    std::int64_t _id;
    TouchPhase _phase = TouchPhase::Began;
    // Both are window points.
    gfx::Point _location;
    gfx::Point _previous;
    Time _time;
    TouchContact _contact;
    bool _isRejected = false;
    std::weak_ptr<View> _view;
    Delivery _delivery = Delivery::Pending;
};

using TouchRef = std::shared_ptr<Touch>;

// What a responder gets: the touches that a message is about, and all that are on the same view,
// those that end with this very event included.
struct TouchEvent {
    std::vector<TouchRef> touches;
    std::vector<TouchRef> allTouches;
    Time time = 0;
    // The keys that were held then.
    Modifiers modifiers = {};
};

}  // namespace kalim::ui
