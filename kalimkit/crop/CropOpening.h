#pragma once

#include <memory>
#include <optional>

#include "kalimkit/crop/CropBoard.h"
#include "kalimkit/crop/CropHand.h"
#include "kalimkit/crop/CropTurns.h"

namespace kalim {

// The beginning of crop mode: the picture glides from where whoever opened the editor shows it into
// the middle of the content, and only then is there a frame to drag.
class CropOpening {
public:
    CropOpening(CropBoard& board, CropTurns& turns, CropHand& hand)
        : _board(board), _turns(turns), _hand(hand) {}

    // Shows a picture where it is seen, coordinates of the view; nothing for where it fits.
    void show(const gfx::ImageRef& image, const std::optional<gfx::Rect>& seen);
    // The frame is where the picture is seen at first.
    void begin(const gfx::Rect& frame, std::weak_ptr<EditImageCropToolBarDelegate> barDelegate,
               std::weak_ptr<ui::GestureDelegate> panDelegate);
    // Some time has passed since.
    bool isReady() const { return _isReady; }

private:
    void glide();
    void enterCropMode();

    CropBoard& _board;
    CropTurns& _turns;
    CropHand& _hand;
    std::weak_ptr<ui::GestureDelegate> _panDelegate;
    bool _isReady = false;
};

}  // namespace kalim
