#include "tests/codec/PictureFiles.h"

#include <png.h>
#include <zlib.h>

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
    png_color_16 key{};
    key.gray = static_cast<png_uint_16>(recipe.transparentGrey);
    if (!recipe.paletteAlpha.empty() || recipe.transparentGrey >= 0) {
        png_set_tRNS(png, info, recipe.paletteAlpha.data(),
                     static_cast<int>(recipe.paletteAlpha.size()), &key);
    }
}

}  // namespace

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
    info.write_Adobe_marker = recipe.adobeMarker;
    jpeg_start_compress(&info, TRUE);
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

Bytes withInserted(const Bytes& file, std::size_t offset, const Bytes& piece) {
    Bytes result = file;
    result.insert(result.begin() + static_cast<std::ptrdiff_t>(offset), piece.begin(), piece.end());
    return result;
}

Bytes concatenated(const Bytes& first, const Bytes& second) {
    return withInserted(first, first.size(), second);
}

}  // namespace kalim::codec::test
