#pragma once

#include "kalimkit/gfx/Export.h"
#include "kalimkit/shapes/MDrawField.h"

namespace kalim {

// A box that darkens what lies under it by its colour, as a marker pen does.
class KALIM_API MDrawHighlighterBox : public MDrawField {
public:
    static std::shared_ptr<MDrawHighlighterBox> initWithStartPoint(gfx::Point start);
    static const ToolClass& Class();
    const ToolClass& toolClass() const override { return Class(); }

    void drawContent(gfx::Context& context) override;

protected:
    MDrawHighlighterBox() = default;
};

}  // namespace kalim
