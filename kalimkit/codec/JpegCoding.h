#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>

#include "kalimkit/gfx/Size.h"

// jpeglib.h relies on <cstdio> before it.
#include <jpeglib.h>

namespace kalim::codec {

// How a JPEG codes its samples, without the samples. Trivial, so that it may live beside the
// library's jumps.
struct JpegCoding {
    static constexpr int maxColours = 3;
    // Where a file does not tell any.
    static constexpr int usualQuality = 90;
    // The coefficients of a larger picture are never held all at once.
    static constexpr std::size_t maxCoefficientBytes = std::size_t{1} << 29;

    struct Colour {
        // Samples to a cell, against those of the other colours.
        int across = 1;
        int down = 1;
        // Which of the file's tables it goes by, and that table row by row.
        int slot = 0;
        std::array<UINT16, DCTSIZE2> table{};
    };

    gfx::PixelSize size;
    // Grey, RGB or YCbCr.
    J_COLOR_SPACE space = JCS_UNKNOWN;
    int colourCount = 0;
    std::array<Colour, maxColours> colours{};
    bool isProgressive = false;
    // MCUs; 0 for none.
    unsigned restartInterval = 0;

    // What of a source's coding does for a picture of another size. Inks have none: `space` is
    // unknown then, and where the colours' numbers of samples are no multiples of one another.
    static JpegCoding of(const jpeg_decompress_struct& source, gfx::PixelSize size);

    // Exchanges rows and columns of all that has them, but for the size.
    void exchangeSides();
    // Adds two colours that say that a grey picture has none.
    void addNeutralColours();

    // Whether a sequential file writes all colours in one scan, cell by cell, of this many across
    // and down.
    bool isOneScan() const;
    gfx::PixelSize cells() const;

    // Pixels to one sample.
    gfx::PixelSize sample(int colour) const;
    // Of the blocks that hold all samples.
    gfx::PixelSize blocks(int colour) const;
    // What the coefficients of all blocks need.
    std::size_t coefficientBytes() const;
    // Everything but the format of what is handed in, which is set before. Codes are the best ones
    // as long as all coefficients may be held, without which there are no progressive scans either.
    void apply(jpeg_compress_struct& output) const;
};

}  // namespace kalim::codec
