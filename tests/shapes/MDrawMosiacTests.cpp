#include "kalimkit/shapes/MDrawMosiac.h"

#include <gtest/gtest.h>

#include <numbers>

#include "kalimkit/image/MosaicBlocks.h"
#include "kalimkit/shapes/WholePixels.h"
#include "tests/support/RecordingContext.h"
#include "tests/support/TestHost.h"

namespace kalim {
namespace {

constexpr gfx::Color white{1, 1, 1, 1};
using gfx::AffineTransform;

const gfx::Rect background(10, 10, 80, 60);

std::shared_ptr<MDrawMosiac> dragged(gfx::Point start, gfx::Point end) {
    const auto patch = MDrawMosiac::initWithStartPoint(start);
    patch->drawMove(end);
    return patch;
}

std::shared_ptr<MDrawMosiac> finished(gfx::Point start, gfx::Point end) {
    const auto patch = dragged(start, end);
    patch->drawUp(end);
    return patch;
}

using Lines = std::vector<std::string>;

Lines painted(MDrawMosiac& patch) {
    test::RecordingContext context;
    patch.drawMosiacContentWithFilledColorInRect(context, white, background);
    return context.takeLines();
}

TEST(MDrawMosiac, IsPreviewedWhateverItsColourAndFilledOverThePictureOnly) {
    const auto patch = dragged({0, 0}, {40, 30});
    patch->setColor(gfx::makeColor(1, 0, 0));
    EXPECT_EQ(painted(*patch), Lines{"fill [M 1,1 L 39,1 L 39,29 L 1,29 Z] #0000004D"});
    EXPECT_EQ(painted(*finished({0, 0}, {40, 30})),
              Lines{"fill [M 10,10 L 40,10 L 40,30 L 10,30 Z] #FFFFFFFF aliased"});
    EXPECT_EQ(painted(*finished({100, 70}, {70, 40})),
              Lines{"fill [M 70,40 L 90,40 L 90,70 L 70,70 Z] #FFFFFFFF aliased"});
    EXPECT_EQ(painted(*finished({100, 20}, {150, 60})), Lines{});
}

TEST(MDrawMosiac, AReadyPieceIsDrawnInsteadEvenDuringTheDrag) {
    test::TestHost host;
    const auto piece =
        host.environment().device().makeImage(gfx::Bitmap(4, 2), 1, gfx::ImageOrientation::Up);
    for (const auto& patch : {dragged({0, 0}, {40, 30}), finished({0, 0}, {40, 30})}) {
        patch->setMasciImage(piece);
        EXPECT_EQ(painted(*patch), Lines{"raster 4x2@1 rect=(10,10,30,20) aliased"});
    }
}

TEST(MDrawMosiac, PaintsWithThePatternAndWithNothingWhereThatHasNoImage) {
    test::TestHost host;
    const MosaicBlocks blocks(host.environment().device(), gfx::Bitmap(40, 30), 20);
    test::RecordingContext context;
    const auto patch = finished({0, 0}, {40, 30});
    patch->drawMosiacContentWithFilledColorInRect(context, gfx::Pattern{}, background);
    EXPECT_EQ(context.takeLines(), Lines{});
    patch->drawMosiacContentWithFilledColorInRect(context, blocks.patternOver(background),
                                                  background);
    ASSERT_EQ(context.lines().size(), 1U);
    EXPECT_NE(context.lines()[0].find("pattern=10x10@1"), std::string::npos) << context.lines()[0];
}

TEST(MDrawMosiac, NoPixelOfTheRimIsMixed) {
    test::TestHost host;
    const auto patch = finished({20.3, 20.7}, {41.1, 39.9});
    for (const double angle : {0.0, 1.5707963267948966, 0.4}) {
        for (const double scale : {1.0, 2.0, 3.0}) {
            const auto surface = host.environment().device().makeSurface({100, 100}, scale, true);
            gfx::Context& context = surface->context();
            context.concat(gfx::AffineTransform::rotation(angle, {50, 50}));
            context.scale(0.93, 0.93);
            patch->drawMosiacContentWithFilledColorInRect(context, white, background);
            const auto pixels = surface->makeImage()->pixels();
            // Every device pixel that the frame touches, found by fine sampling, is all white, and
            // none is grey.
            for (double x = 20.3; x <= 41.1; x += 0.1) {
                for (double y = 20.7; y <= 39.9; y += 0.1) {
                    const gfx::Point at = context.transform().apply({x, y}) * scale;
                    const auto column = static_cast<int>(at.x);
                    ASSERT_EQ(pixels->row(static_cast<int>(at.y))[column * 4], 255)
                        << angle << " " << scale << ": " << x << "," << y;
                }
            }
            for (std::size_t i = 0; i < pixels->byteCount(); i += 4)
                ASSERT_TRUE(pixels->data()[i] == 0 || pixels->data()[i] == 255);
        }
    }
}

void expectNear(const gfx::Rect& actual, const gfx::Rect& expected) {
    EXPECT_NEAR(actual.minX(), expected.minX(), 1e-9);
    EXPECT_NEAR(actual.minY(), expected.minY(), 1e-9);
    EXPECT_NEAR(actual.maxX(), expected.maxX(), 1e-9);
    EXPECT_NEAR(actual.maxY(), expected.maxY(), 1e-9);
}

TEST(WholePixels, RoundsOutwardsInDevicePixels) {
    expectNear(wholePixels({10.2, 20.6, 5, 5}, {}), {10, 20, 6, 6});
    // Pixels of half a point: 20.4 to 30.4 and 41.2 to 51.2.
    expectNear(wholePixels({10.2, 20.6, 5, 5}, AffineTransform::scaling(2, 2)),
               {10, 20.5, 5.5, 5.5});
    // Shifted by a quarter pixel: 10.25 to 15.25.
    expectNear(wholePixels({10, 10, 5, 5}, AffineTransform::translation(0.25, 0)),
               {9.75, 10, 6, 5});
    // A quarter turn: x in user space runs along y in pixels.
    expectNear(wholePixels({10.2, 20.5, 5, 1}, AffineTransform::rotation(std::numbers::pi / 2)),
               {10, 20, 6, 2});
}

TEST(WholePixels, ForgivesRoundingErrorsButHidesSlivers) {
    const AffineTransform third = AffineTransform::scaling(3, 3);
    expectNear(wholePixels({1.0 / 3, 0.1 + 0.2 - 0.3, 1 + 1e-9, 1}, third), {1.0 / 3, 0, 1, 1});
    expectNear(wholePixels({5, 5, 1e-5, 3}, {}), {5, 5, 1, 3});
}

TEST(WholePixels, GrowsByAPixelOnEachSideUnderATurn) {
    const AffineTransform turned =
        AffineTransform::rotation(0.3).concat(AffineTransform::scaling(2, 2));
    expectNear(wholePixels({10, 10, 6, 4}, turned), {9.5, 9.5, 7, 5});
    const gfx::Rect rect(1, 2, 3, 4);
    EXPECT_EQ(wholePixels(rect, AffineTransform::scaling(0, 1)), rect);
}

}  // namespace
}  // namespace kalim
