#include "kalimkit/codec/JpegCoding.h"

#include <algorithm>
#include <utility>

namespace kalim::codec {

namespace {

// The table that a colour has been read with, or before that the one it is going to be read with.
const JQUANT_TBL* tableOf(const jpeg_decompress_struct& source, const jpeg_component_info& colour) {
    if (colour.quant_table != nullptr) return colour.quant_table;
    if (colour.quant_tbl_no < 0 || colour.quant_tbl_no >= NUM_QUANT_TBLS) return nullptr;
    const JQUANT_TBL* const table = source.quant_tbl_ptrs[colour.quant_tbl_no];
    return table != nullptr ? table : source.quant_tbl_ptrs[0];
}

int maxOf(const JpegCoding& coding, int JpegCoding::Colour::*samples) {
    int most = 1;
    for (int i = 0; i < coding.colourCount; ++i)
        most = std::max(most, coding.colours[static_cast<std::size_t>(i)].*samples);
    return most;
}

constexpr jpeg_scan_info scanOf(int colour, int first, int last) {
    return {1, {colour, 0, 0, 0}, first, last, 0, 0};
}

// The colours one after another, where there are too many blocks for a scan of all of them.
void separateColours(const JpegCoding& coding, jpeg_compress_struct& output) {
    static constexpr std::array wholeScans{scanOf(0, 0, 63), scanOf(1, 0, 63), scanOf(2, 0, 63)};
    static constexpr std::array progressiveScans{scanOf(0, 0, 0), scanOf(0, 1, 63),
                                                 scanOf(1, 0, 0), scanOf(1, 1, 63),
                                                 scanOf(2, 0, 0), scanOf(2, 1, 63)};
    output.scan_info = coding.isProgressive ? progressiveScans.data() : wholeScans.data();
    output.num_scans = coding.colourCount * (coding.isProgressive ? 2 : 1);
}

}  // namespace

JpegCoding JpegCoding::of(const jpeg_decompress_struct& source, gfx::PixelSize size) {
    JpegCoding coding;
    coding.size = size;
    coding.isProgressive = source.progressive_mode != FALSE;
    coding.restartInterval = source.restart_interval;
    const J_COLOR_SPACE space = source.jpeg_color_space;
    const bool isUsual = space == JCS_GRAYSCALE || space == JCS_RGB || space == JCS_YCbCr;
    if (!isUsual || source.num_components > maxColours) return coding;
    coding.colourCount = source.num_components;
    for (int i = 0; i < source.num_components; ++i) {
        const jpeg_component_info& from = source.comp_info[i];
        const JQUANT_TBL* const table = tableOf(source, from);
        if (table == nullptr || source.max_h_samp_factor % from.h_samp_factor != 0 ||
            source.max_v_samp_factor % from.v_samp_factor != 0) {
            return coding;
        }
        Colour& colour = coding.colours[static_cast<std::size_t>(i)];
        colour.across = from.h_samp_factor;
        colour.down = from.v_samp_factor;
        std::copy_n(table->quantval, DCTSIZE2, colour.table.begin());
        // A file may define another table in the same slot between its scans.
        const auto clashes = [&](const Colour& earlier) {
            return earlier.slot == colour.slot && earlier.table != colour.table;
        };
        colour.slot = from.quant_tbl_no;
        while (std::any_of(coding.colours.begin(), coding.colours.begin() + i, clashes))
            colour.slot = (colour.slot + 1) % NUM_QUANT_TBLS;
    }
    coding.space = space;
    return coding;
}

void JpegCoding::exchangeSides() {
    for (Colour& colour : colours) {
        std::swap(colour.across, colour.down);
        for (std::size_t y = 0; y < DCTSIZE; ++y) {
            for (std::size_t x = 0; x < y; ++x)
                std::swap(colour.table[DCTSIZE * y + x], colour.table[DCTSIZE * x + y]);
        }
    }
}

// The factors of a single colour say nothing.
void JpegCoding::addNeutralColours() {
    space = JCS_YCbCr;
    colourCount = maxColours;
    colours[0].across = colours[0].down = 1;
    colours[1] = colours[2] = colours[0];
}

bool JpegCoding::isOneScan() const {
    int blocks = 0;
    for (int i = 0; i < colourCount; ++i) {
        const Colour& colour = colours[static_cast<std::size_t>(i)];
        blocks += colour.across * colour.down;
    }
    return blocks <= C_MAX_BLOCKS_IN_MCU;
}

gfx::PixelSize JpegCoding::cells() const {
    const int width = DCTSIZE * maxOf(*this, &Colour::across);
    const int height = DCTSIZE * maxOf(*this, &Colour::down);
    return {(size.width + width - 1) / width, (size.height + height - 1) / height};
}

gfx::PixelSize JpegCoding::sample(int colour) const {
    const Colour& of = colours[static_cast<std::size_t>(colour)];
    return {maxOf(*this, &Colour::across) / of.across, maxOf(*this, &Colour::down) / of.down};
}

gfx::PixelSize JpegCoding::blocks(int colour) const {
    const gfx::PixelSize pixels = sample(colour);
    const int width = DCTSIZE * pixels.width;
    const int height = DCTSIZE * pixels.height;
    return {(size.width + width - 1) / width, (size.height + height - 1) / height};
}

std::size_t JpegCoding::coefficientBytes() const {
    std::size_t bytes = 0;
    for (int i = 0; i < colourCount; ++i) {
        const gfx::PixelSize count = blocks(i);
        bytes += static_cast<std::size_t>(count.width) * static_cast<std::size_t>(count.height) *
                 sizeof(JBLOCK);
    }
    return bytes;
}

void JpegCoding::apply(jpeg_compress_struct& output) const {
    output.image_width = static_cast<JDIMENSION>(size.width);
    output.image_height = static_cast<JDIMENSION>(size.height);
    jpeg_set_defaults(&output);
    // Makes the tables, which are overwritten.
    jpeg_set_quality(&output, usualQuality, FALSE);
    jpeg_set_colorspace(&output, space);
    for (int i = 0; i < colourCount; ++i) {
        const Colour& colour = colours[static_cast<std::size_t>(i)];
        jpeg_component_info& info = output.comp_info[i];
        info.h_samp_factor = colour.across;
        info.v_samp_factor = colour.down;
        info.quant_tbl_no = colour.slot;
        JQUANT_TBL*& table = output.quant_tbl_ptrs[colour.slot];
        if (table == nullptr)
            table = jpeg_alloc_quant_table(reinterpret_cast<j_common_ptr>(&output));
        std::copy(colour.table.begin(), colour.table.end(), table->quantval);
    }
    output.arith_code = FALSE;
    output.restart_interval = restartInterval;
    if (coefficientBytes() > maxCoefficientBytes) return;
    output.optimize_coding = TRUE;
    if (isProgressive) jpeg_simple_progression(&output);
    if (!isOneScan()) separateColours(*this, output);
}

}  // namespace kalim::codec
