#include "kalimkit/theme/ColorImages.h"

#include <gtest/gtest.h>

#include "kalimkit/theme/HexColor.h"
#include "tests/support/TestHost.h"

namespace kalim {

namespace {

const gfx::ColorRef blue = gfx::makeColor(0, 0, 1);

// Left to right: opaque red, half transparent red, nothing.
gfx::ImageRef threePixels(gfx::Device& device, double scale, gfx::ImageOrientation orientation) {
    gfx::Bitmap bitmap(3, 1);
    bitmap.setColorAt(0, 0, {1, 0, 0, 1});
    bitmap.setColorAt(1, 0, {1, 0, 0, 0.5});
    return device.makeImage(std::move(bitmap), scale, orientation);
}

}  // namespace

TEST(ColorImages, AreAsLargeAsAskedAtTheScreensScale) {
    const test::TestHost host({.scale = 2});
    const struct {
        gfx::ImageRef image;
        gfx::Size size;
    } cases[] = {
        {imageWithColor2(blue), {1, 1}},
        {imageWithColor2AndSize(blue, {}), {1, 1}},
        {imageWithColor2AndSize(blue, {3, 5}), {3, 5}},
        {imageWithColor(blue), {4, 4}},
        {imageWithColorSizeCornerRadius(blue, {6, 8}, 0), {6, 8}},
    };
    for (const auto& [image, size] : cases) {
        ASSERT_TRUE(image);
        EXPECT_EQ(image->size(), size);
        EXPECT_EQ(image->scale(), 2);
        for (const int x : {0, image->pixelSize().width - 1}) {
            EXPECT_EQ(image->pixels()->colorAt(x, 0), *blue);
        }
    }
    EXPECT_FALSE(imageWithColor2AndSize(blue, {0, 5}));
    EXPECT_FALSE(imageWithColor2(nullptr));
}

TEST(ColorImages, RoundCornersAreCutOff) {
    const test::TestHost host;
    const auto pixels = imageWithColorSizeCornerRadius(blue, {20, 20}, 6)->pixels();
    for (const auto& [x, y] : {std::pair{0, 0}, {19, 0}, {0, 19}, {19, 19}}) {
        EXPECT_EQ(pixels->colorAt(x, y).alpha, 0);
    }
    for (const auto& [x, y] : {std::pair{6, 0}, {13, 19}, {0, 13}, {19, 6}, {3, 3}}) {
        EXPECT_EQ(pixels->colorAt(x, y), *blue) << x << "," << y;
    }
}

TEST(ColorImages, TheHighlightIsMadeOnce) {
    const test::TestHost host;
    const gfx::ImageRef image = highlightBackgroundImage2();
    EXPECT_EQ(image, highlightBackgroundImage2());
    EXPECT_EQ(image->size(), gfx::Size(1, 1));
    EXPECT_NEAR(image->pixels()->colorAt(0, 0).red, 0xEB / 255.0, 0.005);
    EXPECT_NEAR(image->pixels()->colorAt(0, 0).alpha, 0.9, 0.003);
}

TEST(ColorImages, TintingKeepsOnlyTheImagesOpacity) {
    test::TestHost host({.scale = 2});
    gfx::Device& device = host.environment().device();
    const auto image = threePixels(device, 3, gfx::ImageOrientation::Left);
    const auto tinted = imageWithTintColor(image, blue);
    EXPECT_EQ(tinted->pixelSize(), gfx::PixelSize(1, 3)) << "turned upright";
    EXPECT_EQ(tinted->scale(), 3);
    // Turned to the left, the raster's last pixel is on top.
    EXPECT_EQ(tinted->pixels()->colorAt(0, 0).alpha, 0);
    EXPECT_EQ(tinted->pixels()->colorAt(0, 1).blue, 1);
    EXPECT_NEAR(tinted->pixels()->colorAt(0, 1).alpha, 0.5, 0.003);
    EXPECT_EQ(tinted->pixels()->colorAt(0, 2), *blue);
    EXPECT_FALSE(imageWithTintColor(nullptr, blue));
}

TEST(ColorImages, FadingScalesTheImagesOpacity) {
    test::TestHost host({.scale = 2});
    const auto image = threePixels(host.environment().device(), 3, gfx::ImageOrientation::Up);
    const auto faded = imageWithAlpha(image, 0.5);
    EXPECT_EQ(faded->size(), image->size());
    const double alphas[] = {0.5, 0.25, 0};
    for (int x = 0; x < 3; ++x) {
        EXPECT_NEAR(faded->pixels()->colorAt(x, 0).alpha, alphas[x], 0.005);
    }
}

TEST(HexColor, NumbersCountFromTheirLowestThreeBytes) {
    const gfx::Color red{246 / 255.0, 52 / 255.0, 52 / 255.0, 1};
    EXPECT_EQ(*colorWithHex2(0xF63434), red);
    EXPECT_EQ(*colorWithHex2(0x1F63434), red);
    EXPECT_EQ(*colorWithHex2Alpha(0xF63434, 0.25), red.withAlpha(0.25));
    EXPECT_NE(colorWithHex2(0xF63434), colorWithHex2(0xF63434)) << "each is an object of its own";
}

TEST(HexColor, TextsAreReadAsTheyAreWritten) {
    // An empty result stands for the clear colour.
    const struct {
        const char* text;
        const char* hex;
    } cases[] = {
        {"F63434", "#F63434FF"},
        {"#F63434", "#F63434FF"},
        {"0XF63434", "#F63434FF"},
        {"  0x1aa9ff\n", "#1AA9FFFF"},
        {"\u3000\u00a01aa9ff\u2028", "#1AA9FFFF"},
        {"0x#1aa9ff", "#1AA9FFFF"},
        {"ZZ1aFG", "#001A00FF"},
        {"éé12éé", "#001200FF"},
        {"#0x1aa9ff", ""},
        {"", ""},
        {"12345", ""},
        {"#12345", ""},
        {"0x1234", ""},
        {"#FFF", ""},
        {"F63434FF", ""},
        {"12 345", "#120045FF"},
    };
    for (const auto& [text, hex] : cases) {
        EXPECT_EQ(colorWithHexString(text)->hex(), *hex ? hex : "#00000000") << text;
    }
    EXPECT_EQ(colorWithHexStringAlpha("1d1d1d", 0.85)->alpha, 0.85);
    EXPECT_EQ(colorWithHexStringAlpha("1d1d", 0.85)->alpha, 0);
}

}  // namespace kalim
