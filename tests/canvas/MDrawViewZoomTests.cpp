#include <gtest/gtest.h>

#include <cmath>
#include <utility>

#include "tests/canvas/CanvasHost.h"

namespace kalim {
namespace {

using test::CanvasHost;
using ui::GestureState;

// A picture of 200 x 100 points in the middle of a view of 390 x 844: at 95..295 x 372..472.
struct ZoomHost : CanvasHost {
    ZoomHost() {
        canvas->setSnipImage(plainPicture(200, 100, {0, 0, 1, 1}));
        window().display();
    }
    void pinch(double scale, gfx::Point focus) {
        canvas->handlePinchGesture(GestureState::Began, 1, focus);
        canvas->handlePinchGesture(GestureState::Changed, scale, focus);
        canvas->handlePinchGesture(GestureState::Ended, scale, focus);
    }
};

TEST(MDrawViewZoom, TheZoomStaysWithinItsBounds) {
    ZoomHost host;
    host.pinch(0.01, {195, 422});
    EXPECT_EQ(host.canvas->contextScale(), 0.5);
    for (const double nonsense : {0.0, -1.0, static_cast<double>(NAN)}) {
        host.pinch(nonsense, {195, 422});
        EXPECT_EQ(host.canvas->contextScale(), 0.5);
    }
    host.canvas->setSnipImage(host.plainPicture(200, 100, {0, 0, 1, 1}));
    EXPECT_EQ(host.canvas->contextScale(), 1.0);
}

TEST(MDrawViewZoom, AHostMayAllowSoManyPixelsOfTheScreenForOneOfThePicture) {
    CanvasHost host({.scale = 2});
    // Four pixels of the picture on one of the screen, and one on two.
    for (const auto& [width, unzoomed] : {std::pair(3120, 0.25), std::pair(195, 2.0)}) {
        host.canvas->setLargestMagnification(0);
        host.canvas->setSnipImage(host.plainPicture(width, width / 10, {0, 0, 1, 1}));
        host.window().display();
        EXPECT_EQ(host.canvas->largestScale(), 2);
        host.canvas->setLargestMagnification(8);
        EXPECT_DOUBLE_EQ(host.canvas->largestScale(), 8 / unzoomed);
        host.canvas->setLargestMagnification(unzoomed);
        EXPECT_EQ(host.canvas->largestScale(), 2);
        for (const double nonsense : {-1.0, static_cast<double>(NAN), HUGE_VAL}) {
            host.canvas->setLargestMagnification(nonsense);
            EXPECT_EQ(host.canvas->largestMagnification(), unzoomed);
        }
        host.canvas->setLargestMagnification(8);
        EXPECT_TRUE(host.canvas->zoomToPixels());
        EXPECT_NEAR(host.canvas->contextScale(), 1 / unzoomed, 1e-9);
        EXPECT_TRUE(host.canvas->zoomBy(1000));
        EXPECT_NEAR(host.canvas->contextScale(), 8 / unzoomed, 1e-9);
        EXPECT_TRUE(host.canvas->zoomToFit());
        EXPECT_EQ(host.canvas->contextScale(), 1);
    }
    host.canvas->setEnableGesture(false);
    EXPECT_FALSE(host.canvas->zoomBy(2));
}

// Columns of a pixel, black and white in turn: grey where they are averaged or blurred.
TEST(MDrawViewZoom, ZoomedInThePhotosOwnPixelsAreShown) {
    CanvasHost host;
    gfx::Bitmap columns(1560, 300);
    for (int y = 0; y < 300; ++y) {
        for (int x = 0; x < 1560; ++x)
            columns.setColorAt(x, y, x % 2 ? gfx::Color{1, 1, 1, 1} : gfx::Color{0, 0, 0, 1});
    }
    gfx::Device& device = host.environment().device();
    host.canvas->setSnipImage(device.makeImage(std::move(columns), 1, gfx::ImageOrientation::Up));
    host.canvas->setLargestMagnification(8);
    const auto shownColumns = [&] {
        host.window().display();
        const auto pixels = host.window().surface()->makeImage()->pixels();
        std::string shown;
        for (int x = 100; x < 132; ++x) {
            const std::string color = pixels->colorAt(x, 422).hex();
            shown += color == "#000000FF" ? 'b' : color == "#FFFFFFFF" ? 'w' : '-';
        }
        // Which column comes first depends on where the view stands.
        return shown[0] == 'b' || shown[0] == '-' ? shown : shown.substr(shown.find('b'));
    };
    EXPECT_EQ(shownColumns(), std::string(32, '-'));
    host.canvas->zoomToPixels();
    host.wait(0.3);
    EXPECT_EQ(shownColumns().substr(0, 30), "bwbwbwbwbwbwbwbwbwbwbwbwbwbwbw");
    // Squares, eight pixels wide.
    host.canvas->handlePinchGesture(GestureState::Began, 1, {195, 422});
    host.canvas->handlePinchGesture(GestureState::Changed, 8, {195, 422});
    EXPECT_NE(shownColumns().find("wwwwwwwwbbbbbbbb"), std::string::npos);
    host.canvas->handlePinchGesture(GestureState::Ended, 8, {195, 422});
    host.wait(0.3);
    EXPECT_NE(shownColumns().find("wwwwwwwwbbbbbbbb"), std::string::npos);
}

TEST(MDrawViewZoom, ContentLargerThanTheViewIsFittedAndMayBeZoomedThatFarOut) {
    ZoomHost host;
    ASSERT_TRUE(host.draw(ToolType::Line, {1, 422}, {389, 422}));
    // The line's width adds one point at either end; 390 points fill the view exactly.
    EXPECT_EQ(host.canvas->ctxRect(), gfx::Rect(0, 372, 390, 100));
    EXPECT_EQ(host.canvas->getScale(), 1);
    host.canvas->addTool([] {
        const ToolRef far = MDrawLine::initWithStartPoint({-585, 422});
        far->setLineWidth(0);
        far->drawUp({300, 422});
        return far;
    }());
    // From -585 to 390: 975 points into 390.
    EXPECT_NEAR(host.canvas->getScale(), 0.4, 1e-9);
    EXPECT_NEAR(host.canvas->defaultMinScale(), 0.4, 1e-9);
    EXPECT_NEAR(host.canvas->mViewTransform().apply(gfx::Point{-585, 422}).x, 0, 1e-9);
}

TEST(MDrawViewZoom, WhileTheViewMovesDrawingsMoveWithIt) {
    ZoomHost host;
    host.canvas->setDrawColorIsTranslucent(gfx::makeColor(1, 0, 0), false);
    host.pick(ToolType::Rectangle, 1);
    host.drag({150, 400}, {180, 440});
    host.canvas->handlePinchGesture(GestureState::Began, 1, {195, 422});
    host.canvas->handlePinchGesture(GestureState::Changed, 2, {195, 422});
    host.window().display();
    const auto moving = host.window().surface()->makeImage()->pixels();
    // The box is at 105..165 x 378..458 now; the middle of its old place shows the picture.
    EXPECT_EQ(moving->colorAt(110, 385).hex(), "#FF0000FF");
    EXPECT_EQ(moving->colorAt(172, 420).hex(), "#0000FFFF");
    host.canvas->handlePinchGesture(GestureState::Ended, 2, {195, 422});
    host.wait(0.3);
    EXPECT_EQ(host.window().surface()->makeImage()->pixels()->colorAt(110, 385).hex(), "#FF0000FF");
}

}  // namespace
}  // namespace kalim
