#include <algorithm>

#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/gesture/GestureRecognizer.h"
#include "kalimkit/ui/view/View.h"

// A gesture that is recognised first takes its new state, so that whatever follows sees it as the
// winner; then its rivals and those that waited for its failure fail; the handler comes last, for
// it may do anything.

namespace kalim::ui {

void GestureRecognizer::requireToFail(const std::shared_ptr<GestureRecognizer>& other) {
    if (!other || other.get() == this) return;
    _required.push_back(other);
    other->_dependents.push_back(weak_from_this());
}

void GestureRecognizer::recognize(GestureState state) {
    const auto alive = weak_from_this().lock();
    if (_state != GestureState::Possible) return;
    switch (chance()) {
        case Chance::Lost:
            return fail();
        case Chance::Waits:
            _wanted = state;
            return;
        case Chance::Free:
            break;
    }
    willRecognize();
    _wanted.reset();
    _isWatching = false;
    _state = state;
    exclude();
    if (!_isFed && _cancelsTouches) takeTouchesLater();
    tellHandler();
    // The window still asks about what is recognised from its events.
    if (!_isFed) settle();
}

void GestureRecognizer::fail() {
    const auto alive = weak_from_this().lock();
    if (_state != GestureState::Possible) return;
    _wanted.reset();
    _state = GestureState::Failed;
    concede();
    _isWatching = false;
    settle();
}

void GestureRecognizer::concede() {
    _isWatching = false;
    for (const auto& dependent : dependents()) {
        if (dependent->_wanted) dependent->recognize(*dependent->_wanted);
    }
    _isWatching = true;
}

// The others that see its touches: those of the touched views and of all above them.
GestureRecognizer::Recognizers GestureRecognizer::rivals() const {
    Recognizers found;
    for (const auto& touched : _touched) {
        const auto held = touched.lock();
        for (const View* view = held.get(); view; view = view->superview()) {
            for (const auto& other : view->gestureRecognizers()) {
                if (other.get() != this && std::ranges::find(found, other) == found.end())
                    found.push_back(other);
            }
        }
    }
    return found;
}

bool GestureRecognizer::goesWith(const GestureRecognizer& other) const {
    if (_recognizesSimultaneously || other._recognizesSimultaneously) return true;
    const auto own = _delegate.lock();
    if (own && own->shouldRecognizeSimultaneouslyWith(*this, other).value_or(false)) return true;
    const auto theirs = other._delegate.lock();
    return theirs && theirs->shouldRecognizeSimultaneouslyWith(other, *this).value_or(false);
}

GestureRecognizer::Chance GestureRecognizer::chance() const {
    if (!view() || !view()->window()) return Chance::Lost;
    for (const auto& other : rivals()) {
        if (other->isUnderWay() && !goesWith(*other)) return Chance::Lost;
    }
    Chance chance = Chance::Free;
    for (const auto& required : _required) {
        const auto other = required.lock();
        if (!other) continue;
        if (other->isUnderWay() || other->_state == GestureState::Ended) return Chance::Lost;
        if (other->_isWatching) chance = Chance::Waits;
    }
    return chance;
}

void GestureRecognizer::exclude() {
    for (const auto& other : rivals()) {
        if (other->_isWatching && !goesWith(*other)) other->fail();
    }
    for (const auto& dependent : dependents()) {
        if (dependent->_isWatching) dependent->fail();
    }
}

// The window takes the touches of what was recognised from an event of its own. What was recognised
// besides, by the clock or by the failure of another, asks for them once the event is through.
void GestureRecognizer::takeTouchesLater() {
    Environment::current().runLoop().async([watch = weak_from_this()] {
        const auto recognizer = watch.lock();
        if (!recognizer || !recognizer->isUnderWay() || !recognizer->view()) return;
        recognizer->view()->takeTouches();
    });
}

GestureRecognizer::Recognizers GestureRecognizer::dependents() const {
    Recognizers found;
    for (const auto& dependent : _dependents) {
        if (auto held = dependent.lock()) found.push_back(std::move(held));
    }
    return found;
}

}  // namespace kalim::ui
