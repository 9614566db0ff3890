#include "kalimkit/imageedit/image/MDrawImageUtil.h"

#include <gtest/gtest.h>

#include "kalimkit/gfx/Raise.h"
#include "kalimkit/imageedit/image/UprightBitmap.h"
#include "tests/support/TestHost.h"

namespace kalim {
namespace {

// Every pixel its own colour: blue holds the column, green the row.
gfx::Bitmap coordinates(int width, int height) {
    gfx::Bitmap bitmap(width, height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            std::uint8_t* pixel = bitmap.row(y) + x * 4;
            pixel[0] = static_cast<std::uint8_t>(x);
            pixel[1] = static_cast<std::uint8_t>(y);
            pixel[3] = 255;
        }
    }
    return bitmap;
}

gfx::ImageRef picture(test::TestHost& host, int width, int height, double scale = 1,
                      gfx::ImageOrientation orientation = gfx::ImageOrientation::Up) {
    return host.environment().device().makeImage(coordinates(width, height), scale, orientation);
}

TEST(UprightBitmap, TurnsEachOrientationPixelByPixel) {
    struct Case {
        gfx::ImageOrientation orientation;
        gfx::PixelSize size;
        // The raster positions that come to the upright picture's top-left and top-right corners.
        gfx::PixelSize topLeft;
        gfx::PixelSize topRight;
    };
    // A raster of 3 x 2.
    constexpr Case cases[] = {
        {gfx::ImageOrientation::Up, {3, 2}, {0, 0}, {2, 0}},
        {gfx::ImageOrientation::Down, {3, 2}, {2, 1}, {0, 1}},
        {gfx::ImageOrientation::Left, {2, 3}, {2, 0}, {2, 1}},
        {gfx::ImageOrientation::Right, {2, 3}, {0, 1}, {0, 0}},
        {gfx::ImageOrientation::UpMirrored, {3, 2}, {2, 0}, {0, 0}},
        {gfx::ImageOrientation::DownMirrored, {3, 2}, {0, 1}, {2, 1}},
        {gfx::ImageOrientation::LeftMirrored, {2, 3}, {0, 0}, {0, 1}},
        {gfx::ImageOrientation::RightMirrored, {2, 3}, {2, 1}, {2, 0}},
    };
    for (const Case& expected : cases) {
        const gfx::Bitmap upright = uprightBitmap(coordinates(3, 2), expected.orientation);
        ASSERT_EQ(upright.size(), expected.size) << static_cast<int>(expected.orientation);
        const std::uint8_t* left = upright.row(0);
        const std::uint8_t* right = upright.row(0) + (upright.width() - 1) * 4;
        EXPECT_EQ((gfx::PixelSize{left[0], left[1]}), expected.topLeft)
            << static_cast<int>(expected.orientation);
        EXPECT_EQ((gfx::PixelSize{right[0], right[1]}), expected.topRight)
            << static_cast<int>(expected.orientation);
    }
}

TEST(MDrawImageUtil, FittingKeepsTheAspectAndOnlyEnlargesOnRequest) {
    test::TestHost host({.scale = 2});
    const auto fittedSize = [&](int width, int height, gfx::Size box, bool enlarge) {
        return MDrawImageUtil::resizedImageToFitInSizeScaleIfSmaller(picture(host, width, height),
                                                                     box, enlarge)
            ->size();
    };
    EXPECT_EQ(fittedSize(600, 400, {390, 844}, false), (gfx::Size{390, 260}));
    EXPECT_EQ(fittedSize(400, 600, {390, 300}, false), (gfx::Size{200, 300}));
    EXPECT_EQ(fittedSize(30, 20, {390, 844}, true), (gfx::Size{390, 260}));
    // 451 x 300 into 390 wide would be 259.4 high; lengths are rounded down to points.
    EXPECT_EQ(fittedSize(451, 300, {390, 844}, false), (gfx::Size{390, 259}));

    const gfx::ImageRef small = picture(host, 30, 20);
    EXPECT_EQ(MDrawImageUtil::resizedImageToFitInSizeScaleIfSmaller(small, {390, 844}, false),
              small);
    EXPECT_EQ(MDrawImageUtil::resizedImageToSize(small, {30, 20}), small);
    EXPECT_FALSE(MDrawImageUtil::resizedImageToSize(nullptr, {30, 20}));
    EXPECT_FALSE(MDrawImageUtil::resizedImageToSize(small, {0.5, 20}));
}

TEST(MDrawImageUtil, ResizingHappensAtTheScreensScale) {
    test::TestHost host({.scale = 3});
    const auto resized = MDrawImageUtil::resizedImageToSize(picture(host, 30, 20), {15.7, 10.2});
    EXPECT_EQ(resized->pixelSize(), (gfx::PixelSize{45, 30}));
    EXPECT_EQ(resized->scale(), 3);
}

TEST(MDrawImageUtil, AnUnknownOrientationIsRaisedAndThenDrawnUpright) {
    test::TestHost host({.scale = 1});
    const auto odd = picture(host, 30, 20, 1, static_cast<gfx::ImageOrientation>(8));
    EXPECT_THROW(MDrawImageUtil::resizedImageToSize(odd, {15, 10}), ProgrammingError);
    std::string reason;
    const RaiseHandler before =
        setRaiseHandler([&](const std::string&, const std::string& text) { reason = text; });
    const auto resized = MDrawImageUtil::resizedImageToSize(odd, {15, 10});
    setRaiseHandler(before);
    EXPECT_EQ(reason, "Invalid image orientation");
    EXPECT_EQ(resized->size(), (gfx::Size{15, 10}));
}

TEST(MDrawImageUtil, FixingTheOrientationKeepsScaleAndPixels) {
    test::TestHost host({.scale = 2});
    const auto turned = picture(host, 30, 20, 2, gfx::ImageOrientation::Right);
    const auto fixed = MDrawImageUtil::fixOrientation(turned);
    EXPECT_EQ(fixed->orientation(), gfx::ImageOrientation::Up);
    EXPECT_EQ(fixed->size(), turned->size());
    EXPECT_EQ(fixed->size(), (gfx::Size{10, 15}));
    EXPECT_EQ(MDrawImageUtil::fixOrientation(fixed), fixed);
}

}  // namespace
}  // namespace kalim
