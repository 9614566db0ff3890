#pragma once

#include "kalimkit/gfx/Export.h"
#include "kalimkit/shapes/MDrawAngle.h"

namespace kalim {

// A curve that measures: drawn from the start point to the touch-up, bent by the vertex between
// them. The first touch-up finishes it; until then nothing of it shows. Under forgiving rules the
// second says where it passes: it is seen meanwhile.
class KALIM_API MDrawArc : public MDrawAngle {
public:
    static std::shared_ptr<MDrawArc> initWithStartPoint(gfx::Point start);
    static const ToolClass& Class();
    const ToolClass& toolClass() const override { return Class(); }

    // Adds the point halfway from the start point and the point itself. Under forgiving rules it is
    // straight until a point follows that its middle lies on.
    void drawUp(gfx::Point p) override;
    bool takeBackPoint() override;
    // Under forgiving rules that of the curve, beyond which its vertex lies.
    gfx::Rect shownFrame() const override;
    // The line is 3 points wide, whatever lineWidth says, except under forgiving rules.
    void drawContent(gfx::Context& context) override;
    void drawContentHandle(gfx::Context& context) override;
    // Tells the curve's length and its ends' distance; empty with fewer than three vertices.
    std::string measureText() const override;

protected:
    MDrawArc() = default;

private:
    gfx::Point vertexFor(gfx::Point middle) const;
};

}  // namespace kalim
