#pragma once

#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/gesture/GestureRecognizer.h"

namespace kalim::ui {

// What two fingers do to each other. The first two fingers count, others are ignored; the gesture
// is over when one of the two leaves.
class KALIM_API TwoFingerGestureRecognizer : public GestureRecognizer {
protected:
    // The two have just been found.
    virtual void fingersFound() = 0;
    // One of the two has moved.
    virtual void fingersMoved() = 0;
    // Leads from the first to the second finger, in window points.
    gfx::Point line() const;

    void touchesBegan(const TouchEvent& event, const std::vector<TouchRef>& active) override;
    void touchesMoved(const TouchEvent& event, const std::vector<TouchRef>& active) override;
    void touchesEnded(const TouchEvent& event, const std::vector<TouchRef>& active) override;
    void touchesCancelled(const TouchEvent& event, const std::vector<TouchRef>& active) override;
    void reset() override;

private:
    void track(const std::vector<TouchRef>& active);
    void lose(GestureState outcome, const std::vector<TouchRef>& active);
    void locate();

    // Both are there or neither.
    TouchRef _first;
    TouchRef _second;
};

}  // namespace kalim::ui
