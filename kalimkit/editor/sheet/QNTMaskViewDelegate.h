#pragma once

#include "kalimkit/gfx/Export.h"

namespace kalim {

// Hears when the mask is touched.
class KALIM_API QNTMaskViewDelegate {
public:
    virtual ~QNTMaskViewDelegate() = default;

    virtual void clickAtMaskView() = 0;
};

}  // namespace kalim
