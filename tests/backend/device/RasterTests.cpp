#include <gtest/gtest.h>

#include <cstring>
#include <numbers>

#include "tests/backend/device/Canvas.h"
#include "tests/support/RecordingDevice.h"

namespace kalim::gfx {
namespace {

using test::Canvas;
using test::testDevice;

// Every byte different from its neighbours, premultiplied, with every kind of alpha.
Bitmap noise(int width, int height) {
    Bitmap bitmap(width, height);
    unsigned seed = 1;
    for (std::size_t i = 0; i < bitmap.byteCount(); i += 4) {
        seed = seed * 1664525 + 1013904223;
        const unsigned alpha = seed >> 24;
        for (std::size_t c = 0; c < 3; ++c) {
            bitmap.data()[i + c] =
                static_cast<std::uint8_t>(((seed >> (4 * c)) & 0xFF) * alpha / 255);
        }
        bitmap.data()[i + 3] = static_cast<std::uint8_t>(alpha);
    }
    return bitmap;
}

Bitmap rowOf(const std::vector<double>& greys) {
    Bitmap bitmap(static_cast<int>(greys.size()), 1);
    for (int x = 0; x < bitmap.width(); ++x) {
        const double grey = greys[static_cast<std::size_t>(x)] / 255;
        bitmap.setColorAt(x, 0, {grey, grey, grey, 1});
    }
    return bitmap;
}

ImageRef imageOf(Bitmap bitmap, ImageOrientation orientation = ImageOrientation::Up) {
    return testDevice().makeImage(std::move(bitmap), 1, orientation);
}

TEST(DrawnRaster, PixelForPixelItComesOutByteForByte) {
    const Bitmap picture = noise(31, 17);
    for (const double scale : {1.0, 2.0, 3.0}) {
        for (const Interpolation interpolation :
             {Interpolation::None, Interpolation::Low, Interpolation::High}) {
            Canvas canvas(40, 30, scale);
            Context& context = canvas.context();
            context.setInterpolation(interpolation);
            context.translate(-7 / scale, 11 / scale);
            context.drawImage(*imageOf(picture), {14 / scale, -7 / scale, 31 / scale, 17 / scale});
            const BitmapRef pixels = canvas.pixels();
            for (int y = 0; y < 17; ++y) {
                ASSERT_EQ(0, std::memcmp(picture.row(y), pixels->row(y + 4) + 4 * 7, 31 * 4));
            }
        }
    }
}

TEST(DrawnRaster, TurnedPixelsComeOutByteForByte) {
    const struct {
        ImageOrientation orientation;
        const char* seen;
    } cases[] = {
        {ImageOrientation::Up, "abc/def"},
        {ImageOrientation::UpMirrored, "cba/fed"},
        {ImageOrientation::Down, "fed/cba"},
        {ImageOrientation::DownMirrored, "def/abc"},
        {ImageOrientation::LeftMirrored, "ad/be/cf"},
        {ImageOrientation::Right, "da/eb/fc"},
        {ImageOrientation::RightMirrored, "fc/eb/da"},
        {ImageOrientation::Left, "cf/be/ad"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(static_cast<int>(c.orientation));
        Bitmap picture(3, 2);
        for (int i = 0; i < 6; ++i)
            picture.row(i / 3)[4 * (i % 3) + 3] = std::uint8_t('a' + i);
        const ImageRef image = imageOf(std::move(picture), c.orientation);
        const int width = exchangesSides(c.orientation) ? 2 : 3;
        for (const bool asPattern : {false, true}) {
            Canvas canvas(5, 5);
            Context& context = canvas.context();
            context.translate(1, 1);
            const Rect rect{Point{}, image->size()};
            if (asPattern) {
                context.setFillPattern({image, {}});
                context.fillRect(rect);
            } else {
                context.drawImage(*image, rect);
            }
            std::string seen;
            for (int y = 0; y < 5 - width; ++y) {
                if (y > 0) seen += '/';
                for (int x = 0; x < width; ++x) {
                    seen += static_cast<char>(test::alphaAt(*canvas.pixels(), x + 1, y + 1));
                }
            }
            EXPECT_EQ(c.seen, seen);
            EXPECT_EQ((Rect{{1, 1}, image->size()}), test::inkBox(*canvas.pixels()));
        }
    }
}

TEST(DrawnRaster, EnlargedEdgesDoNotFade) {
    for (const Interpolation interpolation : {Interpolation::None, Interpolation::High}) {
        Canvas canvas(60, 10);
        canvas.context().setInterpolation(interpolation);
        canvas.context().drawImage(*imageOf(rowOf({0, 255})), {10, 0, 40, 10});
        EXPECT_EQ(Rect(10, 0, 40, 10), test::inkBox(*canvas.pixels(), 255));
        EXPECT_EQ("#000000FF", canvas.at(10, 0));
        EXPECT_EQ("#FFFFFFFF", canvas.at(49, 9));
        // The border between the two is sharp or not.
        const bool isSharp = canvas.at(29, 5) == "#000000FF" && canvas.at(30, 5) == "#FFFFFFFF";
        EXPECT_EQ(interpolation == Interpolation::None, isSharp);
    }
}

TEST(DrawnRaster, EdgesBetweenPixelsCoverThemInPart) {
    Canvas white(10, 10);
    white.context().setFillColor({1, 1, 1, 1});
    white.context().fillRect({0, 0, 10, 10});
    const ImageRef image = white.surface().makeImage();
    for (const double side : {5.0, 10.0, 20.0}) {
        for (const bool isImage : {true, false}) {
            Canvas canvas(30, 30);
            const Rect rect{2.25, 2.5, side, side};
            if (isImage) {
                canvas.context().drawImage(*image, rect);
            } else {
                canvas.context().drawSurface(white.surface(), rect);
            }
            const BitmapRef pixels = canvas.pixels();
            const int end = static_cast<int>(side) + 2;
            EXPECT_NEAR(191, test::alphaAt(*pixels, 2, 4), 2);
            EXPECT_NEAR(64, test::alphaAt(*pixels, end, 4), 2);
            EXPECT_NEAR(128, test::alphaAt(*pixels, 4, 2), 2);
            EXPECT_NEAR(128, test::alphaAt(*pixels, 4, end), 2);
            EXPECT_EQ(255, test::alphaAt(*pixels, 3, 3));
        }
    }
}

TEST(DrawnRaster, StrongReductionAverages) {
    // A checkerboard becomes even grey at any factor, also turned; Low leaves it uneven.
    Bitmap board(97, 61);
    for (int i = 0; i < 97 * 61; ++i) {
        const double grey = (i % 97 + i / 97) % 2;
        board.setColorAt(i % 97, i / 97, {grey, grey, grey, 1});
    }
    const ImageRef image = imageOf(std::move(board), ImageOrientation::Left);
    const auto spread = [&](Interpolation interpolation) {
        Canvas grey(13, 20);
        grey.context().setInterpolation(interpolation);
        grey.context().drawImage(*image, {0, 0, 13, 20});
        int low = 255;
        int high = 0;
        for (int i = 0; i < 13 * 20; ++i) {
            const int value = grey.pixels()->row(i / 13)[4 * (i % 13)];
            low = std::min(low, value);
            high = std::max(high, value);
        }
        return high - low;
    };
    EXPECT_LE(spread(Interpolation::High), 24);
    EXPECT_GE(spread(Interpolation::Low), 60);
}

TEST(DrawnRaster, ReductionKeepsFlatColoursAndEdgesInPlace) {
    // Translucent red, 100 pixels wide, green on the right from 70 on, at a factor of 100 / 30.
    Bitmap bitmap(100, 100);
    for (int i = 0; i < 10000; ++i) {
        const Color color = i % 100 < 70 ? Color{1, 0, 0, 0.5} : Color{0, 1, 0, 1};
        bitmap.setColorAt(i % 100, i / 100, color);
    }
    Canvas canvas(30, 30);
    canvas.context().setInterpolation(Interpolation::High);
    canvas.context().drawImage(*imageOf(std::move(bitmap)), {0, 0, 30, 30});
    EXPECT_EQ("#FF000080", canvas.at(0, 0));
    EXPECT_EQ("#FF000080", canvas.at(19, 29));
    EXPECT_EQ("#00FF00FF", canvas.at(22, 0));
    EXPECT_EQ("#00FF00FF", canvas.at(29, 29));
}

TEST(DrawnRaster, OneLargerThanAnySurfaceIsDrawnReduced) {
    Bitmap strip(40000, 1);
    for (int x = 0; x < 40000; ++x)
        strip.setColorAt(x, 0, {0, x < 20000 ? 1.0 : 0.0, 0, 1});
    const ImageRef image = imageOf(std::move(strip));
    if (!image && !test::keepsLongPictures()) return;
    Canvas canvas(10, 1);
    canvas.context().drawImage(*image, {0, 0, 10, 1});
    EXPECT_EQ("#00FF00FF", canvas.at(4, 0));
    EXPECT_EQ("#000000FF", canvas.at(5, 0));
    EXPECT_EQ(40000, image->pixels()->width());
}

TEST(DrawnRaster, PatternsRepeatFromTheirOrigin) {
    // Two points wide at two pixels to the point.
    const ImageRef image =
        testDevice().makeImage(rowOf({0, 85, 170, 255}), 2, ImageOrientation::Up);
    Canvas canvas(6, 1, 2);
    Context& context = canvas.context();
    context.translate(1, 0);
    context.setFillPattern({image, {}, Interpolation::None});
    context.translate(0.5, 0);
    context.fillRect({-1.5, 0, 6, 1});
    const char* const expected[] = {"#AAAAAAFF", "#FFFFFFFF", "#000000FF", "#555555FF"};
    for (int x = 0; x < 12; ++x)
        EXPECT_EQ(expected[x % 4], canvas.at(x, 0)) << x;
}

TEST(DrawnRaster, ImagesOfOtherDevicesAndOpaqueSurfacesCanBeDrawn) {
    test::RecordingDevice other;
    Canvas canvas(2, 1);
    canvas.context().drawImage(*other.makeImage(rowOf({255}), 1, ImageOrientation::Up),
                               {0, 0, 1, 1});
    EXPECT_EQ("#FFFFFFFF", canvas.at(0, 0));
    Canvas opaque(1, 1, 1, true);
    canvas.context().drawImage(*opaque.surface().makeImage(), {1, 0, 1, 1});
    EXPECT_EQ("#000000FF", canvas.at(1, 0));
}

TEST(DrawnRaster, ImageOutlivesItsSurface) {
    ImageRef image = Canvas(3, 3, 1, true).surface().makeImage();
    Canvas canvas(3, 3);
    canvas.context().drawImage(*image, {0, 0, 3, 3});
    image.reset();
    EXPECT_EQ("#000000FF", canvas.at(2, 2));
}

}  // namespace
}  // namespace kalim::gfx
