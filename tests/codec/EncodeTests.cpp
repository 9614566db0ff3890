#include "kalimkit/codec/Encode.h"

#include <gtest/gtest.h>

#include <string>

#include "kalimkit/codec/Decode.h"

namespace kalim::codec::test {

namespace {

void setPixel(gfx::Bitmap& bitmap, int x, int y, const Bytes& bgra) {
    std::copy(bgra.begin(), bgra.end(), bitmap.row(y) + 4 * x);
}

std::string chunkNames(const Bytes& png) {
    std::string names;
    for (std::size_t at = 8; at + 12 <= png.size();) {
        const std::size_t length =
            std::size_t{png[at]} << 24 | png[at + 1] << 16 | png[at + 2] << 8 | png[at + 3];
        const std::string name(png.begin() + at + 4, png.begin() + at + 8);
        if (name != "IDAT" || !names.ends_with("IDAT ")) names += name + " ";
        at += length + 12;
    }
    return names;
}

}  // namespace

TEST(Encode, PngKeepsEveryPremultipliedColour) {
    // Column: the value of a component; row: alpha. Values beyond their alpha do not exist.
    gfx::Bitmap all(256, 256);
    for (int alpha = 0; alpha < 256; ++alpha) {
        for (int value = 0; value < 256; ++value) {
            const auto part = static_cast<std::uint8_t>(std::min(value, alpha));
            setPixel(all, value, alpha, {part, 0, part, static_cast<std::uint8_t>(alpha)});
        }
    }
    Bytes file;
    ASSERT_EQ(encodePng(all, file), std::nullopt);
    EXPECT_EQ(decode(file, "all").bitmap, all);
}

TEST(Encode, PngHasAnAlphaChannelOnlyWhereItIsNeededAndNoMetadata) {
    constexpr std::size_t colorTypeOffset = 25;
    gfx::Bitmap bitmap(2, 1);
    setPixel(bitmap, 0, 0, {1, 2, 3, 255});
    setPixel(bitmap, 1, 0, {4, 5, 6, 255});
    Bytes file;
    ASSERT_EQ(encodePng(bitmap, file), std::nullopt);
    EXPECT_EQ(file[colorTypeOffset], 2);
    EXPECT_EQ(decode(file, "opaque").bitmap, bitmap);
    EXPECT_EQ(chunkNames(file), "IHDR sRGB IDAT IEND ");

    setPixel(bitmap, 1, 0, {4, 5, 6, 254});
    ASSERT_EQ(encodePng(bitmap, file), std::nullopt);
    EXPECT_EQ(file[colorTypeOffset], 6);
}

TEST(Encode, JpegShowsWhiteThroughTransparentPixelsAndHasAQuality) {
    gfx::Bitmap bitmap(16, 16);
    for (int y = 0; y < 16; ++y) {
        for (int x = 0; x < 8; ++x)
            setPixel(bitmap, x, y, {0, 0, 128, 128});
    }
    Bytes file;
    Bytes coarse;
    ASSERT_EQ(encodeJpeg(bitmap, 20, coarse), std::nullopt);
    ASSERT_EQ(encodeJpeg(bitmap, 500, file), std::nullopt);
    EXPECT_LT(coarse.size(), file.size());
    const gfx::Bitmap decoded = decode(file, "jpeg").bitmap;
    const Bytes left(decoded.row(3) + 4 * 3, decoded.row(3) + 4 * 4);
    const Bytes right(decoded.row(3) + 4 * 12, decoded.row(3) + 4 * 13);
    const int expected[2][3] = {{127, 127, 255}, {255, 255, 255}};
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_NEAR(left[i], expected[0][i], 2);
        EXPECT_NEAR(right[i], expected[1][i], 2);
    }
}

TEST(Encode, RefusesAPictureWithoutPixels) {
    Bytes file{1, 2, 3};
    EXPECT_EQ(encodePng({}, file), "a picture without pixels cannot be written");
    EXPECT_TRUE(file.empty());
    EXPECT_EQ(encodeJpeg({}, 90, file), "a picture without pixels cannot be written");
    EXPECT_EQ(encodeWebp({}, 90, file), "a picture without pixels cannot be written");
    EXPECT_EQ(encodeWebp(gfx::Bitmap(16384, 1), 90, file),
              "the picture cannot be written as WebP (a side is longer than 16383 pixels)");
    EXPECT_NE(encodeJpeg(gfx::Bitmap(70000, 1), 90, file), std::nullopt);
    EXPECT_TRUE(file.empty());
}

}  // namespace kalim::codec::test
