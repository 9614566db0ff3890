#pragma once

#include "kalimkit/crop/CropBoard.h"
#include "kalimkit/crop/CropHand.h"
#include "kalimkit/crop/CropOpening.h"
#include "kalimkit/crop/CropTurns.h"
#include "kalimkit/crop/EditImageIntialView.h"

namespace kalim {

// What the crop editor is put together from. Each part has its state and what can be done with it;
// the view passes on to them what comes from the outside.
struct EditImageIntialView::Parts {
    explicit Parts(ui::View& view) : board(view) {}

    CropBoard board;
    CropHand hand{board};
    CropTurns turns{board};
    CropOpening opening{board, turns, hand};
};

}  // namespace kalim
