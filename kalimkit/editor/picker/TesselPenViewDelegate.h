#pragma once

#include "kalimkit/gfx/Export.h"

namespace kalim {

// Hears of taps on the pen button.
class KALIM_API TesselPenViewDelegate {
public:
    virtual ~TesselPenViewDelegate() = default;

    // The number that it returns is of no use to the button.
    virtual int clickAtPenView() = 0;
};

}  // namespace kalim
