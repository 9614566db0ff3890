#include "kalimkit/codec/ColorConversion.h"

#include <gtest/gtest.h>
#include <png.h>

#include <cstdio>
#include <tuple>

#include "tests/codec/PictureFiles.h"

// jpeglib.h relies on <cstdio> before it.
#include <jpeglib.h>

namespace kalim::codec::test {

namespace {

// Blue, green, red, alpha of the first pixel.
Bytes firstPixel(const Bytes& file) {
    Bytes pixels = pixelsOf(file);
    pixels.resize(4);
    return pixels;
}

Bytes webpOf(const Bytes& bgra, const Bytes& profile) {
    constexpr std::uint8_t profileAndAlpha = 0x30;
    gfx::Bitmap bitmap(1, 1);
    std::copy(bgra.begin(), bgra.end(), bitmap.data());
    const Bytes head =
        concatenated(makeCanvasChunk(profileAndAlpha, 1, 1), makeRiffChunk("ICCP", profile));
    return makeWebp(concatenated(head, makeLosslessChunk(bitmap)));
}

Bytes pngOf(int colorType, const Bytes& row, const Bytes& profile) {
    return makePng({.colorType = colorType, .rows = row, .profile = profile});
}

Bytes jpegOf(int space, const Bytes& pixel, const Bytes& profile, bool missingInk = false) {
    const int fileSpace = space == JCS_RGB ? int{JCS_YCbCr} : space;
    return makeJpeg({.inputSpace = space,
                     .fileSpace = fileSpace,
                     .pixel = pixel,
                     .adobeMarker = missingInk,
                     .profile = profile});
}

}  // namespace

TEST(ColorConversion, ColoursOfAProfileBecomeSrgb) {
    const Bytes swapping = makeSwappingProfile();
    const Bytes linear = makeLinearGreyProfile();
    const Bytes ink = makeInkProfile();
    // Light of 55/255 is sRGB's 128; lightness 50 is 119.
    const std::tuple<const char*, Bytes, Bytes> cases[] = {
        {"JPEG", jpegOf(JCS_RGB, {200, 100, 50}, swapping), {50, 200, 100, 255}},
        {"grey JPEG", jpegOf(JCS_GRAYSCALE, {55}, linear), {128, 128, 128, 255}},
        {"ink JPEG", jpegOf(JCS_CMYK, {255, 0, 0, 0}, ink), {119, 119, 119, 255}},
        {"PNG", pngOf(PNG_COLOR_TYPE_RGB, {200, 100, 50}, swapping), {50, 200, 100, 255}},
        {"PNG, converted before alpha is multiplied in",
         pngOf(PNG_COLOR_TYPE_RGB_ALPHA, {200, 100, 50, 51}, swapping),
         {10, 40, 20, 51}},
        {"grey PNG", pngOf(PNG_COLOR_TYPE_GRAY_ALPHA, {55, 255}, linear), {128, 128, 128, 255}},
        {"WebP", webpOf({50, 100, 200, 51}, swapping), {10, 40, 20, 51}},
    };
    for (const auto& [what, file, expected] : cases) {
        const Bytes pixel = firstPixel(file);
        for (std::size_t i = 0; i < 4; ++i)
            EXPECT_NEAR(pixel[i], expected[i], 2) << what << " byte " << i;
    }
}

TEST(ColorConversion, ProfilesThatDoNotFitOrChangeNothingAreIgnored) {
    const Bytes swapping = makeSwappingProfile();
    Bytes withoutTags = swapping;
    std::fill(withoutTags.begin() + 128, withoutTags.end(), std::uint8_t{0xFF});
    const Bytes cutOff(swapping.begin(), swapping.begin() + 200);
    using Samples = ColorConversion::Samples;
    EXPECT_NE(ColorConversion::make(swapping, Samples::Bgra), nullptr);
    for (const Bytes& profile : {Bytes{}, Bytes(500, 7), withoutTags, cutOff, makeSrgbProfile(),
                                 makeLinearGreyProfile(), makeInkProfile()}) {
        EXPECT_EQ(ColorConversion::make(profile, Samples::Bgra), nullptr) << profile.size();
        EXPECT_EQ(firstPixel(webpOf({1, 2, 3, 255}, profile)), (Bytes{1, 2, 3, 255}));
    }
    EXPECT_EQ(ColorConversion::make(swapping, Samples::GreyBgra), nullptr);
    EXPECT_EQ(ColorConversion::make(swapping, Samples::MissingInk), nullptr);
    const Bytes ink = firstPixel(jpegOf(JCS_CMYK, {204, 153, 255, 204}, swapping, true));
    EXPECT_NEAR(ink[0], 204, 2);
    EXPECT_NEAR(ink[1], 122, 2);
}

}  // namespace kalim::codec::test
