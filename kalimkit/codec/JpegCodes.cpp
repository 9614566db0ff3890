#include "kalimkit/codec/JpegCodes.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace kalim::codec {

namespace {

constexpr std::size_t longestCode = 16;
constexpr unsigned endOfBlock = 0x00;
constexpr unsigned sixteenZeros = 0xF0;

// Where each coefficient of a block, row by row, stands in a file: diagonal by diagonal.
constexpr std::array<std::uint8_t, DCTSIZE2> placeInFile{
    0,  1,  5,  6,  14, 15, 27, 28, 2,  4,  7,  13, 16, 26, 29, 42, 3,  8,  12, 17, 25, 30,
    41, 43, 9,  11, 18, 24, 31, 40, 44, 53, 10, 19, 23, 32, 39, 45, 52, 54, 20, 22, 33, 38,
    46, 51, 55, 60, 21, 34, 37, 47, 50, 56, 59, 61, 35, 36, 48, 49, 57, 58, 62, 63};

constexpr std::array<std::uint8_t, DCTSIZE2> inverseOf(
    const std::array<std::uint8_t, DCTSIZE2>& places) {
    std::array<std::uint8_t, DCTSIZE2> inverse{};
    for (std::size_t i = 0; i < DCTSIZE2; ++i)
        inverse[places[i]] = static_cast<std::uint8_t>(i);
    return inverse;
}

constexpr std::array<std::uint8_t, DCTSIZE2> atPlace = inverseOf(placeInFile);

// A bit for each place at which there is something.
std::uint64_t nonZeroPlaces(const JCOEF* block) {
    constexpr std::size_t step = sizeof(std::uint64_t) / sizeof(JCOEF);
    std::uint64_t places = 0;
    for (std::size_t i = 0; i < DCTSIZE2; i += step) {
        std::uint64_t several = 0;
        std::memcpy(&several, block + i, sizeof several);
        if (several == 0) continue;
        for (std::size_t at = i; at < i + step; ++at)
            places |= std::uint64_t{block[at] != 0} << placeInFile[at];
    }
    return places;
}

unsigned bitsOf(int value) {
    return static_cast<unsigned>(std::bit_width(static_cast<unsigned>(std::abs(value))));
}

}  // namespace

// As the library shares its tables out.
JpegCodes::Table& JpegCodes::tableOf(int colour) {
    return _tables[_coding.space == JCS_YCbCr && colour > 0 ? 1 : 0];
}

void JpegCodes::begin(const JpegCoding& coding) {
    _coding = coding;
    for (int colour = 0; colour < coding.colourCount; ++colour) {
        const gfx::PixelSize blocks = coding.blocks(colour);
        _averages[static_cast<std::size_t>(colour)].reserve(
            static_cast<std::size_t>(blocks.width) * static_cast<std::size_t>(blocks.height));
    }
}

bool JpegCodes::count(int colour, const JCOEF* block) {
    constexpr int mostAverage = 1 << 10;
    constexpr unsigned mostBits = 10;
    if (block[0] < -mostAverage || block[0] >= mostAverage) return false;
    _averages[static_cast<std::size_t>(colour)].push_back(block[0]);
    Counts& frequencies = tableOf(colour).frequencies;
    int last = 0;
    for (std::uint64_t places = nonZeroPlaces(block) & ~std::uint64_t{1}; places != 0;
         places &= places - 1) {
        const int place = std::countr_zero(places);
        int zeros = place - last - 1;
        for (; zeros > 15; zeros -= 16)
            ++frequencies[sixteenZeros];
        const unsigned bits = bitsOf(block[atPlace[static_cast<std::size_t>(place)]]);
        if (bits > mostBits) return false;
        ++frequencies[static_cast<unsigned>(zeros) << 4U | bits];
        last = place;
    }
    if (last < DCTSIZE2 - 1) ++frequencies[endOfBlock];
    return true;
}

void JpegCodes::apply(jpeg_compress_struct& output) {
    if (_coding.colourCount > 1 && _coding.isOneScan()) {
        countCells();
    } else {
        for (int colour = 0; colour < _coding.colourCount; ++colour)
            countBlocks(colour);
    }
    output.optimize_coding = FALSE;
    for (std::size_t i = 0; i < _tables.size(); ++i) {
        makeTable(_tables[i].averages, *output.dc_huff_tbl_ptrs[i]);
        makeTable(_tables[i].frequencies, *output.ac_huff_tbl_ptrs[i]);
    }
}

void JpegCodes::countAverage(int colour, JCOEF average) {
    int& last = _lastAverages[static_cast<std::size_t>(colour)];
    ++tableOf(colour).averages[bitsOf(average - last)];
    last = average;
}

void JpegCodes::countBlocks(int colour) {
    unsigned count = 0;
    for (const JCOEF average : _averages[static_cast<std::size_t>(colour)]) {
        const bool restarts = _coding.restartInterval > 0 && count++ % _coding.restartInterval == 0;
        if (restarts) _lastAverages.fill(0);
        countAverage(colour, average);
    }
}

// A cell that reaches beyond the blocks is filled up with blocks that say nothing new.
void JpegCodes::countCells() {
    const gfx::PixelSize cells = _coding.cells();
    const int cellCount = cells.width * cells.height;
    const auto restart = static_cast<int>(_coding.restartInterval);
    for (int cell = 0; cell < cellCount; ++cell) {
        if (restart > 0 && cell % restart == 0) _lastAverages.fill(0);
        for (int colour = 0; colour < _coding.colourCount; ++colour) {
            const auto& [across, down, slot, table] =
                _coding.colours[static_cast<std::size_t>(colour)];
            const gfx::PixelSize blocks = _coding.blocks(colour);
            for (int i = 0; i < across * down; ++i) {
                const int x = cell % cells.width * across + i % across;
                const int y = cell / cells.width * down + i / across;
                if (x < blocks.width && y < blocks.height) {
                    countAverage(colour, _averages[static_cast<std::size_t>(colour)]
                                                  [static_cast<std::size_t>(y * blocks.width + x)]);
                } else {
                    ++tableOf(colour).averages[0];
                    ++tableOf(colour).frequencies[endOfBlock];
                }
            }
        }
    }
}

// Huffman's way as in ITU-T T.81, annex K.2: the two rarest groups become one, and all in it get a
// bit more, until there is one group. A code of ones alone must not occur, so a symbol that never
// occurs gets it. Codes that come out too long are exchanged for shorter ones.
void JpegCodes::makeTable(const Counts& counts, JHUFF_TBL& table) {
    constexpr std::size_t unused = symbolCount;
    constexpr std::size_t nowhere = unused + 1;
    std::array<long, symbolCount + 1> groups{};
    std::ranges::copy(counts, groups.begin());
    groups[unused] = 1;
    // The group that a symbol is in, by one of its symbols.
    std::array<std::size_t, symbolCount + 1> groupOf{};
    for (std::size_t i = 0; i <= unused; ++i)
        groupOf[i] = groups[i] > 0 ? i : nowhere;
    Lengths lengths{};
    const auto rarest = [&](std::size_t taken) {
        std::size_t least = nowhere;
        for (std::size_t i = 0; i <= unused; ++i) {
            const bool isThere = groups[i] > 0 && i != taken;
            if (isThere && (least == nowhere || groups[i] <= groups[least])) least = i;
        }
        return least;
    };
    for (;;) {
        const std::size_t first = rarest(nowhere);
        const std::size_t second = rarest(first);
        if (second == nowhere) break;
        groups[first] += std::exchange(groups[second], 0);
        for (std::size_t i = 0; i <= unused; ++i) {
            if (groupOf[i] == second) groupOf[i] = first;
            if (groupOf[i] == first) ++lengths[i];
        }
    }
    writeTable(lengths, table);
}

void JpegCodes::writeTable(const Lengths& lengths, JHUFF_TBL& table) {
    std::array<int, symbolCount + 2> codes{};
    for (const std::size_t length : lengths)
        ++codes[length];
    // Two codes of the longest kind differ in their last bit: one becomes that without it, and the
    // other goes with a shorter one that gets a bit more.
    for (std::size_t length = symbolCount; length > longestCode; --length) {
        while (codes[length] > 0) {
            std::size_t shorter = length - 2;
            while (codes[shorter] == 0)
                --shorter;
            codes[length] -= 2;
            ++codes[length - 1];
            codes[shorter + 1] += 2;
            --codes[shorter];
        }
    }
    std::size_t longest = longestCode;
    while (codes[longest] == 0)
        --longest;
    // That of the symbol that never occurs.
    --codes[longest];
    table.bits[0] = 0;
    for (std::size_t length = 1; length <= longestCode; ++length)
        table.bits[length] = static_cast<UINT8>(codes[length]);
    UINT8* value = table.huffval;
    for (std::size_t length = 1; length <= symbolCount; ++length) {
        for (std::size_t symbol = 0; symbol < symbolCount; ++symbol) {
            if (lengths[symbol] == length) *value++ = static_cast<UINT8>(symbol);
        }
    }
    table.sent_table = FALSE;
}

}  // namespace kalim::codec
