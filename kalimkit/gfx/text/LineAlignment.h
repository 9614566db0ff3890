#pragma once

namespace kalim::gfx {

// Where lines stand in the width that they have. The start is the side at which one begins to read
// a paragraph: left, or right where it runs from right to left.
enum class LineAlignment { Left, Start, Center, End };

}  // namespace kalim::gfx
