#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace kalim::gfx {

// The coverage, one byte a pixel. A row is a whole number of blocks, blockSide pixels each, without
// padding.
struct Mask {
    static constexpr int blockSide = 16;

    std::uint8_t* bytes = nullptr;
    // A row has this many blocks.
    int columns = 0;
    int rows = 0;

    std::ptrdiff_t stride() const { return std::ptrdiff_t{columns} * blockSide; }
    std::size_t byteCount() const { return static_cast<std::size_t>(stride() * rows); }
    std::uint8_t* row(int y) const { return bytes + stride() * y; }
    std::uint8_t* block(int column, int y) const {
        return row(y) + std::ptrdiff_t{column} * blockSide;
    }
};

// Which blocks of a mask hold anything but zeros.
class BlockGrid {
public:
    BlockGrid() = default;
    // No block is occupied.
    BlockGrid(int columns, int rows);
    static BlockGrid of(const Mask& mask);

    int columns() const { return _columns; }
    int rows() const { return _rows; }
    bool isOccupied(int column, int row) const { return _flags[index(column, row)] != 0; }
    bool isRowEmpty(int row) const;
    void occupy(int column, int row) { _flags[index(column, row)] = 1; }
    // Makes the mask zero again where the grid says that it is not.
    void clear(const Mask& mask) const;

private:
    std::size_t index(int column, int row) const {
        return static_cast<std::size_t>(_columns) * static_cast<std::size_t>(row) +
               static_cast<std::size_t>(column);
    }

    int _columns = 0;
    int _rows = 0;
    std::vector<std::uint8_t> _flags;
};

// The strongest blur there is, a standard deviation in pixels.
constexpr double largestSigma = 256;

// How many pixels beyond its old bounds a mask blurred with this standard deviation may grow.
int blurReach(double sigma);

// Blurs the mask in place with a Gaussian of this standard deviation in pixels, exactly up to 6 and
// by three box passes beyond. What lies outside the mask counts as zero, and what would grow out of
// it is cut off. `scratch` is all zeros before and after; it grows as needed. Returns what may be
// occupied afterwards. The exact blur visits only blocks near occupied ones.
BlockGrid blurMask(const Mask& mask, double sigma, std::vector<std::uint8_t>& scratch);

}  // namespace kalim::gfx
