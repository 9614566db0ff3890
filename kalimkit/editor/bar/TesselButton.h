#pragma once

#include <memory>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/control/Button.h"

namespace kalim {

// A button that takes touches a little beside its bounds too.
class KALIM_API TesselButton : public ui::Button {
public:
    // So many points around the bounds count as the button.
    static constexpr double touchMargin = 10;

    static std::shared_ptr<TesselButton> initWithFrame(const gfx::Rect& frame);

    bool pointInside(gfx::Point p) const override;

protected:
    TesselButton() = default;
};

}  // namespace kalim
