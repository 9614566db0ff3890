#include "kalimkit/ui/environment/Keyboard.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace kalim::ui {

void Keyboard::setHeight(double height, gfx::Size area) {
    const bool isValid = std::isfinite(height) && height >= 0 && std::isfinite(area.width) &&
                         std::isfinite(area.height);
    if (!isValid || (height == _height && (height == 0 || area == _area))) return;
    const double before = std::exchange(_height, height);
    _area = area;
    const gfx::Rect hidden(0, area.height, area.width, before);
    // A copy: observers may come and go when they are told.
    const auto observers = _observers;
    for (const auto& weak : observers) {
        const auto observer = weak.lock();
        // One that was told before it may have taken it off the list.
        if (!observer || !observes(*observer)) continue;
        if (height > 0) {
            observer->keyboardWillShow({0, area.height - height, area.width, height});
        } else {
            observer->keyboardWillHide(hidden);
        }
    }
}

gfx::Rect Keyboard::frame() const {
    if (!isShown()) return {};
    return {0, _area.height - _height, _area.width, _height};
}

void Keyboard::addObserver(std::weak_ptr<KeyboardObserver> observer) {
    std::erase_if(_observers, [](const auto& weak) { return weak.expired(); });
    const auto added = observer.lock();
    if (added && !observes(*added)) _observers.push_back(std::move(observer));
}

void Keyboard::removeObserver(const KeyboardObserver& observer) {
    std::erase_if(_observers, [&](const auto& weak) { return weak.lock().get() == &observer; });
}

bool Keyboard::observes(const KeyboardObserver& observer) const {
    return std::ranges::any_of(_observers,
                               [&](const auto& weak) { return weak.lock().get() == &observer; });
}

}  // namespace kalim::ui
