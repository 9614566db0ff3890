#pragma once

#include <optional>
#include <vector>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Point.h"

namespace kalim {

// What a stroke was meant to be.
struct KALIM_API RecognizedStroke {
    enum class Kind { Line, Arrow, Ellipse, Rectangle };

    Kind kind = Kind::Line;
    // The ends of a line, the tail and the tip of an arrow; two opposite corners of a box, the
    // second of them the one that the stroke has ended nearest to.
    gfx::Point start;
    gfx::Point end;

    bool operator==(const RecognizedStroke&) const = default;
};

// Finds the one shape that a stroke is close to: nothing for a small one, and for one that is close
// to none. Its points are first spread evenly, as the $1 recogniser does (Wobbrock, Wilson and Li,
// UIST 2007). Lines are told by how far the stroke strays from its chord, arrows by a straight
// shaft with both barbs behind its tip, boxes and ellipses by the mean deviation from the outline
// in the stroke's own box. Lines that are nearly level or plumb are made so, and boxes that are
// nearly square.
KALIM_API std::optional<RecognizedStroke> recognizedStroke(const std::vector<gfx::Point>& points);

}  // namespace kalim
