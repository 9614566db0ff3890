#pragma once

#include "kalimkit/gfx/Export.h"
#include "kalimkit/shapes/MDrawLine.h"
#include "kalimkit/shapes/outline/CurvedArrowOutline.h"

namespace kalim {

// A filled, tapered arrow with a shadow. Its tip is the end point; other heads, a bend and dashes
// are properties. Rotation turns its points, not the drawing context, and it never shows a
// measurement.
class KALIM_API MDrawArrow : public MDrawLine {
public:
    static std::shared_ptr<MDrawArrow> initWithStartPoint(gfx::Point start);
    static const ToolClass& Class();
    const ToolClass& toolClass() const override { return Class(); }

    bool isDrawVaild() const override;
    // Also stretches an arrow whose end was dragged too close, away from the end that stays.
    void limitValidFeatrue() override;
    // An arrow that is too short for its width is stretched about its tail, as if its tip had been
    // let go there.
    void growToLineWidth() override;
    gfx::Rect frameIncludeLineWidth() const override;
    // Empty until a plain arrow has been drawn once.
    bool hitTest(gfx::Point p) override;
    // A handle in the middle bends the arrow.
    void moveByOffsetEndPoint(gfx::Point offset, gfx::Point end) override;

    void drawContent(gfx::Context& context) override;
    void drawSlectedStateContent(gfx::Context& context) override;
    void drawContentHandle(gfx::Context& context) override;

    bool isRotateByRotateCtx() const override { return false; }
    std::string measureText() const override { return {}; }

    // Tail thickness by line width; 0, a pointed tail, for a width that is none of the five pens'.
    double getTailWidth() const;
    // Yields half the width of the head's base, in canvas points.
    double getArrowBottomHalfWidth() const;

protected:
    MDrawArrow() = default;
    MoveDirection handleAt(gfx::Point p) override;

private:
    // Straight and whole, with one head at its end: the arrow that it is without a choice.
    bool isPlain() const;
    CurvedArrow shape() const;
    bool hasMiddleHandle() const;
    // Of the curve, canvas points.
    gfx::Point middle() const;
    double keptLength() const;
    gfx::AffineTransform localFrame() const;
    gfx::Path outline() const;

    // The arrow's local frame (tip at the origin, positive x towards the start point) to the
    // tool's, and the hit area in that frame, both as last drawn.
    gfx::AffineTransform _transform;
    gfx::Rect _hitRect;
};

}  // namespace kalim
