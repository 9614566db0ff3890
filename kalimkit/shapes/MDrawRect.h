#pragma once

#include <cstdint>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/shapes/MDrawLine.h"

namespace kalim {

// A rectangle spanned by the two points is outlined (drawType 0 and 2) or filled (1) and has a
// handle at each corner. Every box-shaped tool derives from it.
class KALIM_API MDrawRect : public MDrawLine {
public:
    static std::shared_ptr<MDrawRect> initWithStartPoint(gfx::Point start);
    static const ToolClass& Class();
    const ToolClass& toolClass() const override { return Class(); }

    // The canvas has set the start point already.
    void drawDown(gfx::Point) override {}
    // Finalizes whether the box is valid or not, unlike a line.
    void drawUp(gfx::Point p) override;
    // A valid box has at least 20 points from corner to corner.
    bool isDrawVaild() const override;
    // Also keeps both sides at least three points longer than the line is wide.
    void limitValidFeatrue() override;

    // A band along the outline, or the whole box where it is filled or small.
    bool hitTest(gfx::Point p) override;
    void moveByOffsetEndPoint(gfx::Point offset, gfx::Point end) override;
    void stopMoveHandle() override;

    void drawContent(gfx::Context& context) override;
    void drawSlectedStateContent(gfx::Context& context) override;
    void drawContentHandle(gfx::Context& context) override;

    using MDrawTool::drawType;
    void setDrawType(std::uint64_t drawType) override { _drawType = drawType; }
    // The corner radius is points and not clamped to the box.
    std::int32_t rectArcRadius() const { return _rectArcRadius; }
    void setRectArcRadius(std::int32_t radius) { _rectArcRadius = radius; }
    // Kept here for the shapes that fill with a mask; the rectangle itself does not use it.
    const gfx::ColorRef& maskColor() const { return _maskColor; }
    void setMaskColor(gfx::ColorRef color) { _maskColor = std::move(color); }
    std::string measureText() const override;
    ToolDetails keptDetails() const override;
    bool takeDetail(std::string_view name, const ToolDetailValue& value) override;

protected:
    MDrawRect() = default;
    void init() override;
    // Each handle test first normalises the points to the top-left and bottom-right corners.
    MoveDirection handleAt(gfx::Point p) override;
    // The corner radius of the kind, where nobody has set another.
    virtual std::int32_t usualArcRadius() const { return 0; }
    // Whether a point of the unrotated frame is on the handle at that corner of the box.
    bool isOnCorner(gfx::Point own, MoveDirection corner, const gfx::Rect& box) const;
    // Whether a finger in the middle hits it: it is filled, by its style or with a colour.
    bool isArea() const;
    // Fills with the chosen colour, then strokes and fills as drawType says. After style 2's stroke
    // the fill finds no path any more; deliberate.
    void paintOutline(gfx::Context& context, const gfx::Path& outline) const;

private:
    std::int32_t _rectArcRadius = 0;
    gfx::ColorRef _maskColor;
};

}  // namespace kalim
