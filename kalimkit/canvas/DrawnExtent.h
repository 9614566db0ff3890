#pragma once

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Rect.h"
#include "kalimkit/tool/MDrawTool.h"

namespace kalim {

// Where the tool paints at present, handles, shadow and label included, canvas points; found by
// drawing it to nowhere. Drawing settles the tool, too: its transform, and the size of its text.
// The scale is how many points of the surface a canvas point is drawn as: shadows are as large in
// those at every scale.
KALIM_API gfx::Rect drawnExtent(MDrawTool& tool, double scale = 1);

// The same without the shadow, for a tool that is not selected. A text counts as its box, which its
// letters keep to.
KALIM_API gfx::Rect shapeExtent(MDrawTool& tool);

}  // namespace kalim
