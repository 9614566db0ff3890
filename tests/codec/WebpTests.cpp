#include <gtest/gtest.h>

#include "kalimkit/codec/Decode.h"
#include "kalimkit/codec/Encode.h"
#include "tests/codec/PictureFiles.h"

namespace kalim::codec::test {

namespace {

constexpr std::uint8_t animationFlag = 0x02;
constexpr std::uint8_t exifFlag = 0x08;
constexpr std::uint8_t alphaFlag = 0x10;

gfx::Bitmap filled(int width, int height, const Bytes& bgra) {
    gfx::Bitmap bitmap(width, height);
    for (std::size_t i = 0; i < bitmap.byteCount(); ++i)
        bitmap.data()[i] = bgra[i % 4];
    return bitmap;
}

Bytes pixelAt(const gfx::Bitmap& bitmap, int x, int y) {
    const std::uint8_t* const pixel = bitmap.row(y) + std::ptrdiff_t{4} * x;
    return {pixel, pixel + 4};
}

// A frame's header: its place in steps of two pixels and its size less one, three bytes each.
Bytes frameChunk(std::uint8_t halfX, std::uint8_t halfY, std::uint8_t side, const Bytes& pixels) {
    const auto less = static_cast<std::uint8_t>(side - 1);
    const Bytes header{halfX, 0, 0, halfY, 0, 0, less, 0, 0, less, 0, 0, 100, 0, 0, 0};
    return makeRiffChunk("ANMF", concatenated(header, pixels));
}

}  // namespace

TEST(Webp, LosslessPixelsBecomePremultiplied) {
    gfx::Bitmap straight = filled(3, 2, {10, 100, 200, 255});
    straight.row(1)[4 * 2 + 3] = 51;
    const DecodeResult result = decode(makeWebp(makeLosslessChunk(straight)), "photo");
    ASSERT_EQ(result.error, std::nullopt);
    EXPECT_EQ(result.bitmap.size(), straight.size());
    EXPECT_EQ(pixelAt(result.bitmap, 0, 0), (Bytes{10, 100, 200, 255}));
    EXPECT_EQ(pixelAt(result.bitmap, 2, 1), (Bytes{2, 20, 40, 51}));
    // The hint that says whether there is alpha: behind two sizes of 14 bits, behind "VP8L", its
    // length and a byte.
    Bytes file = makeWebp(makeLosslessChunk(straight));
    constexpr std::size_t hint = 12 + 8 + 1 + 3;
    ASSERT_NE(file[hint] & 0x10U, 0U);
    file[hint] &= 0xEFU;
    EXPECT_EQ(pixelAt(decode(file, "photo").bitmap, 2, 1), (Bytes{2, 20, 40, 51}));
}

TEST(Webp, WhatIsWrittenComesBackWithItsAlphaAndSmallerForLowerQuality) {
    gfx::Bitmap bitmap = filled(48, 32, {20, 60, 180, 255});
    for (int y = 0; y < 32; ++y) {
        for (int x = 24; x < 48; ++x) {
            const Bytes pixel{0, static_cast<std::uint8_t>(x * y % 100), 0, 102};
            std::copy(pixel.begin(), pixel.end(), bitmap.row(y) + std::ptrdiff_t{4} * x);
        }
    }
    Bytes fine;
    Bytes coarse;
    ASSERT_EQ(encodeWebp(bitmap, 500, fine), std::nullopt);
    ASSERT_EQ(encodeWebp(bitmap, 10, coarse), std::nullopt);
    EXPECT_LT(coarse.size(), fine.size());
    const gfx::Bitmap decoded = decode(fine, "photo").bitmap;
    ASSERT_EQ(decoded.size(), bitmap.size());
    const Bytes opaque = pixelAt(decoded, 8, 8);
    const int expected[] = {20, 60, 180, 255};
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_NEAR(opaque[i], expected[i], 4);
    EXPECT_EQ(pixelAt(decoded, 40, 16)[3], 102);
}

TEST(Webp, TakesTheOrientationWithAndWithoutPrefix) {
    const Bytes start = concatenated(makeCanvasChunk(exifFlag, 2, 3),
                                     makeLosslessChunk(filled(2, 3, {1, 2, 3, 255})));
    const Bytes exif = makeExif(true, 6);
    const Bytes prefixed = concatenated({'E', 'x', 'i', 'f', 0, 0}, exif);
    for (const Bytes& data : {exif, prefixed}) {
        const Bytes file = makeWebp(concatenated(start, makeRiffChunk("EXIF", data)));
        EXPECT_EQ(decode(file, "photo").orientation, gfx::ImageOrientation::Right);
    }
}

TEST(Webp, AnAnimationIsItsFirstFrameOnATransparentCanvas) {
    const Bytes background(6, 0);
    const Bytes first = frameChunk(1, 2, 2, makeLosslessChunk(filled(2, 2, {50, 100, 200, 255})));
    const Bytes second = frameChunk(0, 0, 6, makeLosslessChunk(filled(6, 6, {9, 9, 9, 255})));
    const Bytes start = concatenated(makeCanvasChunk(animationFlag | alphaFlag, 6, 6),
                                     makeRiffChunk("ANIM", background));
    const DecodeResult result =
        decode(makeWebp(concatenated(start, concatenated(first, second))), "photo");
    ASSERT_EQ(result.error, std::nullopt);
    gfx::Bitmap expected(6, 6);
    for (const int y : {4, 5}) {
        for (const int x : {2, 3}) {
            const Bytes pixel{50, 100, 200, 255};
            std::copy(pixel.begin(), pixel.end(), expected.row(y) + std::ptrdiff_t{4} * x);
        }
    }
    EXPECT_EQ(result.bitmap, expected);
    constexpr std::uint64_t needed = 4 * (6 * 6 + 2 * 2);
    const Bytes alone = makeWebp(concatenated(start, first));
    EXPECT_EQ(errorOf(alone, {.maxMemory = needed}), "none");
    EXPECT_EQ(errorOf(alone, {.maxMemory = needed - 1}),
              "photo: the picture needs more than 159 bytes");
    // The frame reaches over the edge of the canvas.
    const Bytes outside = frameChunk(3, 2, 2, makeLosslessChunk(filled(2, 2, {1, 1, 1, 255})));
    EXPECT_EQ(errorOf(makeWebp(concatenated(start, outside))), "photo: the WebP data are damaged");
}

TEST(Webp, DataThatAreCutOffOrDamagedAreAnError) {
    Bytes lossy;
    ASSERT_EQ(encodeWebp(filled(20, 10, {1, 99, 3, 120}), 90, lossy), std::nullopt);
    for (const Bytes& file : {makeWebp(makeLosslessChunk(filled(3, 2, {1, 2, 3, 4}))), lossy}) {
        expectErrorForEveryCut(file, "WebP", file.size() - 1);
        expectPictureOrErrorForEveryDamage(file, 12);
    }
}

}  // namespace kalim::codec::test
