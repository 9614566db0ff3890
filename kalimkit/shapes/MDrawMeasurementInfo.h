#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Rect.h"
#include "kalimkit/gfx/text/TextLayout.h"
#include "kalimkit/tool/MDrawTool.h"
#include "kalimkit/tool/MeasurementLabel.h"

namespace kalim {

// The label above a measured shape: its text on a half-transparent white plate, centred over the
// shape's unrotated frame, upright as the shape was made, and not clamped to the canvas. It shows
// nothing once its tool is gone.
class KALIM_API MDrawMeasurementInfo : public MeasurementLabel {
public:
    // A label without a tool is a mistake of the caller: raises "InitException", and answers null
    // where that returns.
    static std::unique_ptr<MDrawMeasurementInfo> init();
    static std::unique_ptr<MDrawMeasurementInfo> initWithTool(std::weak_ptr<const MDrawTool> tool);

    void drawContent(gfx::Context& context) override;
    // The plate that drawContent() would fill, canvas points; empty when there is nothing to show.
    gfx::Rect labelExtent() const;
    // Where a text of that size stands for a tool with that frame, canvas points.
    static gfx::Rect calculateTextFrameWithTextSizeForToolFrame(gfx::Size size,
                                                                const gfx::Rect& toolFrame);

    std::shared_ptr<const MDrawTool> tool() const { return _tool.lock(); }

private:
    explicit MDrawMeasurementInfo(std::weak_ptr<const MDrawTool> tool) : _tool(std::move(tool)) {}

    // The text of the moment, laid out; null when there is none.
    const gfx::TextLayout* layout() const;
    gfx::Rect textFrame(const gfx::TextLayout& layout) const;

    std::weak_ptr<const MDrawTool> _tool;
    // Kept while the text stays the same, since measuring is costly.
    mutable std::optional<gfx::TextLayout> _layout;
    // What the kept one was measured by.
    mutable const gfx::Device* _device = nullptr;
};

}  // namespace kalim
