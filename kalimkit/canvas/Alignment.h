#pragma once

#include <span>
#include <vector>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Point.h"
#include "kalimkit/gfx/Rect.h"

namespace kalim {

// Along which edges, or middles, boxes are laid.
enum class Alignment { Left, Center, Right, Top, Middle, Bottom };
// In which direction boxes stand one after the other.
enum class Direction { Horizontally, Vertically };

// How far each box has to move for all of them to lie along that edge of the rectangle.
KALIM_API std::vector<gfx::Point> alignmentOffsets(std::span<const gfx::Rect> boxes,
                                                   Alignment alignment, const gfx::Rect& within);

// How far each box has to move for the gaps between neighbours to be equal, the two outermost boxes
// staying where they are; boxes that overlap get negative gaps. Nobody moves where there are fewer
// than three.
KALIM_API std::vector<gfx::Point> distributionOffsets(std::span<const gfx::Rect> boxes,
                                                      Direction direction);

}  // namespace kalim
