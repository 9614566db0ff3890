#pragma once

#include <memory>
#include <vector>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Rect.h"
#include "kalimkit/ui/environment/KeyboardObserver.h"

namespace kalim::ui {

// What is known of the on-screen keyboard: the host tells its height, observers hear where it will
// be.
class KALIM_API Keyboard {
public:
    // For the host: the keyboard covers that height at the bottom of the area (a window's size),
    // points; 0 hides it. Ignored when nothing changes or when a value is negative or not finite.
    void setHeight(double height, gfx::Size area);
    // Hides the keyboard from the area it covered last.
    void hide() { setHeight(0, _area); }
    bool isShown() const { return _height > 0; }
    double height() const { return _height; }
    // Empty while it is hidden.
    gfx::Rect frame() const;

    // One that observes already is not added again. They are told in the order they came; those
    // that are gone are forgotten.
    void addObserver(std::weak_ptr<KeyboardObserver> observer);
    void removeObserver(const KeyboardObserver& observer);

private:
    bool observes(const KeyboardObserver& observer) const;

    double _height = 0;
    gfx::Size _area;
    std::vector<std::weak_ptr<KeyboardObserver>> _observers;
};

}  // namespace kalim::ui
