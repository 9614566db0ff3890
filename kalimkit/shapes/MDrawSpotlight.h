#pragma once

#include "kalimkit/gfx/Export.h"
#include "kalimkit/shapes/MDrawField.h"

namespace kalim {

// A box that stays light while all else of the picture is darkened. All spotlights of a canvas
// share one darkness, that of the darkest, and what is chosen for one on a canvas is chosen for
// all: each of them only lights its own place. What is drawn over the picture stays as it is.
class KALIM_API MDrawSpotlight : public MDrawField {
public:
    static std::shared_ptr<MDrawSpotlight> initWithStartPoint(gfx::Point start);
    static const ToolClass& Class();
    const ToolClass& toolClass() const override { return Class(); }

    double shade() const override;
    // The canvas draws the shade of all.
    void drawContent(gfx::Context&) override {}

protected:
    MDrawSpotlight() = default;
};

}  // namespace kalim
