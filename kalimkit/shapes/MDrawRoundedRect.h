#pragma once

#include "kalimkit/gfx/Export.h"
#include "kalimkit/shapes/MDrawRect.h"

namespace kalim {

// A rectangle whose corners are rounded by 15 points.
class KALIM_API MDrawRoundedRect : public MDrawRect {
public:
    static std::shared_ptr<MDrawRoundedRect> initWithStartPoint(gfx::Point start);
    static const ToolClass& Class();
    const ToolClass& toolClass() const override { return Class(); }

protected:
    MDrawRoundedRect() = default;
    void init() override;
    std::int32_t usualArcRadius() const override { return 15; }
};

}  // namespace kalim
