#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "kalimkit/canvas/ExportedPicture.h"
#include "kalimkit/shapes/MDrawMosiac.h"
#include "tests/canvas/CanvasHost.h"

namespace kalim {
namespace {

using test::CanvasHost;

constexpr gfx::Color red{1, 0, 0, 1};
constexpr gfx::Color green{0, 1, 0, 1};
constexpr gfx::Color blue{0, 0, 1, 1};
constexpr gfx::Color white{1, 1, 1, 1};

std::string hexAt(const gfx::ImageRef& image, int x, int y) {
    return image->pixels()->colorAt(x, y).hex();
}

TEST(MDrawViewExport, WithoutContentThereIsNothingToExport) {
    CanvasHost host;
    EXPECT_FALSE(host.canvas->exportImage());
    host.canvas->setSnipImage(nullptr);
    EXPECT_FALSE(host.canvas->exportImage());
}

TEST(MDrawViewExport, AnUntouchedPictureOfTheScreensScaleComesBackByteForByte) {
    for (const double scale : {1.0, 2.0, 3.0}) {
        CanvasHost host({.scale = scale});
        gfx::Bitmap noise(141, 97);
        for (std::size_t i = 0; i < noise.byteCount(); ++i) {
            noise.data()[i] = static_cast<std::uint8_t>(i % 4 == 3 ? 255 : i * 2654435761U >> 13);
        }
        const auto picture =
            host.environment().device().makeImage(noise, scale, gfx::ImageOrientation::Up);
        host.canvas->setSnipImage(picture);
        const auto exported = host.canvas->exportImage();
        EXPECT_EQ(exported->scale(), scale);
        EXPECT_EQ(*exported->pixels(), noise);
        // Content that begins between two pixels does not blur the picture.
        host.draw(ToolType::Line, {100.3, 330.3}, {130.3, 330.3});
        const auto larger = host.canvas->exportImage()->pixels();
        const gfx::Point offset = host.canvas->bgImgRect().origin - host.canvas->ctxRect().origin;
        const auto left = std::lround(offset.x * scale);
        const int top = static_cast<int>(std::lround(offset.y * scale));
        ASSERT_GT(left, 20);
        ASSERT_GT(top, 20);
        for (const int y : {0, 50, 96}) {
            EXPECT_TRUE(std::equal(noise.row(y), noise.row(y) + noise.stride(),
                                   larger->row(top + y) + left * 4))
                << scale << ", row " << y;
        }
    }
}

TEST(MDrawViewExport, AtThePicturesEdgeWhatGoesBeyondIsCutAndHandlesAreNot) {
    CanvasHost host({.size = {200, 200}});
    const auto shownAt = [&](int x, int y) {
        return hexAt(host.canvas->exportImageForScale(), x, y);
    };
    // From 50 to 150, both ways.
    host.canvas->setSnipImage(host.plainPicture(100, 100, blue));
    host.canvas->setClipsToPicture(true);
    host.canvas->setDrawColorIsTranslucent(gfx::makeColor(red), false);
    host.canvas->setDrawLineWidth(12);
    const gfx::Rect picture = host.canvas->bgImgRect();
    const ToolRef line = host.draw(ToolType::Line, {100, 100}, {180, 100});
    for (const bool isSelected : {false, true}) {
        if (isSelected) host.canvas->selectTools({line});
        EXPECT_EQ(shownAt(149, 103), red.hex());
        EXPECT_EQ(shownAt(150, 103), "#00000000");
        // A handle at the end, where the line itself is not seen.
        EXPECT_EQ(shownAt(182, 100), isSelected ? "#24A9E9FF" : "#00000000");
    }
    EXPECT_EQ(host.canvas->ctxRect(), picture);
    for (const auto& image :
         {host.canvas->exportImage(), host.canvas->exportImageAtPictureScale()}) {
        EXPECT_EQ(image->pixelSize(), (gfx::PixelSize{100, 100}));
        EXPECT_EQ(hexAt(image, 99, 50), red.hex());
    }
    host.canvas->setClipsToPicture(false);
    EXPECT_EQ(host.canvas->ctxRect().maxX(), 186);
    EXPECT_EQ(shownAt(170, 103), red.hex());
}

TEST(MDrawViewExport, AQuarterTurnedPhotoIsUprightOnce) {
    CanvasHost host;
    gfx::Bitmap raster(40, 20);
    for (int y = 0; y < 20; ++y) {
        for (int x = 0; x < 40; ++x)
            raster.setColorAt(x, y, x < 20 ? red : blue);
    }
    host.canvas->setSnipImage(
        host.environment().device().makeImage(raster, 1, gfx::ImageOrientation::Right));
    const auto exported = host.canvas->exportImage();
    EXPECT_EQ(exported->pixelSize(), (gfx::PixelSize{20, 40}));
    EXPECT_EQ(exported->orientation(), gfx::ImageOrientation::Up);
    EXPECT_EQ(hexAt(exported, 10, 5), "#FF0000FF");
    EXPECT_EQ(hexAt(exported, 10, 35), "#0000FFFF");
}

TEST(MDrawViewExport, ShowsNeitherTheSelectionNorItsHandles) {
    CanvasHost host;
    host.canvas->setSnipImage(host.plainPicture(390, 400, white));
    host.draw(ToolType::Rectangle, {100, 300}, {200, 400});
    const auto plain = host.canvas->exportImage();
    host.tap({150, 300});
    ASSERT_TRUE(host.canvas->hasSelectedTools());
    host.events->take();
    EXPECT_EQ(*host.canvas->exportImage()->pixels(), *plain->pixels());
    EXPECT_FALSE(host.canvas->hasSelectedTools());
    EXPECT_EQ(host.events->lines.front(), "unselected");
}

TEST(MDrawViewExport, DrawingsBeyondThePictureEnlargeItOverTheBackground) {
    CanvasHost host;
    host.canvas->setSnipImage(host.plainPicture(100, 100, blue));
    // The picture lies at 145..245 x 372..472.
    host.draw(ToolType::Line, {195, 422}, {300.5, 422});
    const auto exported = host.canvas->exportImage();
    // To 301.5: a fraction of a pixel takes a whole one, and that is white, too.
    EXPECT_EQ(exported->pixelSize(), (gfx::PixelSize{157, 100}));
    EXPECT_EQ(hexAt(exported, 50, 10), "#0000FFFF");
    EXPECT_EQ(hexAt(exported, 120, 10), "#FFFFFFFF");
    EXPECT_EQ(hexAt(exported, 156, 99), "#FFFFFFFF");
    EXPECT_EQ(hexAt(exported, 120, 50), "#00FF00FF");
}

TEST(MDrawViewExport, FollowsTheListOrderWhileTheScreenShowsTheSelectionOnTop) {
    CanvasHost host;
    host.canvas->setSnipImage(host.plainPicture(390, 844, white));
    host.canvas->setFScal(1.0F);
    host.canvas->setDrawColorIsTranslucent(gfx::makeColor(red), false);
    host.pick(ToolType::Rectangle, 1);
    host.drag({100, 100}, {200, 200});
    const ToolRef lower = host.canvas->tools().front();
    host.canvas->setDrawColorIsTranslucent(gfx::makeColor(blue), false);
    host.drag({250, 250}, {150, 150});
    const auto onScreen = [&](int x, int y) {
        host.window().display();
        return host.window().surface()->makeImage()->pixels()->colorAt(x, y).hex();
    };
    EXPECT_EQ(onScreen(175, 175), "#0000FFFF");
    host.canvas->selectTools({lower});
    EXPECT_EQ(onScreen(175, 175), "#FF0000FF");
    EXPECT_EQ(hexAt(host.canvas->exportImage(), 175, 175), "#0000FFFF");
}

TEST(MDrawViewExport, AVeryFlatPictureIsFittedAtLeastAPointHigh) {
    CanvasHost host;
    host.canvas->setSnipImage(host.plainPicture(2000, 2, blue));
    EXPECT_EQ(host.canvas->ctxRect(), gfx::Rect(0, 421.5, 390, 1));
    const auto exported = host.canvas->exportImage();
    ASSERT_EQ(exported->pixelSize(), (gfx::PixelSize{390, 1}));
    EXPECT_EQ(hexAt(exported, 389, 0), "#0000FFFF");
}

TEST(MDrawViewExport, APictureHasNoLightRimAtAScaleThatIsNoWholeNumber) {
    for (const double scale : {0.5, 1.5, 2.625}) {
        CanvasHost host({.scale = scale, .size = {333, 777}});
        host.canvas->setSnipImage(host.plainPicture(451, 300, blue));
        const auto exported = host.canvas->exportImage();
        const gfx::PixelSize size = exported->pixelSize();
        EXPECT_EQ(hexAt(exported, size.width - 1, size.height - 1), "#0000FFFF") << scale;
        EXPECT_EQ(hexAt(exported, 0, 0), "#0000FFFF") << scale;
    }
}

TEST(MDrawViewExport, AtThePicturesScaleWhatNothingCoversIsThePicturesOwn) {
    CanvasHost host;
    gfx::Bitmap noise(1201, 803);
    for (std::size_t i = 0; i < noise.byteCount(); ++i) {
        noise.data()[i] = static_cast<std::uint8_t>(i % 4 == 3 ? 255 : i * 2654435761U >> 13);
    }
    const auto picture = host.environment().device().makeImage(noise, 1, gfx::ImageOrientation::Up);
    host.canvas->setSnipImage(picture);
    EXPECT_EQ(*host.canvas->exportImageAtPictureScale()->pixels(), noise);
    // The picture is shown 390 points wide, so a point is 3.08 of its pixels; it begins at y = 292.
    host.canvas->setDrawColorIsTranslucent(gfx::makeColor(red), false);
    host.pick(ToolType::Rectangle, 1);
    host.drag({20, 300}, {100, 400});
    host.draw(ToolType::Mosaic, {200, 400}, {300, 500});
    const auto drawn = host.canvas->exportImageAtPictureScale()->pixels();
    ASSERT_EQ(drawn->size(), noise.size());
    EXPECT_EQ(drawn->colorAt(300, 200).hex(), "#FF0000FF");
    EXPECT_TRUE(std::equal(noise.row(0), noise.row(20), drawn->row(0)));
    // A patch's block is 20 pixels of the fitted picture, 62 here; none of them is the noise.
    EXPECT_EQ(drawn->colorAt(700, 450).hex(), drawn->colorAt(705, 450).hex());
    for (const int x : {616, 923}) {
        EXPECT_NE(drawn->colorAt(x, 400).hex(), noise.colorAt(x, 400).hex()) << x;
    }
    // Beyond the picture there is background, in whole pixels.
    host.draw(ToolType::Line, {350, 300}, {350, 200});
    const auto larger = host.canvas->exportImageAtPictureScale()->pixels();
    EXPECT_EQ(larger->size().width, 1201);
    const int top = larger->size().height - 803;
    EXPECT_GT(top, 280);
    EXPECT_EQ(larger->colorAt(600, 5).hex(), "#FFFFFFFF");
    EXPECT_TRUE(std::equal(noise.row(0), noise.row(0) + 800, larger->row(top)));
}

TEST(MDrawViewExport, WhatIsTransparentStaysSoAtThePicturesScaleAlone) {
    CanvasHost host;
    gfx::Bitmap glass(100, 100);
    for (int y = 0; y < 100; ++y) {
        for (int x = 0; x < 50; ++x)
            glass.setColorAt(x, y, {0, 0, 1, 0.5});
    }
    host.canvas->setSnipImage(
        host.environment().device().makeImage(glass, 1, gfx::ImageOrientation::Up));
    EXPECT_EQ(*host.canvas->exportImageAtPictureScale()->pixels(), glass);
    EXPECT_EQ(hexAt(host.canvas->exportImage(), 80, 50), "#FFFFFFFF");
    // The picture lies at 145..245 x 372..472; beyond it there is background.
    host.draw(ToolType::Line, {195, 422}, {300.5, 422});
    const auto larger = host.canvas->exportImageAtPictureScale();
    EXPECT_EQ(larger->pixels()->colorAt(10, 10), glass.colorAt(10, 10));
    EXPECT_EQ(hexAt(larger, 80, 10), "#00000000");
    EXPECT_EQ(hexAt(larger, 120, 10), "#FFFFFFFF");
    EXPECT_EQ(hexAt(larger, 80, 50), "#00FF00FF");
}

TEST(MDrawViewExport, NothingThatAPatchHidesIsMixedIntoWhatIsSeenBesideIt) {
    // Two secrets with the same blocks, rows of two colours and their negative, under a patch of
    // 100 x 50 of these whose corner is 20 right of and below the picture's.
    const struct {
        gfx::PixelSize picture;
        int pixelsPerRow;
        double screenScale;
        float zoom;
        gfx::Size view = {390, 844};
        double basis = 0;
    } cases[] = {{{200, 150}, 1, 1, 1},
                 {{200, 150}, 1, 2, 1},
                 {{200, 150}, 1, 3, 0.86F},
                 {{200, 150}, 1, 1, 1.7F},
                 {{1560, 300}, 4, 2, 1},
                 {{1560, 300}, 4, 2, 0.86F},
                 {{1560, 300}, 4, 2, 1.7F},
                 // From 36.45 points down, and so aligned with the pixels of the screen.
                 {{301, 211}, 1, 1, 1, {100, 143}, 1000}};
    for (const auto& [size, pixels, screenScale, zoom, view, basis] : cases) {
        std::vector<gfx::Bitmap> seen[2];
        for (const bool isNegative : {false, true}) {
            gfx::Bitmap secret(size.width, size.height);
            for (int y = 0; y < size.height; ++y) {
                for (int x = 0; x < size.width; ++x) {
                    const bool isHidden =
                        x >= 20 * pixels && x < 120 * pixels && y >= 20 * pixels && y < 70 * pixels;
                    const bool isWhite = (y / pixels % 2 == 0) != isNegative;
                    secret.setColorAt(x, y, !isHidden ? blue : isWhite ? white : green);
                }
            }
            CanvasHost host({.scale = screenScale, .size = view});
            host.canvas->setCanvasBasis(basis);
            host.canvas->setSnipImage(host.environment().device().makeImage(
                std::move(secret), 1, gfx::ImageOrientation::Up));
            host.window().display();
            const gfx::Rect shown = host.canvas->bgImgRect();
            const double points = pixels * shown.size.width / size.width;
            const gfx::Point corner = shown.origin + gfx::Point{20, 20} * points;
            // Nobody lets go of it.
            const auto patch = MDrawMosiac::initWithStartPoint(corner);
            patch->drawMove(corner + gfx::Point{100, 50} * points);
            ASSERT_TRUE(host.canvas->addTool(patch));
            if (zoom != 1) host.canvas->setFScal(zoom);
            host.window().display();
            seen[isNegative] = {*host.window().surface()->makeImage()->pixels(),
                                *host.canvas->exportImageForScale()->pixels(),
                                *host.canvas->exportImage()->pixels(),
                                *host.canvas->exportImageAtPictureScale()->pixels()};
        }
        for (std::size_t i = 0; i < seen[0].size(); ++i) {
            int difference = 0;
            for (std::size_t byte = 0; byte < seen[0][i].byteCount(); ++byte) {
                difference = std::max(difference,
                                      std::abs(seen[0][i].data()[byte] - seen[1][i].data()[byte]));
            }
            EXPECT_LE(difference, 1) << size.width << " pixels, scale " << screenScale << ", zoom "
                                     << zoom << ", picture " << i;
        }
    }
}

TEST(MDrawViewExport, OfTheViewShowsWhatTheScreenShows) {
    CanvasHost host;
    host.canvas->setSnipImage(host.plainPicture(390, 400, white));
    host.draw(ToolType::Rectangle, {100, 300}, {200, 400});
    host.tap({150, 300});
    host.window().display();
    EXPECT_EQ(*host.canvas->exportImageForScale()->pixels(),
              *host.window().surface()->makeImage()->pixels());
    EXPECT_TRUE(host.canvas->hasSelectedTools());
}

// Also beside their frames, by what the picture's file holds together, and after a move.
TEST(MDrawViewExport, SealedPatchesCoverOnTheScreenWhatTheyHideInTheResult) {
    CanvasHost host;
    host.canvas->setForgiving(true);
    gfx::Bitmap noise(390, 400);
    for (std::size_t i = 0; i < noise.byteCount(); ++i)
        noise.data()[i] = static_cast<std::uint8_t>(i % 4 == 3 ? 255 : i * 2654435761U >> 13);
    const auto made = host.environment().device().makeImage(noise, 1, gfx::ImageOrientation::Up);
    host.canvas->setSnipImage(std::make_shared<const gfx::Image>(
        made->raster(), 1, gfx::ImageOrientation::Up, gfx::PixelGrid{{8, 8}, 0, 0, 2}));
    const auto expectSame = [&] {
        host.window().display();
        const auto screen = host.window().surface()->makeImage()->pixels();
        EXPECT_EQ(*host.canvas->exportImageForScale()->pixels(), *screen);
    };
    // The picture lies 222 points below the view's top.
    host.pick(ToolType::Mosaic, 10);
    host.drag({100, 322}, {200, 402});
    host.pick(ToolType::Mosaic, 11);
    host.drag({210, 322}, {290, 402});
    expectSame();
    host.tap({150, 360});
    host.drag({150, 360}, {190, 420});
    host.canvas->selectNone();
    expectSame();
    host.canvas->undo();
    expectSame();
    const auto result = host.canvas->exportImageAtPictureScale();
    const auto exported = host.canvas->exportedPicture(result);
    ASSERT_TRUE(exported);
    EXPECT_EQ(exported->hidden, (gfx::PixelRects{{94, 94, 108, 92}, {206, 94, 92, 92}}));
    for (int y = 0; y < 400; y += 3) {
        for (int x = 0; x < 390; ++x) {
            const bool isHidden =
                y >= 94 && y < 186 && ((x >= 94 && x < 202) || (x >= 206 && x < 298));
            const bool isSame = result->pixels()->colorAt(x, y) == noise.colorAt(x, y);
            ASSERT_NE(isHidden, isSame) << x << "," << y;
        }
    }
}

TEST(MDrawViewExport, ABlurredPictureIsLargerByWhatTheBlurAdds) {
    CanvasHost host;
    const auto blurred = host.canvas->filterImg(host.plainPicture(30, 20, blue));
    // Three times 100 pixels on every side.
    EXPECT_EQ(blurred->pixelSize(), (gfx::PixelSize{630, 620}));
    EXPECT_FALSE(host.canvas->filterImg(nullptr));
}

TEST(MDrawViewExport, ANewPictureForgetsToolsStepsAndSelection) {
    CanvasHost host;
    host.draw(ToolType::Line, {100, 100}, {200, 100});
    host.tap({150, 100});
    EXPECT_TRUE(host.canvas->isDirty());
    host.canvas->setSnipImage(host.plainPicture(100, 100, green));
    EXPECT_FALSE(host.canvas->hasDrawed() || host.canvas->canUndo() || host.canvas->canRedo());
    EXPECT_FALSE(host.canvas->hasSelectedTools());
    host.canvas->exportImage();
    EXPECT_FALSE(host.canvas->isDirty());
}

}  // namespace
}  // namespace kalim
