#pragma once

#include <cstdint>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/gesture/GestureRecognizer.h"

namespace kalim::ui {

// Short touches in one place. The gesture has no course: it goes from Possible to Ended when the
// last finger of the last tap leaves.
class KALIM_API TapGestureRecognizer : public GestureRecognizer {
public:
    // Points that a finger of a tap stays below, and seconds that the tap does.
    static constexpr double slop = 10;
    static constexpr double longest = 0.75;
    // Seconds from the end of a tap until the next must have begun, and points that it may be away
    // from the first.
    static constexpr double pause = 0.35;
    static constexpr double reach = 44;

    int numberOfTapsRequired() const { return _tapsRequired; }
    // A tap needs at least one.
    void setNumberOfTapsRequired(int count);
    // So many fingers tap together.
    int numberOfTouchesRequired() const { return _touchesRequired; }
    // A tap needs at least one.
    void setNumberOfTouchesRequired(int count);

protected:
    void touchesBegan(const TouchEvent& event, const std::vector<TouchRef>& active) override;
    void touchesMoved(const TouchEvent& event, const std::vector<TouchRef>& active) override;
    void touchesEnded(const TouchEvent& event, const std::vector<TouchRef>& active) override;
    void touchesCancelled(const TouchEvent& event, const std::vector<TouchRef>& active) override;
    void reset() override;
    bool awaitsFingers() const override { return _taps > 0 && state() == GestureState::Possible; }

private:
    struct Finger {
        TouchRef touch;
        // It is in window points.
        gfx::Point start;
    };

    bool isStraying() const;
    void completeTap();
    void failAfter(double seconds);
    void stopClock();

    int _tapsRequired = 1;
    int _touchesRequired = 1;
    int _taps = 0;
    // Of the present tap; those that have left stay until it is complete.
    std::vector<Finger> _fingers;
    bool _isLifting = false;
    // The middle of the first tap is in window points.
    gfx::Point _place;
    // The number of the scheduled failure; 0 stands for none.
    std::uint64_t _alarm = 0;
};

}  // namespace kalim::ui
