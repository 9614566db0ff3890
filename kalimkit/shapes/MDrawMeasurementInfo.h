#pragma once

#include <memory>

#include "kalimkit/canvas/model/MDrawTool.h"
#include "kalimkit/canvas/model/MeasurementLabel.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Rect.h"

namespace kalim {

// The label above a measured shape: its text on a half-transparent white plate, centred over the
// shape's unrotated frame and not clamped to the canvas. It shows nothing once its tool is gone.
class KALIM_API MDrawMeasurementInfo : public MeasurementLabel {
public:
    static std::unique_ptr<MDrawMeasurementInfo> initWithTool(std::weak_ptr<const MDrawTool> tool);

    void drawContent(gfx::Context& context) override;
    // Where a text of that size stands for a tool with that frame, canvas points.
    static gfx::Rect calculateTextFrameWithTextSizeForToolFrame(gfx::Size size,
                                                                const gfx::Rect& toolFrame);

    std::shared_ptr<const MDrawTool> tool() const { return _tool.lock(); }

private:
    explicit MDrawMeasurementInfo(std::weak_ptr<const MDrawTool> tool) : _tool(std::move(tool)) {}

    std::weak_ptr<const MDrawTool> _tool;
};

}  // namespace kalim
