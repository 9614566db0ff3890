#pragma once

#include "kalimkit/canvas/model/MDrawTool.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Rect.h"

namespace kalim {

// Where the tool paints at present, handles, shadow and label included, canvas points; found by
// drawing it to nowhere. Drawing settles the tool, too: its transform, and the size of its text.
KALIM_API gfx::Rect drawnExtent(MDrawTool& tool);

}  // namespace kalim
