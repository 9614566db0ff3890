#include "kalimkit/image/MDrawImageUtil.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "kalimkit/gfx/Raise.h"
#include "kalimkit/image/UprightBitmap.h"
#include "tests/image/CoordinatePictures.h"

namespace kalim {
namespace {

using test::coordinatePicture;
using test::coordinates;

// The column and row that a pixel's colour tells, as "x,y".
std::string originAt(const gfx::Bitmap& bitmap, int x, int y) {
    const std::uint8_t* pixel = bitmap.row(y) + x * 4;
    return std::to_string(pixel[0]) + "," + std::to_string(pixel[1]);
}

TEST(UprightBitmap, TurnsEachOrientationPixelByPixel) {
    using enum gfx::ImageOrientation;
    // Of a raster of 3 x 2, the positions that come to the upright picture's top corners.
    const std::tuple<gfx::ImageOrientation, gfx::PixelSize, const char*, const char*> cases[] = {
        {Up, {3, 2}, "0,0", "2,0"},           {Down, {3, 2}, "2,1", "0,1"},
        {Left, {2, 3}, "2,0", "2,1"},         {Right, {2, 3}, "0,1", "0,0"},
        {UpMirrored, {3, 2}, "2,0", "0,0"},   {DownMirrored, {3, 2}, "0,1", "2,1"},
        {LeftMirrored, {2, 3}, "0,0", "0,1"}, {RightMirrored, {2, 3}, "2,1", "2,0"},
    };
    for (const auto& [orientation, size, left, right] : cases) {
        const gfx::Bitmap upright = uprightBitmap(coordinates(3, 2), orientation);
        ASSERT_EQ(upright.size(), size) << static_cast<int>(orientation);
        EXPECT_EQ(originAt(upright, 0, 0), left) << static_cast<int>(orientation);
        EXPECT_EQ(originAt(upright, size.width - 1, 0), right) << static_cast<int>(orientation);
    }
}

TEST(MDrawImageUtil, FittingKeepsTheAspectAndOnlyEnlargesOnRequest) {
    test::TestHost host({.scale = 2});
    const auto fittedSize = [&](int width, int height, gfx::Size box, bool enlarge) {
        return MDrawImageUtil::resizedImageToFitInSizeScaleIfSmaller(
                   coordinatePicture(host, width, height), box, enlarge)
            ->size();
    };
    EXPECT_EQ(fittedSize(600, 400, {390, 844}, false), (gfx::Size{390, 260}));
    EXPECT_EQ(fittedSize(400, 600, {390, 300}, false), (gfx::Size{200, 300}));
    EXPECT_EQ(fittedSize(30, 20, {390, 844}, true), (gfx::Size{390, 260}));
    // 451 x 300 into 390 wide would be 259.4 high; lengths are rounded down to points.
    EXPECT_EQ(fittedSize(451, 300, {390, 844}, false), (gfx::Size{390, 259}));

    const gfx::ImageRef small = coordinatePicture(host, 30, 20);
    EXPECT_EQ(MDrawImageUtil::resizedImageToFitInSizeScaleIfSmaller(small, {390, 844}, false),
              small);
    EXPECT_EQ(MDrawImageUtil::resizedImageToSize(small, {30, 20}), small);
    const gfx::ImageRef resized = MDrawImageUtil::resizedImageToSize(small, {15.7, 10.2});
    EXPECT_EQ(resized->pixelSize(), (gfx::PixelSize{30, 20}));
    EXPECT_EQ(resized->scale(), 2);
    EXPECT_FALSE(MDrawImageUtil::resizedImageToSize(nullptr, {30, 20}));
    EXPECT_FALSE(MDrawImageUtil::resizedImageToSize(small, {0.5, 20}));
}

TEST(MDrawImageUtil, AnUnknownOrientationIsRaisedAndThenDrawnUpright) {
    test::TestHost host({.scale = 1});
    const auto odd = coordinatePicture(host, 30, 20, 1, static_cast<gfx::ImageOrientation>(8));
    EXPECT_THROW(MDrawImageUtil::resizedImageToSize(odd, {15, 10}), ProgrammingError);
    std::string reason;
    const RaiseHandler before =
        setRaiseHandler([&](const std::string&, const std::string& text) { reason = text; });
    const auto resized = MDrawImageUtil::resizedImageToSize(odd, {15, 10});
    setRaiseHandler(before);
    EXPECT_EQ(reason, "Invalid image orientation");
    EXPECT_EQ(resized->size(), (gfx::Size{15, 10}));
}

TEST(MDrawImageUtil, ARasterPartIsRoundedOutAndForgetsScaleAndOrientation) {
    test::TestHost host({.scale = 2});
    for (int orientation = 0; orientation < 8; ++orientation) {
        const auto source =
            coordinatePicture(host, 30, 20, 2, static_cast<gfx::ImageOrientation>(orientation));
        const auto part = MDrawImageUtil::imageFromImageInRect(source, {4.2, 6.9, 10.1, 5});
        EXPECT_EQ(part->pixelSize(), (gfx::PixelSize{11, 6})) << orientation;
        EXPECT_EQ(part->scale(), 1);
        EXPECT_EQ(part->orientation(), gfx::ImageOrientation::Up);
        EXPECT_EQ(originAt(*part->pixels(), 0, 0), "4,6");
        EXPECT_EQ(originAt(*part->pixels(), 10, 5), "14,11");
    }
    const auto source = coordinatePicture(host, 30, 20);
    EXPECT_EQ(MDrawImageUtil::imageFromImageInRect(source, {-5, 15, 10, 90})->pixelSize(),
              (gfx::PixelSize{5, 5}));
    EXPECT_FALSE(MDrawImageUtil::imageFromImageInRect(source, {30, 0, 5, 5}));
    EXPECT_FALSE(MDrawImageUtil::imageFromImageInRect(source, {5, 5, 0, 0}));
    EXPECT_FALSE(MDrawImageUtil::imageFromImageInRect(nullptr, {0, 0, 5, 5}));
}

TEST(MDrawImageUtil, CroppingCutsWhatIsSeenAndKeepsScaleAndOrientation) {
    // Of the raster's pixel at the top left of the cut raster, and the cut's size in pixels. A
    // raster of 30 x 20. The seen picture's part at (2, 3), 7 wide and 4 high; mirrored ones are
    // cut as if they were upright.
    const std::tuple<int, const char*, gfx::PixelSize> cases[] = {
        {0, "2,3", {7, 4}}, {1, "21,13", {7, 4}}, {2, "23,2", {4, 7}}, {3, "3,11", {4, 7}},
        {4, "2,3", {7, 4}}, {5, "2,3", {7, 4}},   {6, "2,3", {7, 4}},  {7, "2,3", {7, 4}}};
    test::TestHost host({.scale = 2});
    for (const auto& [number, topLeft, size] : cases) {
        const auto orientation = static_cast<gfx::ImageOrientation>(number);
        const auto source = coordinatePicture(host, 30, 20, 1, orientation);
        const auto cut = MDrawImageUtil::cropImageToRect(source, {2, 3, 7, 4});
        ASSERT_TRUE(cut);
        EXPECT_EQ(cut->pixelSize(), size) << number;
        EXPECT_EQ(originAt(*cut->pixels(), 0, 0), topLeft) << number;
        EXPECT_EQ(cut->orientation(), orientation);
        EXPECT_EQ(MDrawImageUtil::cropImageToRect(source, {{5, 5}, source->size()}), source);
        EXPECT_FALSE(MDrawImageUtil::cropImageToRect(source, {}));
    }
    const auto fine = coordinatePicture(host, 30, 20, 2, gfx::ImageOrientation::Right);
    const auto cut = MDrawImageUtil::cropImageToRect(fine, {1, 2, 3, 4});
    EXPECT_EQ(cut->scale(), 2);
    EXPECT_EQ(cut->size(), (gfx::Size{3, 4}));
    EXPECT_EQ(originAt(*cut->pixels(), 0, 0), "4,12");
}

TEST(MDrawImageUtil, ResizingPairsTheTargetsSizeWithTheSourcesOffsets) {
    struct Case {
        int orientation;
        gfx::PixelSize at;
        // What the raster holds there, in raster pixels, worked out from the transforms.
        double column;
        double row;
    };
    // A raster of 40 x 20 to 60 x 50: the two do not agree, so that most pictures come out
    // displaced.
    constexpr Case cases[] = {{0, {10, 10}, 6.5, 3.7},   {1, {10, 40}, 19.2, 15.3},
                              {2, {10, 10}, 23.1, 3.0},  {3, {45, 10}, 7.9, 17.7},
                              {4, {10, 10}, 19.2, 3.7},  {5, {10, 40}, 6.5, 15.3},
                              {6, {10, 40}, 15.9, 16.3}, {7, {10, 40}, 15.1, 16.0}};
    test::TestHost host({.scale = 1});
    for (const Case& expected : cases) {
        const auto orientation = static_cast<gfx::ImageOrientation>(expected.orientation);
        const auto resized = MDrawImageUtil::resizedImageToSize(
            coordinatePicture(host, 40, 20, 1, orientation), {60, 50});
        const bool exchanged = gfx::exchangesSides(orientation);
        ASSERT_EQ(resized->pixelSize(),
                  (exchanged ? gfx::PixelSize{50, 60} : gfx::PixelSize{60, 50}));
        EXPECT_EQ(resized->orientation(), gfx::ImageOrientation::Up);
        const auto pixels = resized->pixels();
        const std::uint8_t* pixel = pixels->row(expected.at.height) + expected.at.width * 4;
        EXPECT_EQ(pixel[3], 255) << expected.orientation;
        EXPECT_NEAR(pixel[0], expected.column, 1) << expected.orientation;
        EXPECT_NEAR(pixel[1], expected.row, 1) << expected.orientation;
    }
}

TEST(MDrawImageUtil, FixingTheOrientationKeepsScaleAndPixels) {
    test::TestHost host({.scale = 2});
    const auto turned = coordinatePicture(host, 30, 20, 2, gfx::ImageOrientation::Right);
    const auto fixed = MDrawImageUtil::fixOrientation(turned);
    EXPECT_EQ(fixed->orientation(), gfx::ImageOrientation::Up);
    EXPECT_EQ(fixed->size(), turned->size());
    EXPECT_EQ(fixed->size(), (gfx::Size{10, 15}));
    EXPECT_EQ(MDrawImageUtil::fixOrientation(fixed), fixed);
}

}  // namespace
}  // namespace kalim
