#pragma once

#include "kalimkit/gfx/Export.h"
#include "kalimkit/shapes/MDrawPolyline.h"

namespace kalim {

// Two arms meeting in the second of three vertices, with a small arc between them; measures the
// angle from the first arm to the last. The third vertex finishes it.
class KALIM_API MDrawAngle : public MDrawPolyline {
public:
    static std::shared_ptr<MDrawAngle> initWithStartPoint(gfx::Point start);
    static const ToolClass& Class();
    const ToolClass& toolClass() const override { return Class(); }

    // Adds a vertex unless it lies on the first one. Does nothing once finished.
    void drawUp(gfx::Point p) override;
    void drawContent(gfx::Context& context) override;
    // Tells degrees from 0 to 360, without a unit; empty with fewer than three vertices.
    std::string measureText() const override;

protected:
    MDrawAngle() = default;
    void init() override;
    std::size_t leastVertices() const override { return 3; }
    bool hasAllVertices() const { return _points.size() >= 3; }
};

}  // namespace kalim
