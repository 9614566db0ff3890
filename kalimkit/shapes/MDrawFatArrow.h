#pragma once

#include "kalimkit/gfx/Export.h"
#include "kalimkit/shapes/MDrawLine.h"

namespace kalim {

// A broad block arrow whose tip is the start point. All its proportions follow from its length; the
// line width plays no part.
class KALIM_API MDrawFatArrow : public MDrawLine {
public:
    static std::shared_ptr<MDrawFatArrow> initWithStartPoint(gfx::Point start);
    static const ToolClass& Class();
    const ToolClass& toolClass() const override { return Class(); }

    // Tests the point as given, not inverted, against the frame.
    bool hitTest(gfx::Point p) override;
    void drawContent(gfx::Context& context) override;
    void drawContentHandle(gfx::Context& context) override;

protected:
    MDrawFatArrow() = default;
};

}  // namespace kalim
