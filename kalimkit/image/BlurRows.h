#pragma once

#include <cstddef>
#include <cstdint>

namespace kalim {

// The inner loops of the Gaussian blur, over rows of values. All of them yield the same bytes on
// every processor.

// Between two levels of a byte a row of the blur knows this many steps.
constexpr int finePerLevel = 8;
// In so many steps two rows can be blended.
constexpr int blendSteps = 32;

// Adds each byte of a row to the sum of its column.
void addRow(const std::uint8_t* bytes, std::uint16_t* sums, std::size_t count);

// Sums of columns, `side` pixels of four channels to a cell, as means over side x side pixels.
void averageCells(const std::uint16_t* sums, int side, float* cells, std::size_t sumCount);

// Adds `weight` times a row, or times the sum of two.
void addWeighted(float* target, const float* row, float weight, std::size_t count);
void addWeighted(float* target, const float* a, const float* b, float weight, std::size_t count);

// Rounds (1 - part/32) above + part/32 below to whole levels.
void blendRows(const std::uint16_t* above, const std::uint16_t* below, int part,
               std::uint8_t* target, std::size_t count);

}  // namespace kalim
