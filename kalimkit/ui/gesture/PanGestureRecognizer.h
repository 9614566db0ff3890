#pragma once

#include <limits>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/gesture/GestureRecognizer.h"
#include "kalimkit/ui/gesture/VelocityTracker.h"

namespace kalim::ui {

// Fingers moving together. It begins once their middle has moved by the slop, and measures from
// where it began. A finger that joins or leaves moves the middle, but is no movement. More fingers
// than the maximum make it fail before it begins; later they are ignored. The gesture is over when
// fewer than the minimum are left.
class KALIM_API PanGestureRecognizer : public GestureRecognizer {
public:
    // Points that the middle of the fingers must move before the gesture begins.
    static constexpr double slop = 10;

    int minimumNumberOfTouches() const { return _minimum; }
    // A pan needs at least one.
    void setMinimumNumberOfTouches(int count);
    int maximumNumberOfTouches() const { return _maximum; }
    void setMaximumNumberOfTouches(int count) { _maximum = count; }

    // How far the fingers have moved since the gesture began, as an offset in the view's
    // coordinates; in those of the window for null. Setting it makes it count from there; an offset
    // that is not finite is ignored.
    gfx::Point translationIn(const View* view) const;
    void setTranslationIn(gfx::Point translation, const View* view);
    // Points per second; setting the translation does not touch it.
    gfx::Point velocityIn(const View* view) const;

    // Feeds the gesture directly, with a translation in window points. Ignored while disabled and
    // for a translation that is not finite.
    void drive(GestureState state, gfx::Point translation);

protected:
    void touchesBegan(const TouchEvent& event, const std::vector<TouchRef>& active) override;
    void touchesMoved(const TouchEvent& event, const std::vector<TouchRef>& active) override;
    void touchesEnded(const TouchEvent& event, const std::vector<TouchRef>& active) override;
    void touchesCancelled(const TouchEvent& event, const std::vector<TouchRef>& active) override;
    void willRecognize() override { _translation = {}; }
    void reset() override;

private:
    void follow(const std::vector<TouchRef>& active);
    void lose(GestureState outcome, const std::vector<TouchRef>& active);

    int _minimum = 1;
    int _maximum = std::numeric_limits<int>::max();
    // These fingers count, in the order of landing.
    std::vector<TouchRef> _fingers;
    // Their middle at the last event is in window points.
    gfx::Point _middle;
    // Window points: since the gesture began, or since the fingers were enough for it; and since
    // the first finger landed.
    gfx::Point _translation;
    gfx::Point _way;
    VelocityTracker<gfx::Point> _tracker;
};

}  // namespace kalim::ui
