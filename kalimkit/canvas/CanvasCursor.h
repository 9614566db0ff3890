#pragma once

#include <optional>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Point.h"
#include "kalimkit/ui/view/Cursor.h"

namespace kalim {

struct CanvasParts;

// What the pointer looks like at a view point of a canvas: it tells what a press does there.
std::optional<ui::Cursor> canvasCursor(CanvasParts& canvas, gfx::Point viewPoint);

// The one for what is dragged in that direction, as it is seen, and back.
KALIM_API ui::Cursor resizeCursor(gfx::Point direction);

}  // namespace kalim
