#pragma once

#include <optional>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/shapes/MDrawText.h"

namespace kalim {

// A text in a bubble of the tool's colour, with a tail that points at something. The box of the two
// points is the text's; its lines break in it, and it is as high as they need. The bubble lies
// around it.
class KALIM_API MDrawCallout : public MDrawText {
public:
    static std::shared_ptr<MDrawCallout> initWithStartPoint(gfx::Point start);
    static const ToolClass& Class();
    const ToolClass& toolClass() const override { return Class(); }

    // ---- creation: the bubble lies where the finger came down, the tail ends where it lifts. A
    // tap leaves a short tail.
    void drawMove(gfx::Point p) override;
    void drawUp(gfx::Point p) override;
    // The last point is the tail's tip, the one before the box's far corner if there are two.
    void drawThrough(std::span<const gfx::Point> points) override;

    // ---- the tail
    // A canvas point.
    gfx::Point tailTip() const;
    void setTailTip(gfx::Point tip) { _tail = tip; }

    // ---- hit testing and dragging
    gfx::Rect frameIncludeLineWidth() const override;
    bool hitTest(gfx::Point p) override;
    // The bottom-right handle breaks the lines anew and leaves their size.
    void moveByOffsetEndPoint(gfx::Point offset, gfx::Point end) override;
    gfx::Point tryMovePointEndPoint(gfx::Point p1, gfx::Point p2) override;
    void mapPoints(const PointMap& map) override;

    void drawContent(gfx::Context& context) override;
    void drawSlectedStateContent(gfx::Context& context) override;
    void drawContentHandle(gfx::Context& context) override;

    std::string measureText() const override { return {}; }
    Feature getFeature() const override;
    void setFeature(const FeatureRef& feature) override;
    ToolDetails details() const override;
    ToolDetails keptDetails() const override;
    bool takeDetail(std::string_view name, const ToolDetailValue& value) override;

protected:
    MDrawCallout() = default;
    MoveDirection handleAt(gfx::Point p) override;
    gfx::ColorRef textColor() const override;
    gfx::ColorRef fieldColor() const override { return nullptr; }
    bool shrinksToWords() const override { return true; }

private:
    static constexpr auto tailHandle = MoveDirection::Start;

    // In the unturned frame, canvas points.
    gfx::Rect textBox() const;
    gfx::Rect bubble() const;
    gfx::Path outline() const;
    void fitHeight();

    // Nothing while nobody has said where; below the bubble then.
    std::optional<gfx::Point> _tail;
};

}  // namespace kalim
