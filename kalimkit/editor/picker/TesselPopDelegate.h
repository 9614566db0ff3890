#pragma once

#include <memory>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/theme/TesselConfig.h"

namespace kalim {

class TesselPopView;

// Hears what is chosen in a row of dots.
class KALIM_API TesselPopDelegate {
public:
    virtual ~TesselPopDelegate() = default;

    // A dot of an unfolded row was tapped; the row has selected it.
    virtual void clickDotWithConfig(const std::shared_ptr<TesselConfig>& config) = 0;
    // Comes for any tap on a row, after the message of the dot.
    virtual void clickAtPop(TesselPopView& row) = 0;
};

}  // namespace kalim
