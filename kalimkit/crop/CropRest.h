#pragma once

#include <cstdint>

namespace kalim {

// Of frame and picture on their way to where they belong, seconds.
inline constexpr double cropSettleDuration = 0.3;

// Levels of the overlay around the frame; the higher, the less is hidden.
inline constexpr std::int32_t overlayLevelWhenOver = 1;
inline constexpr std::int32_t overlayLevelAtRest = 2;
inline constexpr std::int32_t overlayLevelInDrags = 3;

}  // namespace kalim
