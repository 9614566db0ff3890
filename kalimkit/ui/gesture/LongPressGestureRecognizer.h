#pragma once

#include <cstdint>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/gesture/GestureRecognizer.h"

namespace kalim::ui {

// One finger resting. The gesture begins by the run loop's clock while the finger is down, changes
// as it moves after that, and ends when it leaves. A second finger before that makes it fail.
class KALIM_API LongPressGestureRecognizer : public GestureRecognizer {
public:
    // The duration is seconds, at least 0.
    double minimumPressDuration() const { return _duration; }
    void setMinimumPressDuration(double seconds);
    // Points that the finger may stray before the gesture begins.
    double allowableMovement() const { return _allowableMovement; }
    void setAllowableMovement(double points) { _allowableMovement = points; }

protected:
    void touchesBegan(const TouchEvent& event, const std::vector<TouchRef>& active) override;
    void touchesMoved(const TouchEvent& event, const std::vector<TouchRef>& active) override;
    void touchesEnded(const TouchEvent& event, const std::vector<TouchRef>& active) override;
    void touchesCancelled(const TouchEvent& event, const std::vector<TouchRef>& active) override;
    void reset() override;

private:
    void lose(GestureState outcome, const std::vector<TouchRef>& active);
    void stopClock();

    double _duration = 0.5;
    double _allowableMovement = 10;
    TouchRef _finger;
    // It is in window points.
    gfx::Point _start;
    // The number of the scheduled beginning; 0 stands for none.
    std::uint64_t _alarm = 0;
};

}  // namespace kalim::ui
