#pragma once

#include "kalimkit/gfx/Export.h"
#include "kalimkit/shapes/MDrawText.h"

namespace kalim {

// A text that shows eight handles. As with any text, only the bottom-right one can be dragged.
class KALIM_API MDrawComment : public MDrawText {
public:
    static std::shared_ptr<MDrawComment> initWithStartPoint(gfx::Point start);
    static std::shared_ptr<MDrawComment> initWithViewStartPoint(
        const std::shared_ptr<ui::View>& view, gfx::Point start);
    static const ToolClass& Class();
    const ToolClass& toolClass() const override { return Class(); }

    void drawContentHandle(gfx::Context& context) override;

protected:
    MDrawComment() = default;
};

}  // namespace kalim
