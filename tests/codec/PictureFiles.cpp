#include "tests/codec/PictureFiles.h"

#include <gtest/gtest.h>
#include <lcms2.h>
#include <png.h>
#include <webp/encode.h>
#include <zlib.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <vector>

// jpeglib.h relies on <cstdio> before it.
#include <jpeglib.h>

namespace kalim::codec::test {

namespace {

void append(Bytes& bytes, std::uint32_t value, int byteCount, bool bigEndian) {
    for (int i = 0; i < byteCount; ++i) {
        const int shift = 8 * (bigEndian ? byteCount - 1 - i : i);
        bytes.push_back(static_cast<std::uint8_t>(value >> shift));
    }
}

void describePng(png_structp png, png_infop info, const PngRecipe& recipe) {
    png_set_IHDR(png, info, recipe.width, recipe.height, recipe.bitDepth, recipe.colorType,
                 recipe.interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    std::vector<png_color> palette;
    for (std::size_t i = 0; i + 2 < recipe.palette.size(); i += 3) {
        palette.push_back({recipe.palette[i], recipe.palette[i + 1], recipe.palette[i + 2]});
    }
    if (!palette.empty()) png_set_PLTE(png, info, palette.data(), static_cast<int>(palette.size()));
    if (!recipe.profile.empty()) {
        png_set_iCCP(png, info, "profile", PNG_COMPRESSION_TYPE_DEFAULT, recipe.profile.data(),
                     static_cast<png_uint_32>(recipe.profile.size()));
    }
    png_color_16 key{};
    key.gray = static_cast<png_uint_16>(recipe.transparentGrey);
    if (!recipe.paletteAlpha.empty() || recipe.transparentGrey >= 0) {
        png_set_tRNS(png, info, recipe.paletteAlpha.data(),
                     static_cast<int>(recipe.paletteAlpha.size()), &key);
    }
}

// The average, then every frequency but for its last bit, then these bits.
std::vector<jpeg_scan_info> greyScans(int count) {
    std::vector<jpeg_scan_info> scans{{1, {0}, 0, 0, 0, 0}};
    for (int bit = 1; bit >= 0; --bit) {
        for (int frequency = 1; frequency < DCTSIZE2; ++frequency)
            scans.push_back({1, {0}, frequency, frequency, bit == 1 ? 0 : 1, bit});
    }
    scans.resize(static_cast<std::size_t>(count));
    return scans;
}

Bytes takeBytes(cmsHPROFILE profile) {
    cmsUInt32Number size = 0;
    cmsSaveProfileToMem(profile, nullptr, &size);
    Bytes bytes(size);
    cmsSaveProfileToMem(profile, bytes.data(), &size);
    cmsCloseProfile(profile);
    return bytes;
}

}  // namespace

std::string errorOf(const Bytes& file, const DecodeLimits& limits) {
    const DecodeResult result = decode(file, "photo", limits);
    EXPECT_EQ(result.error.has_value(), result.bitmap.isEmpty());
    return result.error.value_or("none");
}

Bytes pixelsOf(const Bytes& file) {
    const DecodeResult result = decode(file, "photo");
    EXPECT_EQ(result.error, std::nullopt);
    return {result.bitmap.data(), result.bitmap.data() + result.bitmap.byteCount()};
}

void expectErrorForEveryCut(const Bytes& file, const std::string& format, std::size_t wholeSize) {
    for (std::size_t size = 12; size < std::min(file.size(), wholeSize); ++size) {
        const Bytes part(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_EQ(errorOf(part), "photo: the " + format + " data end too early") << size;
    }
}

void expectPictureOrErrorForEveryDamage(const Bytes& file, std::size_t first) {
    for (std::size_t i = first; i < file.size(); ++i) {
        Bytes damaged = file;
        damaged[i] ^= 0xFF;
        errorOf(damaged, {.maxPixels = 1 << 20});
    }
}

Bytes makePng(const PngRecipe& recipe) {
    Bytes file;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    const auto write = [](png_structp writer, png_bytep data, std::size_t count) {
        Bytes& target = *static_cast<Bytes*>(png_get_io_ptr(writer));
        target.insert(target.end(), data, data + count);
    };
    png_set_write_fn(png, &file, write, nullptr);
    describePng(png, info, recipe);
    png_write_info(png, info);
    std::vector<png_bytep> rows;
    for (std::uint32_t y = 0; y < recipe.height; ++y) {
        rows.push_back(const_cast<png_bytep>(recipe.rows.data()) + y * png_get_rowbytes(png, info));
    }
    png_write_image(png, rows.data());
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    return file;
}

Bytes makeJpeg(const JpegRecipe& recipe) {
    constexpr unsigned side = 16;
    jpeg_compress_struct info{};
    jpeg_error_mgr errors{};
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    unsigned char* data = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&info, &data, &size);
    info.image_width = info.image_height = side;
    info.input_components = static_cast<int>(recipe.pixel.size());
    info.in_color_space = static_cast<J_COLOR_SPACE>(recipe.inputSpace);
    jpeg_set_defaults(&info);
    jpeg_set_colorspace(&info, static_cast<J_COLOR_SPACE>(recipe.fileSpace));
    jpeg_set_quality(&info, 100, TRUE);
    if (recipe.progressive) jpeg_simple_progression(&info);
    std::vector<jpeg_scan_info> scans = greyScans(recipe.scanCount);
    if (recipe.coloursApart)
        scans = {{1, {0}, 0, 63, 0, 0}, {1, {1}, 0, 63, 0, 0}, {1, {2}, 0, 63, 0, 0}};
    if (scans.size() > 1) {
        info.scan_info = scans.data();
        info.num_scans = static_cast<int>(scans.size());
    }
    info.write_Adobe_marker = recipe.adobeMarker;
    jpeg_start_compress(&info, TRUE);
    if (!recipe.profile.empty()) {
        jpeg_write_icc_profile(&info, recipe.profile.data(),
                               static_cast<unsigned>(recipe.profile.size()));
    }
    Bytes row;
    for (unsigned x = 0; x < side; ++x) {
        row.insert(row.end(), recipe.pixel.begin(), recipe.pixel.end());
    }
    JSAMPROW samples = row.data();
    while (info.next_scanline < side)
        jpeg_write_scanlines(&info, &samples, 1);
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    const Bytes file(data, data + size);
    std::free(data);
    return file;
}

Bytes makeExif(bool bigEndian, std::uint16_t orientation) {
    Bytes exif(2, bigEndian ? 'M' : 'I');
    const auto add = [&](std::uint32_t value, int byteCount) {
        append(exif, value, byteCount, bigEndian);
    };
    add(42, 2);
    add(8, 4);  // the directory follows at once
    add(2, 2);  // two entries: ImageWidth (a LONG) and Orientation (a SHORT)
    add(0x0100, 2), add(4, 2), add(1, 4), add(640, 4);
    add(0x0112, 2), add(3, 2), add(1, 4), add(orientation, 2), add(0, 2);
    add(0, 4);
    return exif;
}

Bytes makeChunk(const std::string& name, const Bytes& data) {
    Bytes named(name.begin(), name.end());
    named.insert(named.end(), data.begin(), data.end());
    Bytes chunk;
    append(chunk, static_cast<std::uint32_t>(data.size()), 4, true);
    chunk.insert(chunk.end(), named.begin(), named.end());
    const auto checksum = ::crc32(0, named.data(), static_cast<uInt>(named.size()));
    append(chunk, static_cast<std::uint32_t>(checksum), 4, true);
    return chunk;
}

Bytes makeRiffChunk(const std::string& name, const Bytes& data) {
    Bytes chunk(name.begin(), name.end());
    append(chunk, static_cast<std::uint32_t>(data.size()), 4, false);
    chunk.insert(chunk.end(), data.begin(), data.end());
    if (data.size() % 2 != 0) chunk.push_back(0);
    return chunk;
}

Bytes makeCanvasChunk(std::uint8_t flags, std::uint32_t width, std::uint32_t height) {
    Bytes data{flags, 0, 0, 0};
    append(data, width - 1, 3, false);
    append(data, height - 1, 3, false);
    return makeRiffChunk("VP8X", data);
}

Bytes makeLosslessChunk(const gfx::Bitmap& bitmap) {
    constexpr std::size_t fileHeaderSize = 12;
    std::uint8_t* data = nullptr;
    const std::size_t size = WebPEncodeLosslessBGRA(bitmap.data(), bitmap.width(), bitmap.height(),
                                                    static_cast<int>(bitmap.stride()), &data);
    const Bytes chunk(data + fileHeaderSize, data + size);
    WebPFree(data);
    return chunk;
}

Bytes makeWebp(const Bytes& chunks) {
    const Bytes form{'W', 'E', 'B', 'P'};
    return makeRiffChunk("RIFF", concatenated(form, chunks));
}

Bytes makeSwappingProfile() {
    const cmsCIExyY white{0.3127, 0.3290, 1};
    const cmsCIExyYTRIPLE primaries{{0.30, 0.60, 1}, {0.64, 0.33, 1}, {0.15, 0.06, 1}};
    const double srgb[] = {2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045};
    cmsToneCurve* const curve = cmsBuildParametricToneCurve(nullptr, 4, srgb);
    cmsToneCurve* const curves[] = {curve, curve, curve};
    const cmsHPROFILE profile = cmsCreateRGBProfile(&white, &primaries, curves);
    cmsFreeToneCurve(curve);
    return takeBytes(profile);
}

Bytes makeSrgbProfile() {
    return takeBytes(cmsCreate_sRGBProfile());
}

Bytes makeLinearGreyProfile() {
    cmsToneCurve* const curve = cmsBuildGamma(nullptr, 1);
    const cmsHPROFILE profile = cmsCreateGrayProfile(cmsD50_xyY(), curve);
    cmsFreeToneCurve(curve);
    return takeBytes(profile);
}

Bytes makeInkProfile() {
    const cmsHPROFILE profile = cmsCreateProfilePlaceholder(nullptr);
    cmsSetProfileVersion(profile, 2.1);
    cmsSetDeviceClass(profile, cmsSigOutputClass);
    cmsSetColorSpace(profile, cmsSigCmykData);
    cmsSetPCS(profile, cmsSigLabData);
    // Two steps of each of four inks, black the fastest; lightness, a and b, zero in the middle.
    std::vector<cmsUInt16Number> table;
    for (int i = 0; i < 8; ++i)
        table.insert(table.end(), {0x7F80, 0x8000, 0x8000, 0, 0x8000, 0x8000});
    cmsPipeline* const pipeline = cmsPipelineAlloc(nullptr, 4, 3);
    cmsPipelineInsertStage(pipeline, cmsAT_BEGIN,
                           cmsStageAllocCLut16bit(nullptr, 2, 4, 3, table.data()));
    cmsWriteTag(profile, cmsSigAToB0Tag, pipeline);
    cmsPipelineFree(pipeline);
    return takeBytes(profile);
}

Bytes withInserted(const Bytes& file, std::size_t offset, const Bytes& piece) {
    Bytes result = file;
    result.insert(result.begin() + static_cast<std::ptrdiff_t>(offset), piece.begin(), piece.end());
    return result;
}

Bytes concatenated(const Bytes& first, const Bytes& second) {
    return withInserted(first, first.size(), second);
}

}  // namespace kalim::codec::test
