#pragma once

#include <cstdint>

namespace kalim {

// The edge or corner of the crop frame that a drag holds. The numbers are part of the interface.
enum class CropEdge : std::int32_t {
    None = 0,
    Left = 1,
    Right = 2,
    Bottom = 3,
    Top = 4,
    TopLeft = 5,
    TopRight = 6,
    BottomLeft = 7,
    BottomRight = 8,
};

}  // namespace kalim
