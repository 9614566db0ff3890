// A camera's JPEG of 12 megapixels with an arrow across it, as it is written again.
#include "kalimkit/codec/Saving.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "bench/Photo.h"
#include "kalimkit/codec/Decode.h"
#include "kalimkit/codec/Encode.h"

// jpeglib.h relies on <cstdio> before it.
#include <jpeglib.h>

namespace kalim {
namespace {

constexpr int quality = 90;

// With colours at half resolution, which the codec itself does not write.
codec::Bytes cameraFile() {
    const gfx::Bitmap photo = bench::photo();
    jpeg_compress_struct info{};
    jpeg_error_mgr errors{};
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    unsigned char* data = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&info, &data, &size);
    info.image_width = static_cast<JDIMENSION>(photo.width());
    info.image_height = static_cast<JDIMENSION>(photo.height());
    info.input_components = 4;
    info.in_color_space = JCS_EXT_BGRX;
    jpeg_set_defaults(&info);
    jpeg_set_quality(&info, quality, TRUE);
    jpeg_start_compress(&info, TRUE);
    while (info.next_scanline < info.image_height) {
        auto* row = const_cast<JSAMPROW>(photo.row(static_cast<int>(info.next_scanline)));
        jpeg_write_scanlines(&info, &row, 1);
    }
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    codec::Bytes file(data, data + size);
    std::free(data);
    return file;
}

gfx::Bitmap withArrow(gfx::Bitmap picture) {
    constexpr int width = 40;
    for (int y = 500; y < 2000; ++y) {
        std::uint8_t* const from = picture.row(y) + std::ptrdiff_t{4} * (y + 200);
        for (int x = 0; x < width; ++x)
            std::copy_n("\x30\x40\xF0\xFF", 4, from + std::ptrdiff_t{4} * x);
    }
    return picture;
}

void saveJpegWithArrow(benchmark::State& state) {
    const codec::Bytes file = cameraFile();
    const gfx::Bitmap pixels = codec::decode(file, "photo").bitmap;
    const gfx::Bitmap result = withArrow(pixels);
    codec::SavingSource source;
    source.file = file;
    source.pixels = &pixels;
    source.part = {0, 0, pixels.width(), pixels.height()};
    codec::SavingOptions options;
    options.format = codec::FileFormat::Jpeg;
    for (auto _ : state) {
        const codec::SavedPicture saved = codec::savePicture(result, source, options);
        if (saved.error) state.SkipWithError(saved.error->c_str());
        if (!saved.encodedAnew.empty()) state.SkipWithError(saved.encodedAnew.c_str());
    }
}
BENCHMARK(saveJpegWithArrow)->Unit(benchmark::kMillisecond);

void decodeAndEncodeJpeg(benchmark::State& state) {
    const codec::Bytes file = cameraFile();
    codec::Bytes bytes;
    for (auto _ : state) {
        const codec::DecodeResult decoded = codec::decode(file, "photo");
        const auto error = codec::encodeJpeg(decoded.bitmap, quality, bytes);
        if (error) state.SkipWithError(error->c_str());
    }
}
BENCHMARK(decodeAndEncodeJpeg)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kalim
