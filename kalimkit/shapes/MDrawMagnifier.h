#pragma once

#include <optional>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/shapes/MDrawRect.h"

namespace kalim {

// A circle that shows a place of the picture enlarged: its own, or another one, which is ringed
// then and joined to it by a thin line. What it enlarges is the picture as it is seen with all its
// patches, in its full resolution, without the shade and without what is drawn over it. A further
// handle, at the foot of the circle as long as it shows its own place, is dragged to another one
// and stays in the middle of it; dragged back into the circle's middle it shows its own again.
class KALIM_API MDrawMagnifier : public MDrawRect {
public:
    static std::shared_ptr<MDrawMagnifier> initWithStartPoint(gfx::Point start);
    static const ToolClass& Class();
    const ToolClass& toolClass() const override { return Class(); }

    // A circle from the corner where the finger came down.
    void drawMove(gfx::Point p) override;
    void drawUp(gfx::Point p) override;
    void limitValidFeatrue() override {}

    bool hitTest(gfx::Point p) override;
    // Keeps the circle one, and moves the place where its handle is dragged.
    void moveByOffsetEndPoint(gfx::Point offset, gfx::Point end) override;
    void mapPoints(const PointMap& map) override;

    void drawContent(gfx::Context& context) override;
    void drawSlectedStateContent(gfx::Context& context) override;
    void drawContentHandle(gfx::Context& context) override;
    std::optional<gfx::Rect> repeatedPlace() const override;
    void setGround(ToolGround* ground) override { _ground = ground; }

    Feature getFeature() const override;
    void setFeature(const FeatureRef& feature) override;
    ToolDetails details() const override;
    bool takeDetail(std::string_view name, const ToolDetailValue& value) override;

    std::string measureText() const override { return {}; }

    // The middle of what is shown, a canvas point; nothing while that is the circle's own.
    const std::optional<gfx::Point>& place() const { return _place; }

protected:
    MDrawMagnifier() = default;
    MoveDirection handleAt(gfx::Point p) override;

private:
    double radius() const;
    gfx::Point middle() const { return frame().center(); }
    gfx::Point placeHandle() const;
    void makeRound(gfx::Point& moved, gfx::Point fixed) const;
    // Makes the box a square by the side that an edge was dragged to.
    void fitAcross(double side);
    void fitDown(double side);
    void drawPlace(gfx::Context& context) const;
    void drawEnlarged(gfx::Context& context) const;

    std::optional<gfx::Point> _place;
    ToolGround* _ground = nullptr;
};

}  // namespace kalim
