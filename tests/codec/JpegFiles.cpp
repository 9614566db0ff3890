#include "tests/codec/JpegFiles.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "tests/codec/PictureFiles.h"

// jpeglib.h relies on <cstdio> before it.
#include <jpeglib.h>

namespace kalim::codec::test {

namespace {

// Smooth shapes with a fine weave in every colour, so that each frequency says something.
void patternRow(const PatternRecipe& recipe, int y, Bytes& rgb) {
    for (int x = 0; x < recipe.width; ++x) {
        const bool isOther = x >= recipe.otherX && x < recipe.otherX + recipe.otherSide &&
                             y >= recipe.otherY && y < recipe.otherY + recipe.otherSide;
        const int weave = (x * 7 + y * 13 + x * y) % 23 + (isOther ? 60 : 0);
        const double wave = 60 * std::sin(x / 9.0 + (isOther ? 2 : 0)) * std::cos(y / 7.0);
        const int shades[] = {110, 90, 120};
        for (std::size_t part = 0; part < 3; ++part) {
            const double turn = part == 1 ? -wave : wave;
            rgb[3 * static_cast<std::size_t>(x) + part] =
                static_cast<std::uint8_t>(shades[part] + turn + (part == 2 ? 2 : 1) * weave);
        }
    }
}

void describe(const PatternRecipe& recipe, jpeg_compress_struct& info) {
    const int colours = static_cast<int>(recipe.sampling.size() + 1) / 4;
    jpeg_set_defaults(&info);
    jpeg_set_colorspace(&info, colours == 1 ? JCS_GRAYSCALE : recipe.isRgb ? JCS_RGB : JCS_YCbCr);
    jpeg_set_quality(&info, recipe.quality, TRUE);
    for (int i = 0; i < colours; ++i) {
        info.comp_info[i].h_samp_factor = recipe.sampling[4 * static_cast<std::size_t>(i)] - '0';
        info.comp_info[i].v_samp_factor =
            recipe.sampling[4 * static_cast<std::size_t>(i) + 2] - '0';
    }
    info.arith_code = recipe.isArithmetic;
    info.restart_interval = recipe.restartInterval;
    if (recipe.isProgressive) jpeg_simple_progression(&info);
    // The last scan of those that all colours have.
    if (recipe.lacksBits) --info.num_scans;
}

}  // namespace

Bytes makePattern(const PatternRecipe& recipe) {
    jpeg_compress_struct info{};
    jpeg_error_mgr errors{};
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    unsigned char* data = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&info, &data, &size);
    info.image_width = static_cast<JDIMENSION>(recipe.width);
    info.image_height = static_cast<JDIMENSION>(recipe.height);
    info.input_components = 3;
    info.in_color_space = JCS_RGB;
    describe(recipe, info);
    jpeg_start_compress(&info, TRUE);
    const Bytes exif = concatenated({'E', 'x', 'i', 'f', 0, 0}, makeExif(true, recipe.orientation));
    if (recipe.orientation != 1) {
        jpeg_write_marker(&info, JPEG_APP0 + 1, exif.data(), static_cast<unsigned>(exif.size()));
    }
    Bytes row(3 * static_cast<std::size_t>(recipe.width));
    JSAMPROW samples = row.data();
    while (info.next_scanline < info.image_height) {
        patternRow(recipe, static_cast<int>(info.next_scanline), row);
        jpeg_write_scanlines(&info, &samples, 1);
    }
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    const Bytes file(data, data + size);
    std::free(data);
    return file;
}

JpegFacts factsOf(const Bytes& file) {
    jpeg_decompress_struct info{};
    jpeg_error_mgr errors{};
    info.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&info);
    jpeg_mem_src(&info, file.data(), file.size());
    jpeg_read_header(&info, TRUE);
    JpegFacts facts{
        info.progressive_mode != FALSE, info.restart_interval, info.jpeg_color_space, {}};
    jvirt_barray_ptr* const arrays = jpeg_read_coefficients(&info);
    for (int i = 0; i < info.num_components; ++i) {
        const jpeg_component_info& from = info.comp_info[i];
        JpegFacts::Colour colour{
            from.h_samp_factor, from.v_samp_factor, static_cast<int>(from.width_in_blocks), {}, {}};
        std::copy_n(from.quant_table->quantval, DCTSIZE2, colour.table.begin());
        for (JDIMENSION y = 0; y < from.height_in_blocks; ++y) {
            const JBLOCKARRAY row = info.mem->access_virt_barray(
                reinterpret_cast<j_common_ptr>(&info), arrays[i], y, 1, FALSE);
            for (JDIMENSION x = 0; x < from.width_in_blocks; ++x)
                std::copy_n(row[0][x], DCTSIZE2, colour.blocks.emplace_back().begin());
        }
        facts.colours.push_back(std::move(colour));
    }
    jpeg_destroy_decompress(&info);
    return facts;
}

}  // namespace kalim::codec::test
