#pragma once

#include <memory>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/theme/TesselConfig.h"

namespace kalim {

// The row that a dot is in.
class KALIM_API TesselDotDelegate {
public:
    virtual ~TesselDotDelegate() = default;

    // A finger has landed on the dot with this tag.
    virtual void clickDotWithConfigIndex(const std::shared_ptr<TesselConfig>& config,
                                         int index) = 0;
    virtual int currentSelectedIndex() const = 0;
};

}  // namespace kalim
