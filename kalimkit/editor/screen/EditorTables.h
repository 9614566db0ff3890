#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/theme/Pens.h"

namespace kalim {

// The editor's pens, sizes and colours, and what they are on the canvas.

// What the pickers offer, in the order in which it is shown: RRGGBB, sizes, pens.
KALIM_API const std::vector<std::string_view>& editorColors();
KALIM_API const std::vector<unsigned>& editorSizes();
KALIM_API const std::vector<unsigned>& editorPens();
KALIM_API const std::vector<unsigned>& editorShapes();
// All pens that wide screens have, in their order there; those that are not among the library's own
// come last, before the crop pen.
KALIM_API std::vector<unsigned> deskPens();

// What hosts and scenarios call a pen: its name; "crop" is one as well.
KALIM_API std::string penIdentifier(const Pen& pen);
// Null for an identifier that is no pen's.
KALIM_API const Pen* penIdentified(std::string_view identifier);

// The canvas's tool type; nothing for the crop pen and for a number that is no pen.
KALIM_API std::optional<std::int64_t> toolTypeForPen(unsigned pen);
// The pen that stands for a tool type; nothing for types that no pen stands for, and for -1.
KALIM_API std::optional<unsigned> penForToolType(std::int64_t type);

// Points; nothing for a number that is no size.
KALIM_API std::optional<int> lineWidthForSize(unsigned size);
// The size that a width is shown as; nothing for a width that is exactly none of them.
KALIM_API std::optional<unsigned> sizeForLineWidth(double width);

}  // namespace kalim
