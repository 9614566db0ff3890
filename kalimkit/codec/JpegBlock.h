#pragma once

#include <array>
#include <cstdio>

#include "kalimkit/codec/PixelMap.h"

// jpeglib.h relies on <cstdio> before it.
#include <jpeglib.h>

namespace kalim::codec {

// One block of a colour, row by row; the middle of the range is 0.
using BlockSamples = std::array<float, DCTSIZE2>;
using BlockTable = std::array<UINT16, DCTSIZE2>;

// What the coefficients show, neither rounded nor held to the range: making coefficients of it
// again gives the same ones.
void showBlock(const JCOEF* coefficients, const BlockTable& table, BlockSamples& samples);
void makeBlock(const BlockSamples& samples, const BlockTable& table, JCOEF* coefficients);
// The same picture, turned and mirrored as pixels are by the map.
void turnBlock(const JCOEF* from, const PixelMap& map, JCOEF* to);

}  // namespace kalim::codec
