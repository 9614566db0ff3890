#pragma once

#include "kalimkit/gfx/Export.h"

namespace kalim {

// Hears of drawing on the picture that is edited.
class KALIM_API EditImageOperationDelegate {
public:
    virtual ~EditImageOperationDelegate() = default;

    virtual void editImageViewDidStartDraw() {}
    virtual void editImageViewdidEndDraw() {}
};

}  // namespace kalim
