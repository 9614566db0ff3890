#pragma once

#include "kalimkit/gfx/Export.h"
#include "kalimkit/shapes/MDrawRect.h"

namespace kalim {

// The ellipse inscribed in the box. It is measured as a circle of half the box's width.
class KALIM_API MDrawEllipse : public MDrawRect {
public:
    static std::shared_ptr<MDrawEllipse> initWithStartPoint(gfx::Point start);
    static const ToolClass& Class();
    const ToolClass& toolClass() const override { return Class(); }

    // Moves that leave the ellipse within two points of flat are ignored.
    void drawMove(gfx::Point p) override;
    // Rectangular: the curve plays no part.
    bool hitTest(gfx::Point p) override;
    void drawContent(gfx::Context& context) override;
    void drawSlectedStateContent(gfx::Context& context) override;
    std::string measureText() const override;

protected:
    MDrawEllipse() = default;
};

}  // namespace kalim
