#pragma once

#include <optional>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/gesture/TwoFingerGestureRecognizer.h"

namespace kalim::ui {

// Two fingers turning about each other. It begins once the line between them has turned by more
// than the slop, and measures from where it began.
class KALIM_API RotationGestureRecognizer : public TwoFingerGestureRecognizer {
public:
    // Radians that the fingers must turn before the gesture begins.
    static constexpr double slop = 0.05;

    // Radians since the gesture began, positive from the x axis towards the y axis (clockwise as
    // seen); counts on past a half turn.
    double rotation() const { return _rotation; }

    // Feeds the gesture directly, for hosts that get whole gestures from their platform and for
    // scenarios: sets the rotation, enters the state and tells the handler. Ignored while disabled
    // and for a rotation that is not finite.
    void drive(GestureState state, double rotation);

protected:
    void fingersFound() override;
    void fingersMoved() override;
    void willRecognize() override { _rotation = 0; }
    void reset() override;

private:
    std::optional<double> angle() const;

    double _rotation = 0;
    // Of the line from the first to the second finger in the window, radians; nothing while the two
    // have only been in one place.
    std::optional<double> _lastAngle;
};

}  // namespace kalim::ui
