#pragma once

namespace kalim::gfx {

// Where lines stand in the width that they have. The start is the side at which one begins to read
// a paragraph: left, or right where it runs from right to left.
enum class LineAlignment { Left, Start, Center, End };

// How much of the room beside a line lies at its left, from 0 to 1.
inline double shareAtLeft(LineAlignment alignment, bool isRightToLeft) {
    if (alignment == LineAlignment::Left) return 0;
    if (alignment == LineAlignment::Center) return 0.5;
    return (alignment == LineAlignment::Start) == isRightToLeft ? 1 : 0;
}

}  // namespace kalim::gfx
