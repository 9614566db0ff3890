#pragma once

#include <array>
#include <cstdio>
#include <vector>

#include "kalimkit/codec/JpegCoding.h"

// jpeglib.h relies on <cstdio> before it.
#include <jpeglib.h>

namespace kalim::codec {

// Counts what a sequential JPEG says of its blocks and makes the shortest codes for it. The library
// would do the same, but it goes over every coefficient one by one.
class JpegCodes {
public:
    void begin(const JpegCoding& coding);
    // A colour's blocks come row by row. False where a coefficient is beyond what a code can say.
    bool count(int colour, const JCOEF* block);
    // When all blocks are counted.
    void apply(jpeg_compress_struct& output);

private:
    static constexpr std::size_t symbolCount = 256;
    // How often each symbol occurs.
    using Counts = std::array<long, symbolCount>;
    // Bits of each symbol's code, 0 for none; the last one is that of a symbol that never occurs.
    using Lengths = std::array<std::size_t, symbolCount + 1>;
    struct Table {
        Counts averages{};
        Counts frequencies{};
    };

    Table& tableOf(int colour);
    void countCells();
    void countBlocks(int colour);
    void countAverage(int colour, JCOEF average);
    static void makeTable(const Counts& counts, JHUFF_TBL& table);
    static void writeTable(const Lengths& lengths, JHUFF_TBL& table);

    JpegCoding _coding;
    std::array<Table, 2> _tables{};
    // They are written as differences in an order that is not that of the blocks.
    std::array<std::vector<JCOEF>, JpegCoding::maxColours> _averages;
    std::array<int, JpegCoding::maxColours> _lastAverages{};
};

}  // namespace kalim::codec
