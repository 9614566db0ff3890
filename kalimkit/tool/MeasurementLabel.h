#pragma once

#include "kalimkit/gfx/Context.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Rect.h"

namespace kalim {

// What a tool asks to draw its measurement. Shapes supply one, so that the tool base knows no
// shape.
class KALIM_API MeasurementLabel {
public:
    virtual ~MeasurementLabel() = default;
    // Draws in canvas coordinates.
    virtual void drawContent(gfx::Context& context) = 0;
};

}  // namespace kalim
