#pragma once

#include "kalimkit/gfx/Export.h"

namespace kalim {

// Who decides what the buttons of the crop tool bar do. It may let go of the bar meanwhile.
class KALIM_API EditImageCropToolBarDelegate {
public:
    virtual ~EditImageCropToolBarDelegate() = default;

    virtual void onCropToolBarCancelBtnClicked() = 0;
    virtual void onCropToolBarRevertBtnClicked() = 0;
    virtual void onCropToolBarDoneBtnClicked() = 0;
    virtual void onCropToolBarRotateBtnClicked() = 0;
};

}  // namespace kalim
