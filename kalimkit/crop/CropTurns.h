#pragma once

#include <cstdint>
#include <functional>

#include "kalimkit/crop/CropBoard.h"

namespace kalim {

// Quarter turns of the picture under the frame, and their taking back. Until a turn ends the old
// picture is shown turned; then a turned one takes its place, to the point. Meanwhile the bar is
// locked.
class CropTurns {
public:
    using Completion = std::function<void(bool finished)>;

    explicit CropTurns(CropBoard& board) : _board(board) {}

    // Crop mode begins with the picture as it was confirmed last, and the bar locked.
    void begin();
    // See EditImageIntialView::rotateImageToOrientationWithAnimationCompletion.
    void turnTo(std::int32_t orientation, bool animated, Completion completion);
    // Turns by quarters of a circle, -1, 1 or 2, to where that share is under the frame.
    void turnBy(std::int32_t quarterTurns, const gfx::Rect& share, bool animated,
                Completion completion);
    bool isLocked() const { return _isLocked; }
    void setIsLocked(bool locked) { _isLocked = locked; }

    // ---- leaving
    // The turns of this session stay.
    void commit();
    // To what was confirmed last.
    void takeBack();
    // To what the session began with.
    void takeAllBack();

private:
    CropPlacement placementAfter(std::int32_t quarterTurns, const gfx::Rect& share) const;
    void anchorAt(gfx::Point p);
    void show(std::int32_t quarterTurns, const CropPlacement& placement, double scale);
    void finish(std::int32_t quarterTurns, const gfx::Rect& share);

    CropBoard& _board;
    bool _isLocked = false;
};

}  // namespace kalim
