#include <gtest/gtest.h>

#include <cmath>
#include <utility>

#include "tests/canvas/view/CanvasHost.h"

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
    void pan(gfx::Point by) {
        canvas->handlePanGesture(GestureState::Began, {});
        canvas->handlePanGesture(GestureState::Changed, by);
        canvas->handlePanGesture(GestureState::Ended, by);
    }
    gfx::Rect shownPicture() { return canvas->mViewTransform().apply(canvas->bgImgRect()); }
    // The left and right edges of the blue picture on the screen's middle row.
    std::pair<int, int> blueOnScreen() {
        window().display();
        const auto pixels = window().surface()->makeImage()->pixels();
        std::pair<int, int> edges{-1, -1};
        for (int x = 0; x < 390; ++x) {
            if (pixels->colorAt(x, 422).hex() != "#0000FFFF") continue;
            if (edges.first < 0) edges.first = x;
            edges.second = x + 1;
        }
        return edges;
    }
};

TEST(MDrawViewZoom, APinchKeepsItsFocusWhileItLastsAndAPictureSmallerThanTheViewIsRecentred) {
    ZoomHost host;
    host.canvas->handlePinchGesture(GestureState::Began, 1, {95, 422});
    host.canvas->handlePinchGesture(GestureState::Changed, 1.5, {95, 422});
    EXPECT_EQ(host.shownPicture(), gfx::Rect(95, 347, 300, 150));
    host.canvas->handlePinchGesture(GestureState::Ended, 1.5, {95, 422});
    EXPECT_EQ(host.canvas->contextScale(), 1.5);
    EXPECT_EQ(host.shownPicture(), gfx::Rect(45, 347, 300, 150));
    // Shown where the fingers left it, half-way after half the time, there after a quarter second.
    EXPECT_EQ(host.blueOnScreen().first, 95);
    host.wait(0.125);
    EXPECT_NEAR(host.blueOnScreen().first, 70, 3);
    host.wait(0.15);
    EXPECT_EQ(host.blueOnScreen(), std::pair(45, 345));
}

TEST(MDrawViewZoom, TheZoomStaysWithinItsBounds) {
    ZoomHost host;
    host.pinch(5, {195, 422});
    EXPECT_EQ(host.canvas->contextScale(), 2.0);
    host.pinch(0.01, {195, 422});
    EXPECT_EQ(host.canvas->contextScale(), 0.5);
    for (const double nonsense : {0.0, -1.0, static_cast<double>(NAN)}) {
        host.pinch(nonsense, {195, 422});
        EXPECT_EQ(host.canvas->contextScale(), 0.5);
    }
    host.canvas->setSnipImage(host.plainPicture(200, 100, {0, 0, 1, 1}));
    EXPECT_EQ(host.canvas->contextScale(), 1.0);
}

TEST(MDrawViewZoom, APanMovesTheViewAndLeavesTheContentInReach) {
    ZoomHost host;
    host.pan({30, -20});
    EXPECT_EQ(host.shownPicture().origin, (gfx::Point{125, 352}));
    host.wait(0.3);
    // A finger draws where it is seen.
    const ToolRef line = host.draw(ToolType::Line, {130, 360}, {200, 400});
    EXPECT_EQ(line->startPoint(), (gfx::Point{100, 380}));
    host.pan({-5000, 0});
    EXPECT_EQ(host.shownPicture().maxX(), 44);
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
