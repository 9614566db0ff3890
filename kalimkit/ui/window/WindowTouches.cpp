#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>

#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/gesture/GestureRecognizer.h"
#include "kalimkit/ui/window/Window.h"

// A touch goes from the host to its view in three steps: every recogniser of the view and of its
// ancestors is fed; views whose touches a recogniser has taken are told that these are cancelled;
// what is left goes to the views. Handlers may do anything on the way: take views away, cancel
// touches, even report fingers or let go of the window. So each step looks again at what a touch
// has become: it is withheld from its view once that was told of its end, and for recognisers its
// phase is no longer that of the delivery.

namespace kalim::ui {

namespace {

using Touches = std::vector<TouchRef>;
using Views = std::vector<std::shared_ptr<View>>;

// Of the finger that is none.
constexpr std::int64_t tapNumber = std::numeric_limits<std::int64_t>::min();
// What is wider is no fingertip, points; and a hand that has lifted its pen rests for a while,
// seconds.
constexpr double largestFinger = 40;
constexpr double penPause = 0.5;

bool isFinite(gfx::Point p) {
    return std::isfinite(p.x) && std::isfinite(p.y);
}

bool isOfPalm(const TouchContact& contact) {
    return contact.kind == TouchKind::Finger && contact.size > largestFinger;
}

bool rejectsPalms(const View* view) {
    while (view && !view->rejectsPalms())
        view = view->superview();
    return view != nullptr;
}

bool holds(const Touches& touches, const TouchRef& touch) {
    return std::ranges::find(touches, touch) != touches.end();
}

template <typename Condition>
Touches filtered(const Touches& touches, Condition condition) {
    Touches result;
    std::ranges::copy_if(touches, std::back_inserter(result), condition);
    return result;
}

Touches touchesWithin(const View& subtree, const Touches& touches) {
    return filtered(touches, [&subtree](const TouchRef& touch) {
        const auto view = touch->view();
        return view && view->isDescendantOf(subtree);
    });
}

Views viewsOf(const Touches& touches) {
    Views views;
    for (const TouchRef& touch : touches) {
        const auto view = touch->view();
        if (view && std::ranges::find(views, view) == views.end()) views.push_back(view);
    }
    return views;
}

// Lists the touched views and all above them, each before its superview.
Views chainsOf(const Touches& touches) {
    Views chains;
    for (const auto& touched : viewsOf(touches)) {
        for (View* view = touched.get(); view; view = view->superview()) {
            const auto ref = view->shared_from_this();
            if (std::ranges::find(chains, ref) == chains.end()) chains.push_back(ref);
        }
    }
    return chains;
}

void tell(Responder& responder, TouchPhase phase, const TouchEvent& event) {
    switch (phase) {
        case TouchPhase::Began:
            return responder.touchesBegan(event);
        case TouchPhase::Moved:
            return responder.touchesMoved(event);
        case TouchPhase::Ended:
            return responder.touchesEnded(event);
        case TouchPhase::Cancelled:
            return responder.touchesCancelled(event);
        case TouchPhase::Stationary:
            return;
    }
}

Time now() {
    return Environment::current().runLoop().now();
}

}  // namespace

// ---- from the host

void Window::fingersBegan(const std::vector<Finger>& fingers) {
    const Life life = _life;
    rest();
    const bool isPen = std::ranges::any_of(
        fingers, [](const Finger& finger) { return finger.contact.kind == TouchKind::Pen; });
    if (isPen) {
        _hasSeenPen = true;
        _penTime = now();
        rejectPalms();
        if (life.expired()) return;
    }
    Touches landed;
    for (const Finger& finger : fingers) {
        if (const TouchRef touch = land(finger)) landed.push_back(touch);
    }
    deliver(TouchPhase::Began, landed, Touches(_touches));
    finishEvent(life);
}

void Window::fingersMoved(const std::vector<Finger>& fingers) {
    const Life life = _life;
    rest();
    Touches moved;
    for (const Finger& finger : fingers) {
        const TouchRef touch = touchWithId(finger.id);
        if (!touch || !isFinite(finger.location)) continue;
        touch->_contact = finger.contact;
        if (finger.location == touch->_location) continue;
        touch->_location = finger.location;
        touch->_time = now();
        touch->_phase = TouchPhase::Moved;
        if (!holds(moved, touch)) moved.push_back(touch);
    }
    rejectPalms();
    if (life.expired()) return;
    std::erase_if(moved, [](const TouchRef& touch) { return touch->_isRejected; });
    deliver(TouchPhase::Moved, moved, Touches(_touches));
    finishEvent(life);
}

void Window::fingerPredicted(std::int64_t id, const std::vector<gfx::Point>& places) {
    const Life life = _life;
    const TouchRef touch = touchWithId(id);
    const auto view = touch ? touch->view() : nullptr;
    if (!view || touch->_delivery != Touch::Delivery::Delivered) return;
    std::vector<gfx::Point> own;
    for (const gfx::Point place : places) {
        if (isFinite(place)) own.push_back(view->convertPointFrom(place, nullptr));
    }
    view->touchPredicted(*touch, own);
    finishEvent(life);
}

void Window::setModifiers(Modifiers modifiers) {
    if (modifiers == _modifiers) return;
    _modifiers = modifiers;
    const Life life = _life;
    rest();
    const Touches moved = _touches;
    for (const TouchRef& touch : moved) {
        touch->_time = now();
        touch->_phase = TouchPhase::Moved;
    }
    deliver(TouchPhase::Moved, moved, moved);
    finishEvent(life);
}

void Window::fingersEnded(const std::vector<Finger>& fingers) {
    const Life life = _life;
    rest();
    Touches ended;
    for (const Finger& finger : fingers) {
        const TouchRef touch = touchWithId(finger.id);
        if (!touch || holds(ended, touch)) continue;
        if (isFinite(finger.location)) touch->_location = finger.location;
        ended.push_back(touch);
    }
    lift(ended, TouchPhase::Ended);
    finishEvent(life);
}

void Window::fingersCancelled(const std::vector<Finger>& fingers) {
    const Life life = _life;
    rest();
    lift(filtered(_touches,
                  [&fingers](const TouchRef& touch) {
                      return fingers.empty() ||
                             std::ranges::find(fingers, touch->id(), &Finger::id) != fingers.end();
                  }),
         TouchPhase::Cancelled);
    finishEvent(life);
}

// Both in one event, so no host can use the finger's number meanwhile.
bool Window::tap(View& view) {
    const bool isHeld = std::ranges::any_of(
        _touches, [&view](const TouchRef& touch) { return touch->view().get() == &view; });
    if (view.window() != this || isHeld) return false;
    const Life life = _life;
    const gfx::Point middle = view.convertRectTo(view.bounds(), nullptr).center();
    const auto touch = std::make_shared<Touch>(tapNumber, middle, now());
    touch->_view = view.shared_from_this();
    rest();
    _touches.push_back(touch);
    deliver(TouchPhase::Began, {touch}, Touches(_touches));
    if (!life.expired() && holds(_touches, touch)) {
        rest();
        lift({touch}, TouchPhase::Ended);
    }
    finishEvent(life);
    return true;
}

void Window::pointerHovered(gfx::Point place) {
    const Life life = _life;
    _hover.moveTo(place);
    finishEvent(life);
}

void Window::pointerLeft() {
    const Life life = _life;
    _hover.leave();
    finishEvent(life);
}

bool Window::pointerScrolled(gfx::Point place, gfx::Point distance) {
    if (!isFinite(place) || !isFinite(distance) || !_touches.empty()) return false;
    const Life life = _life;
    bool isUsed = false;
    auto view = _root->hitTest(_root->convertPointFrom(place, nullptr));
    for (; view && !isUsed && !life.expired();
         view = view->superview() ? view->superview()->shared_from_this() : nullptr)
        isUsed = view->pointerScrolled(view->convertPointFrom(place, nullptr), distance);
    finishEvent(life);
    return isUsed;
}

void Window::perform(const std::function<void()>& work) {
    const Life life = _life;
    ++_performing;
    work();
    if (!life.expired()) --_performing;
    finishEvent(life);
}

void Window::cancelTouchesIn(const View& subtree) {
    lift(touchesWithin(subtree, _touches), TouchPhase::Cancelled);
}

void Window::takeTouches(const View& subtree) {
    const Touches all = _touches;
    sendCancelled(withhold(touchesWithin(subtree, all)), all);
}

// ---- touches

TouchRef Window::touchWithId(std::int64_t id) const {
    const auto found =
        std::ranges::find_if(_touches, [id](const TouchRef& touch) { return touch->_id == id; });
    return found == _touches.end() ? nullptr : *found;
}

// The new touch; null for a finger that is down already or lands on nothing.
TouchRef Window::land(const Finger& finger) {
    if (!isFinite(finger.location) || touchWithId(finger.id)) return nullptr;
    const auto view = _root->hitTest(_root->convertPointFrom(finger.location, nullptr));
    if (!view || isPalm(finger, *view)) return nullptr;
    auto touch = std::make_shared<Touch>(finger.id, finger.location, now(), finger.contact);
    touch->_view = view;
    const bool isFirst = std::ranges::none_of(
        _touches, [&view](const TouchRef& other) { return other->view() == view; });
    if (!isFirst && !view->isMultipleTouchEnabled()) {
        touch->_delivery = Touch::Delivery::Withheld;
    }
    _touches.push_back(touch);
    return touch;
}

bool Window::isPenNear() const {
    const bool isDown = std::ranges::any_of(
        _touches, [](const TouchRef& touch) { return touch->_contact.kind == TouchKind::Pen; });
    return isDown || (_hasSeenPen && now() - _penTime < penPause);
}

bool Window::isPalm(const Finger& finger, const View& view) const {
    const bool isFinger = finger.contact.kind == TouchKind::Finger;
    return isFinger && (isOfPalm(finger.contact) || isPenNear()) && rejectsPalms(&view);
}

// Those that were fingers at first: the hand comes down before its pen, and grows as it does.
void Window::rejectPalms() {
    const bool isPenHere = isPenNear();
    const Touches palms = filtered(_touches, [&](const TouchRef& touch) {
        const bool isFinger = touch->_contact.kind == TouchKind::Finger;
        return isFinger && (isPenHere || isOfPalm(touch->_contact)) &&
               rejectsPalms(touch->view().get());
    });
    for (const TouchRef& palm : palms)
        palm->_isRejected = true;
    lift(palms, TouchPhase::Cancelled);
}

// Every finger stands still until the host says otherwise.
void Window::rest() {
    for (const TouchRef& touch : _touches) {
        touch->_phase = TouchPhase::Stationary;
        touch->_previous = touch->_location;
    }
}

// Takes touches out of the window for good.
void Window::lift(const Touches& lifted, TouchPhase phase) {
    const Touches all = _touches;
    std::erase_if(_touches, [&lifted](const TouchRef& touch) { return holds(lifted, touch); });
    for (const TouchRef& touch : lifted) {
        if (touch->_contact.kind == TouchKind::Pen) _penTime = now();
        touch->_phase = phase;
        touch->_time = now();
    }
    deliver(phase, lifted, all);
    for (const TouchRef& touch : lifted)
        touch->_delivery = Touch::Delivery::Withheld;
}

// ---- delivery. `all` are the touches that are down and those that go with this event.

void Window::deliver(TouchPhase phase, const Touches& changed, const Touches& all) {
    if (changed.empty()) return;
    const Life life = _life;
    // Held until the end, whatever becomes of them meanwhile.
    const Views receivers = chainsOf(all);
    Touches taken;
    for (const auto& view : receivers) {
        std::ranges::move(feedRecognizers(*view, phase, changed, all), std::back_inserter(taken));
        if (life.expired()) return;
    }
    sendCancelled(taken, all);
    for (const auto& view : receivers) {
        if (!life.expired()) send(*view, phase, changed, all);
    }
}

// Returns the touches that a recogniser has now taken from views that know of them.
std::vector<TouchRef> Window::feedRecognizers(View& view, TouchPhase phase, const Touches& changed,
                                              const Touches& all) {
    const Life life = _life;
    Touches taken;
    std::vector<std::shared_ptr<GestureRecognizer>> recognizers = view.gestureRecognizers();
    std::stable_partition(recognizers.begin(), recognizers.end(),
                          [](const auto& recognizer) { return recognizer->isAwaited(); });
    for (const auto& recognizer : recognizers) {
        if (phase == TouchPhase::Began) recognizer->screen(touchesWithin(view, changed));
        const auto seenBy = [&](const Touches& touches) {
            return filtered(touchesWithin(view, touches),
                            [&](const TouchRef& touch) { return !recognizer->isRefused(touch); });
        };
        TouchEvent event{seenBy(changed), seenBy(all), now(), _modifiers};
        std::erase_if(event.touches,
                      [phase](const TouchRef& touch) { return touch->_phase != phase; });
        if (event.touches.empty() || recognizer->view() != &view) continue;
        const bool isRecognized = recognizer->feed(phase, event, seenBy(_touches));
        if (life.expired()) return taken;
        if (!isRecognized || !recognizer->cancelsTouches()) continue;
        std::ranges::move(withhold(event.allTouches), std::back_inserter(taken));
    }
    return taken;
}

// Returns those that a view knows of.
std::vector<TouchRef> Window::withhold(const Touches& touches) {
    Touches known;
    for (const TouchRef& touch : touches) {
        if (touch->_delivery == Touch::Delivery::Delivered) known.push_back(touch);
        touch->_delivery = Touch::Delivery::Withheld;
    }
    return known;
}

void Window::sendCancelled(const Touches& cancelled, const Touches& all) {
    for (const TouchRef& touch : cancelled)
        touch->_phase = TouchPhase::Cancelled;
    for (const auto& view : viewsOf(cancelled)) {
        const auto isOnView = [&view](const TouchRef& touch) { return touch->view() == view; };
        const TouchEvent event{
            filtered(cancelled, isOnView),
            filtered(all,
                     [&](const auto& touch) {
                         return isOnView(touch) &&
                                (touch->_delivery == Touch::Delivery::Delivered ||
                                 holds(cancelled, touch));
                     }),
            now(), _modifiers};
        view->touchesCancelled(event);
    }
}

void Window::send(View& view, TouchPhase phase, const Touches& changed, const Touches& all) {
    using Delivery = Touch::Delivery;
    const Delivery expected = phase == TouchPhase::Began ? Delivery::Pending : Delivery::Delivered;
    TouchEvent event;
    event.touches = filtered(changed, [&](const TouchRef& touch) {
        return touch->view().get() == &view && touch->_delivery == expected;
    });
    if (event.touches.empty()) return;
    for (const TouchRef& touch : event.touches)
        touch->_delivery = Delivery::Delivered;
    event.allTouches = filtered(all, [&](const TouchRef& touch) {
        return touch->view().get() == &view && touch->_delivery == Delivery::Delivered;
    });
    event.time = now();
    event.modifiers = _modifiers;
    tell(view, phase, event);
}

void Window::finishEvent(const Life& life) {
    if (!life.expired()) Environment::current().runLoop().drain();
    const auto window = life.lock();
    if (window && (*window)->_performing == 0) (*window)->display();
}

}  // namespace kalim::ui
