#include "kalimkit/ui/control/ScrollView.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "tests/ui/Stage.h"

namespace kalim::ui {

namespace {

TEST(ScrollMotion, PullsLessTheFartherItIsPulled) {
    // (1 - 1 / (100 * 0.55 / 110 + 1)) * 110
    EXPECT_NEAR(rubberBand(100, 110), 36.667, 0.001);
    EXPECT_NEAR(rubberBand(-100, 110), -36.667, 0.001);
    EXPECT_LT(rubberBand(1e9, 110), 110);
    EXPECT_NEAR(rubberBandPull(36.667, 110), 100, 0.01);
    const ScrollRange range{-10, 50};
    EXPECT_EQ(range.banded(20, 110), 20);
    EXPECT_NEAR(range.banded(150, 110), 86.667, 0.001);
    EXPECT_NEAR(range.unbanded(86.667, 110), 150, 0.01);
    EXPECT_NEAR(range.banded(-110, 110), -46.667, 0.001);
}

TEST(ScrollMotion, SlowsDownAndComesBackFromBeyondTheEdge) {
    // 1000 points a second go on for (1000 - 4) / 2.002 points. Passing the edge with the speed v
    // reaches v / (10 e) beyond it; 299.6 points before it costs 600 points a second.
    const struct {
        double offset, velocity;
        bool bounces;
        double end;
        // The farthest it gets, upwards.
        double peak;
    } cases[] = {
        {0, 1000, true, 497.5, 497.5},     {500, -1000, true, 2.5, 500},
        {700.4, 1000, true, 1000, 1014.7}, {700.4, 1000, false, 1000, 1000},
        {1080, 0, true, 1000, 1080},       {1080, 0, false, 1000, 1000},
        {300, 3, true, 300, 300},
    };
    for (const auto& each : cases) {
        const ScrollMotion motion(each.offset, each.velocity, {0, 1000}, each.bounces);
        double peak = 0;
        double last = motion.offsetAt(0);
        for (double t = 0; t < motion.duration() + 0.1; t += 0.005) {
            const double offset = motion.offsetAt(t);
            EXPECT_LT(std::abs(offset - last), 5.1) << each.offset << " at " << t;
            last = offset;
            peak = std::max(peak, offset);
        }
        EXPECT_NEAR(last, each.end, 0.1) << each.offset;
        EXPECT_NEAR(peak, each.peak, 0.3) << each.offset;
    }
}

struct Log : ScrollViewDelegate {
    std::shared_ptr<View> viewForZoomingInScrollView(ScrollView&) override { return zoomed; }
    void scrollViewWillBeginDragging(ScrollView&) override { heard += "drag "; }
    void scrollViewDidEndDragging(ScrollView&, bool goesOn) override {
        heard += goesOn ? "let go " : "dropped ";
    }
    void scrollViewDidEndDecelerating(ScrollView&) override { heard += "still "; }
    void scrollViewDidEndScrollingAnimation(ScrollView&) override { heard += "arrived "; }
    void scrollViewWillBeginZooming(ScrollView&) override { heard += "zoom "; }
    void scrollViewDidEndZooming(ScrollView&, double scale) override {
        heard += "zoomed " + std::to_string(static_cast<int>(std::lround(scale * 100))) + " ";
        if (onZoomed) onZoomed();
    }
    std::string heard;
    std::shared_ptr<View> zoomed;
    std::function<void()> onZoomed;
};

// 200 x 200 onto 600 x 200, whose subview can be zoomed.
struct ScrollViewTest : testing::Test, test::Stage {
    ScrollViewTest() {
        root->addSubview(view);
        log->zoomed = View::initWithFrame({0, 0, 600, 200});
        view->addSubview(log->zoomed);
        view->setContentSize({600, 200});
        view->setMaximumZoomScale(3);
        view->setDelegate(log);
        wait(0.1);
    }
    // Ten points a frame.
    void swipe(gfx::Point from, gfx::Point step, int steps) {
        one.down(from);
        for (int i = 1; i <= steps; ++i) {
            wait(1.0 / 60);
            one.moveTo(from + step * i);
        }
    }

    std::shared_ptr<Log> log = std::make_shared<Log>();
    std::shared_ptr<ScrollView> view = ScrollView::initWithFrame({0, 0, 200, 200});
};

TEST_F(ScrollViewTest, FollowsTheFingerAndGoesOnUntilItStandsStill) {
    // The first step is the slop.
    swipe({190, 50}, {-10, -10}, 11);
    EXPECT_EQ(view->contentOffset(), (gfx::Point{100, 0}));
    one.up();
    EXPECT_TRUE(view->isDecelerating());
    // 600 points a second: 596 / 2.002 points more.
    wait(0.1);
    EXPECT_TRUE(loop().isBusy());
    wait(5);
    EXPECT_NEAR(view->contentOffset().x, 397.7, 0.1);
    EXPECT_EQ(log->heard, "drag let go still ");
    EXPECT_FALSE(loop().isBusy());
    // A finger that rests before it leaves throws nothing.
    swipe({50, 50}, {10, 0}, 3);
    wait(0.2);
    one.up();
    EXPECT_EQ(log->heard, "drag let go still drag dropped ");
}

TEST_F(ScrollViewTest, RestsAtOnceForThoseWhoPreferThat) {
    environment().setPrefersReducedMotion(true);
    swipe({190, 50}, {-10, 0}, 11);
    one.up();
    EXPECT_EQ(view->contentOffset().x, 100) << "no inertia";
    EXPECT_EQ(log->heard, "drag dropped ");
    swipe({20, 50}, {10, 0}, 16);
    EXPECT_LT(view->contentOffset().x, 0);
    one.up();
    EXPECT_EQ(view->contentOffset().x, 0) << "no bounce";
    EXPECT_EQ(log->heard, "drag dropped drag let go ");
    view->setContentOffset({300, 0}, true);
    EXPECT_EQ(view->contentOffset().x, 300);
    wait(0.1);
    EXPECT_EQ(log->heard, "drag dropped drag let go still arrived ");
    EXPECT_FALSE(loop().isBusy());
}

TEST_F(ScrollViewTest, IsPulledBackToItsEdgesAndCaughtOnTheWay) {
    swipe({20, 50}, {10, 0}, 11);
    // A hundred points too far.
    EXPECT_NEAR(view->contentOffset().x, rubberBand(-100, 200), 1e-9);
    wait(0.2);
    one.up();
    wait(0.1);
    const double caught = view->contentOffset().x;
    EXPECT_LT(caught, -1);
    one.down({50, 50});
    wait(1);
    EXPECT_EQ(view->contentOffset().x, caught);
    // It does not jump where it is taken up.
    one.moveTo({60, 50}).moveTo({60.01, 50});
    EXPECT_NEAR(view->contentOffset().x, caught, 0.02);
    one.up();
    wait(2);
    EXPECT_EQ(view->contentOffset(), gfx::Point{});
    view->setBounces(false);
    swipe({20, 50}, {10, 0}, 11);
    EXPECT_EQ(view->contentOffset(), gfx::Point{});
}

TEST_F(ScrollViewTest, ZoomsAboutTheFingersAndComesBackBetweenTheLimits) {
    view->setContentOffset({100, 0});
    // The point (200, 100) of the content is in the middle and stays there.
    test::pinchRotate(window(), {{100, 100}, 10}, {{100, 100}, 15}, 1);
    test::pinchRotate(window(), {{100, 100}, 15}, {{100, 100}, 30}, 3);
    EXPECT_NEAR(view->zoomScale(), 2, 1e-9);
    EXPECT_NEAR(view->contentOffset().x, 300, 1e-9);
    EXPECT_NEAR(view->contentOffset().y, 100, 1e-9);
    EXPECT_NEAR(log->zoomed->frame().minX(), 0, 1e-9);
    EXPECT_NEAR(log->zoomed->frame().maxX(), 1200, 1e-9);
    window().fingersMoved({{1, {10, 100}}, {2, {190, 100}}});
    EXPECT_GT(view->zoomScale(), 3);
    EXPECT_LT(view->zoomScale(), 6);
    window().fingersEnded({{1, {10, 100}}, {2, {190, 100}}});
    EXPECT_TRUE(view->isZoomBouncing());
    wait(0.4);
    EXPECT_EQ(view->zoomScale(), 3);
    EXPECT_NEAR(view->contentOffset().x, 500, 1e-6);
    EXPECT_EQ(view->contentSize(), (gfx::Size{1800, 600}));
    EXPECT_EQ(log->heard, "zoom zoomed 300 ");
    EXPECT_FALSE(loop().isBusy());
}

TEST_F(ScrollViewTest, GoesWhereTheProgramSendsIt) {
    view->setContentOffset({40, 0}, true);
    wait(0.15);
    EXPECT_NEAR(view->contentOffset().x, 20, 2);
    wait(0.2);
    EXPECT_EQ(view->contentOffset().x, 40);
    EXPECT_EQ(log->heard, "arrived ");
    EXPECT_FALSE(loop().isBusy());
    view->setZoomScale(9);
    EXPECT_EQ(view->zoomScale(), 3);
    EXPECT_EQ(view->contentOffset(), (gfx::Point{320, 200}));
    view->zoomToRect({550, 50, 100, 100}, true);
    wait(0.35);
    // In the middle it would reach beyond the right edge.
    EXPECT_EQ(view->zoomScale(), 2);
    EXPECT_EQ(view->contentOffset(), (gfx::Point{1000, 100}));
    view->setZoomScale(1);
    EXPECT_NEAR(log->zoomed->frame().maxX(), 600, 1e-9);
    view->setContentInset({5, 10, 20, 30});
    EXPECT_EQ(view->horizontalRange(), (ScrollRange{-10, 430}));
    EXPECT_EQ(view->verticalRange(), (ScrollRange{-5, 20}));
}

TEST_F(ScrollViewTest, MayBeTakenAwayByItsDelegate) {
    const std::weak_ptr<View> gone = view;
    log->onZoomed = [this] {
        view->removeFromSuperview();
        view = nullptr;
    };
    test::pinchRotate(window(), {{100, 100}, 20}, {{100, 100}, 10}, 4);
    EXPECT_LT(view->zoomScale(), 1);
    window().fingersEnded({{1, {90, 100}}, {2, {110, 100}}});
    wait(1);
    EXPECT_TRUE(gone.expired());
    EXPECT_EQ(log->heard, "zoom zoomed 100 ");
}

}  // namespace

}  // namespace kalim::ui
