#pragma once

#include <optional>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/gesture/TwoFingerGestureRecognizer.h"
#include "kalimkit/ui/gesture/VelocityTracker.h"

namespace kalim::ui {

// Two fingers spreading or closing. It begins once their distance has changed by the slop, and
// measures from where it began; locationIn() is the point between them. Fingers closer than a point
// count as a point apart.
class KALIM_API PinchGestureRecognizer : public TwoFingerGestureRecognizer {
public:
    // Points that the fingers' distance must change before the gesture begins.
    static constexpr double slop = 8;

    // Divides the fingers' distance by that at the beginning; always above 0.
    double scale() const { return _scale; }
    // What the present distance is to stand for; later changes multiply it. A scale that is not a
    // positive number is ignored.
    void setScale(double scale);
    // Of the distance ratio since the beginning, per second; setScale() does not touch it.
    double velocity() const;

    // Feeds the gesture directly, as fingers would around a point of window coordinates, the middle
    // of its view by default. Ignored while disabled and for a scale that is not a positive number.
    void drive(GestureState state, double scale, std::optional<gfx::Point> focus = std::nullopt);

protected:
    void fingersFound() override;
    void fingersMoved() override;
    void willRecognize() override;
    void reset() override;

private:
    double distance() const;

    double _scale = 1;
    // Points: when the fingers were found or the gesture began, at the last move, and when the
    // scale was as set.
    double _startDistance = 1;
    double _lastDistance = 1;
    double _setDistance = 1;
    double _setScale = 1;
    // It follows the distance.
    VelocityTracker<double> _tracker;
};

}  // namespace kalim::ui
