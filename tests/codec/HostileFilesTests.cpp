#include <gtest/gtest.h>
#include <png.h>
#include <sys/resource.h>
#include <zlib.h>

#include <algorithm>
#include <cstdio>

#include "kalimkit/codec/Encode.h"
#include "tests/codec/PictureFiles.h"

// jpeglib.h relies on <cstdio> before it.
#include <jpeglib.h>

namespace kalim::codec::test {

namespace {

constexpr std::size_t afterHeaderChunk = 8 + 25;

// Kilobytes; this never falls.
long peakMemory() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

// Reads the file and expects hardly more memory than the process had before.
std::string errorWithLittleMemory(const Bytes& file) {
    constexpr long allowedGrowth = 12L * 1024;
    const long before = peakMemory();
    const std::string error = errorOf(file);
    EXPECT_LT(peakMemory() - before, allowedGrowth) << error;
    return error;
}

Bytes pngOfSize(std::uint32_t side) {
    const auto high = static_cast<std::uint8_t>(side >> 8);
    const auto low = static_cast<std::uint8_t>(side);
    const Bytes start{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    const Bytes header{0, 0, high, low, 0, 0, high, low, 8, PNG_COLOR_TYPE_RGB, 0, 0, 0};
    return concatenated(start,
                        concatenated(makeChunk("IHDR", header), makeChunk("IDAT", Bytes(9, 1))));
}

Bytes jpegOfSize(std::uint32_t side, bool isArithmetic = false, bool isProgressive = false) {
    Bytes file = makeJpeg({.inputSpace = JCS_RGB,
                           .fileSpace = JCS_YCbCr,
                           .pixel = {1, 2, 3},
                           .progressive = isProgressive});
    const Bytes frameMarker{0xFF, static_cast<std::uint8_t>(isProgressive ? 0xC2 : 0xC0)};
    // Behind the marker: length (2), precision (1), height and width (2 each).
    const auto size =
        std::search(file.begin(), file.end(), frameMarker.begin(), frameMarker.end()) + 5;
    size[0] = size[2] = static_cast<std::uint8_t>(side >> 8);
    size[1] = size[3] = static_cast<std::uint8_t>(side);
    if (isArithmetic) size[-4] = 0xC9;
    return file;
}

// The start, then zeros, packed by zlib.
Bytes packed(const Bytes& start, std::size_t size) {
    z_stream stream{};
    deflateInit(&stream, Z_BEST_SPEED);
    Bytes result;
    Bytes input(std::size_t{1} << 16);
    std::copy(start.begin(), start.end(), input.begin());
    for (std::size_t done = 0; done < size; done += input.size()) {
        Bytes output(input.size());
        stream.next_in = input.data();
        stream.avail_in = static_cast<uInt>(input.size());
        stream.next_out = output.data();
        stream.avail_out = static_cast<uInt>(output.size());
        deflate(&stream, done + input.size() < size ? Z_NO_FLUSH : Z_FINISH);
        result.insert(result.end(), output.begin(), output.end() - stream.avail_out);
        std::fill(input.begin(), input.end(), std::uint8_t{0});
    }
    deflateEnd(&stream);
    return result;
}

}  // namespace

TEST(HostileFiles, SizesBeyondTheLimitsCostNoMemory) {
    constexpr std::uint8_t noFlags = 0;
    EXPECT_EQ(errorWithLittleMemory(pngOfSize(65535)),
              "photo: 65535 x 65535 pixels are more than the 32767 allowed for a side");
    EXPECT_EQ(errorWithLittleMemory(pngOfSize(20000)),
              "photo: 20000 x 20000 pixels are more than the 268 megapixels allowed");
    EXPECT_EQ(errorWithLittleMemory(pngOfSize(16000)), "photo: the PNG data end too early");
    EXPECT_EQ(errorWithLittleMemory(jpegOfSize(65535)),
              "photo: the JPEG data cannot be read "
              "(Maximum supported image dimension is 65500 pixels)");
    EXPECT_EQ(errorWithLittleMemory(jpegOfSize(20000)),
              "photo: 20000 x 20000 pixels are more than the 268 megapixels allowed");
    for (const bool isArithmetic : {false, true}) {
        EXPECT_EQ(errorWithLittleMemory(jpegOfSize(16000, isArithmetic)),
                  "photo: the JPEG data end too early");
    }
    const Bytes pixel = makeLosslessChunk(gfx::Bitmap(1, 1));
    Bytes webp = makeWebp(concatenated(makeCanvasChunk(noFlags, 65535, 65535), pixel));
    EXPECT_EQ(errorWithLittleMemory(webp), "photo: the WebP data are damaged");
    webp.resize(webp.size() - pixel.size());
    EXPECT_EQ(errorWithLittleMemory(webp),
              "photo: 65535 x 65535 pixels are more than the 32767 allowed for a side");
    // The canvas is within the limits, but the frame does not cover it.
    webp = makeWebp(concatenated(makeCanvasChunk(noFlags, 16000, 16000), pixel));
    EXPECT_EQ(errorWithLittleMemory(webp), "photo: the WebP data are damaged");
}

TEST(HostileFiles, AJpegMayHaveAHundredScansOrTwoDozenOfTheMostPixels) {
    const auto jpegOfScans = [](int count) {
        return makeJpeg({.inputSpace = JCS_GRAYSCALE,
                         .fileSpace = JCS_GRAYSCALE,
                         .pixel = {9},
                         .scanCount = count});
    };
    EXPECT_EQ(errorWithLittleMemory(jpegOfScans(100)), "none");
    EXPECT_EQ(errorWithLittleMemory(jpegOfScans(101)),
              "photo: the JPEG data have more than 100 scans");
    const DecodeLimits limits{.maxPixels = 256};
    EXPECT_EQ(errorOf(jpegOfScans(24), limits), "none");
    EXPECT_EQ(errorOf(jpegOfScans(25), limits),
              "photo: the JPEG data have 25 scans, too many for so many pixels");
    // What looks like scans in a comment, or in a further picture, is none.
    Bytes scanMarkers;
    for (int i = 0; i < 126; ++i)
        scanMarkers.insert(scanMarkers.end(), {0xFF, 0xDA});
    const Bytes comment = concatenated({0xFF, 0xFE, 0, 254}, scanMarkers);
    Bytes file = jpegOfScans(24);
    file.resize(file.size() - 2);
    file = concatenated(concatenated(file, comment), {0xFF, 0xD9});
    file = concatenated(concatenated(file, {0, 0}), scanMarkers);
    EXPECT_EQ(errorOf(file, limits), "none");
    // A byte of a scan's data is no marker, so its neighbours are no length to be skipped.
    file = jpegOfScans(101);
    const auto lastScan =
        std::find_end(file.begin(), file.end(), scanMarkers.begin(), scanMarkers.begin() + 2);
    const auto offset = static_cast<std::size_t>(lastScan - file.begin());
    EXPECT_EQ(errorWithLittleMemory(withInserted(file, offset, {0xFF, 0, 0xF0, 0})),
              "photo: the JPEG data have more than 100 scans");
}

TEST(HostileFiles, WhatNeedsTooMuchMemoryIsRefusedByTheHeader) {
    const auto jpeg = [](bool progressive, bool coloursApart = false) {
        return makeJpeg({.inputSpace = JCS_RGB,
                         .fileSpace = JCS_YCbCr,
                         .pixel = {1, 2, 3},
                         .progressive = progressive,
                         .coloursApart = coloursApart});
    };
    const gfx::Bitmap bitmap(20, 10);
    Bytes lossy;
    encodeWebp(bitmap, 80, lossy);
    // The blocks of a colour with half the samples are half as many each way.
    constexpr std::uint64_t coefficients = std::uint64_t{128} * (4 + 1 + 1);
    struct Case {
        const char* what;
        Bytes file;
        std::uint64_t needed;
    };
    const Case cases[] = {
        {"a JPEG", jpeg(false), 16 * 16 * 4},
        {"its colours one after the other", jpeg(false, true), 16 * 16 * 4 + coefficients},
        {"a progressive one", jpeg(true), 16 * 16 * 4 + coefficients},
        {"a PNG", makePng({.rows = {77}}), 4},
        {"an interlaced one", makePng({.interlaced = true, .rows = {77}}), 4},
        {"a WebP without loss", makeWebp(makeLosslessChunk(bitmap)), 20 * 10 * 8},
        {"one with loss and alpha", lossy, 20 * 10 * 5},
    };
    for (const Case& each : cases) {
        EXPECT_EQ(errorOf(each.file, {.maxMemory = each.needed}), "none") << each.what;
        EXPECT_EQ(
            errorOf(each.file, {.maxMemory = each.needed - 1}),
            "photo: the picture needs more than " + std::to_string(each.needed - 1) + " bytes")
            << each.what;
    }
    // 30 bytes that stand for two gigabytes, and a progressive picture of 256 megapixels.
    const Bytes blank{0x52, 0x49, 0x46, 0x46, 0x16, 0,    0,    0,    0x57, 0x45,
                      0x42, 0x50, 0x56, 0x50, 0x38, 0x4C, 0x0A, 0,    0,    0,
                      0x2F, 0xFE, 0xBF, 0xFF, 0x0F, 0x88, 0x88, 0x08, 0,    0};
    EXPECT_EQ(errorWithLittleMemory(blank), "photo: the picture needs more than 1.5 GiB");
    const Bytes large = concatenated(jpegOfSize(16000, false, true), Bytes(500'000));
    EXPECT_EQ(errorWithLittleMemory(large), "photo: the picture needs more than 1.5 GiB");
}

TEST(HostileFiles, SideInformationThatUnpacksToGigabytesIsPassedOver) {
    constexpr std::size_t unpackedSize = std::size_t{64} << 20;
    const Bytes name{'k', 0, 0};
    const Bytes png = makePng({.rows = {77}});
    const Bytes text = makeChunk("zTXt", concatenated(name, packed({}, unpackedSize)));
    Bytes texts;
    for (int i = 0; i < 20; ++i)
        texts = concatenated(texts, text);
    EXPECT_EQ(errorWithLittleMemory(withInserted(png, afterHeaderChunk, texts)), "none");

    Bytes profile = makeLinearGreyProfile();
    const Bytes declaredSize{4, 0, 0, 0};
    std::copy(declaredSize.begin(), declaredSize.end(), profile.begin());
    const Bytes chunk = makeChunk("iCCP", concatenated(name, packed(profile, unpackedSize)));
    const Bytes twice = concatenated(chunk, chunk);
    EXPECT_EQ(errorWithLittleMemory(withInserted(png, afterHeaderChunk, twice)), "none");
}

}  // namespace kalim::codec::test
