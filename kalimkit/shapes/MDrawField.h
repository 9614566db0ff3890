#pragma once

#include "kalimkit/gfx/Export.h"
#include "kalimkit/shapes/MDrawRect.h"

namespace kalim {

// A box that has no line: the base of those that change what lies in them. It is hit anywhere, and
// no side is too short for the width of a pen.
class KALIM_API MDrawField : public MDrawRect {
public:
    static const ToolClass& Class();
    const ToolClass& toolClass() const override { return Class(); }

    // Longer than 5 points from corner to corner, and not flat.
    bool isDrawVaild() const override;
    void limitValidFeatrue() override {}
    bool hitTest(gfx::Point p) override;
    gfx::Polygon area() const override;
    std::string measureText() const override { return {}; }

protected:
    MDrawField() = default;
    double reachBeyondFrame() const override { return 0; }
};

}  // namespace kalim
