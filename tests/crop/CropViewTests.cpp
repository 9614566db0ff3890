#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "kalimkit/crop/EditImageCropGridView.h"
#include "kalimkit/crop/EditImageCropOverlayView.h"
#include "kalimkit/crop/EditImageCropToolBarView.h"
#include "kalimkit/crop/EditImageView.h"
#include "tests/support/Finger.h"
#include "tests/support/TestHost.h"

namespace kalim {
namespace {

using test::TestHost;

std::string hexAt(TestHost& host, int x, int y) {
    host.window().display();
    return host.window().surface()->makeImage()->pixels()->colorAt(x, y).hex();
}

TEST(EditImageCropGridView, LinesLieInsideAndCornerMarkersOutsideOfTheFrame) {
    TestHost host;
    const auto grid = EditImageCropGridView::initWithFrame({});
    host.window().rootView()->addSubview(grid);
    grid->setFrame({20, 30, 300, 240});
    host.window().display();
    EXPECT_EQ(grid->borderGridLines()[1]->frame(), gfx::Rect(299, 0, 1, 240));
    EXPECT_EQ(grid->borderGridLines()[2]->frame(), gfx::Rect(0, 239, 300, 1));
    EXPECT_EQ(grid->tlLineView()[1]->frame(), gfx::Rect(-2, -2, 20, 2));
    EXPECT_EQ(grid->trLineView()[0]->frame(), gfx::Rect(300, -2, 2, 20));
    EXPECT_EQ(grid->brLineView()[1]->frame(), gfx::Rect(300, 222, 2, 20));
    EXPECT_EQ(grid->blLineView()[0]->frame(), gfx::Rect(-2, 222, 2, 20));
    EXPECT_EQ(grid->horizontalGridLines()[1]->frame(), gfx::Rect(0, 160, 300, 0.5));
    EXPECT_EQ(grid->verticalGridLines()[0]->frame(), gfx::Rect(100, 0, 0.5, 240));
    EXPECT_EQ(host.window().rootView()->hitTest({100, 100}), host.window().rootView());
    // It is seen on white, all of it.
    EXPECT_TRUE(std::ranges::all_of(grid->subviews(),
                                    [](const auto& line) { return line->shadow().has_value(); }));
}

TEST(EditImageCropOverlayView, DarkensWhatIsNotBrightByItsLevel) {
    TestHost host;
    host.window().rootView()->setBackgroundColor(gfx::makeColor(1, 1, 1));
    const auto overlay = EditImageCropOverlayView::initWithFrame({0, 0, 390, 844});
    host.window().rootView()->addSubview(overlay);
    EXPECT_EQ(hexAt(host, 10, 10), "#FFFFFFFF");
    overlay->setBrightFrame({100, 200, 150, 300});
    const struct {
        int level;
        const char* outside;
    } levels[] = {{1, "#000000FF"}, {2, "#333333FF"}, {3, "#FFFFFFFF"}, {7, "#FFFFFFFF"}};
    for (const auto& [level, outside] : levels) {
        overlay->setOverlayLevel(level);
        EXPECT_EQ(overlay->overlayLevel(), level);
        for (const auto& [x, y] : {std::pair{98, 300}, {251, 300}, {150, 198}, {150, 501}})
            EXPECT_EQ(hexAt(host, x, y), outside) << level << " at " << x << ", " << y;
        for (const auto& [x, y] : {std::pair{99, 199}, {250, 500}, {170, 350}})
            EXPECT_EQ(hexAt(host, x, y), "#FFFFFFFF") << level << " at " << x << ", " << y;
    }
    // Zoomed out, the margin is as wide on the screen.
    overlay->setOverlayLevel(1);
    overlay->setZoomScale(0.25);
    EXPECT_EQ(hexAt(host, 96, 300) + hexAt(host, 95, 300), "#FFFFFFFF#000000FF");
    const auto mask = overlay->blackLayer()->mask();
    overlay->setBrightFrame({100, 200, 150, 300});
    EXPECT_EQ(overlay->blackLayer()->mask(), mask);
    overlay->setOverlayLevel(1);
    overlay->setBrightFrame({0, 0, 390, 844});
    EXPECT_EQ(hexAt(host, 10, 10), "#FFFFFFFF");
}

struct Clicks : EditImageCropToolBarDelegate {
    void onCropToolBarCancelBtnClicked() override {}
    void onCropToolBarRevertBtnClicked() override { said += "revert "; }
    void onCropToolBarDoneBtnClicked() override {}
    void onCropToolBarRotateBtnClicked() override { said += "rotate "; }
    std::string said;
};

TEST(EditImageCropToolBarView, TakesTheButtonAboveItOnlyWhileThatIsShownFully) {
    TestHost host;
    const auto clicks = std::make_shared<Clicks>();
    const auto bar = EditImageCropToolBarView::init();
    bar->setDelegate(clicks);
    bar->setFrame({0, 784, 390, 63});
    host.window().rootView()->addSubview(bar);
    host.window().display();
    const auto tap = [&](gfx::Point p) {
        test::Finger(host.window()).tap(p);
        return std::exchange(clicks->said, {});
    };
    // Invisible at first.
    EXPECT_EQ(tap({40, 750}) + tap({40, 810}), "");
    bar->setAlpha(1);
    EXPECT_EQ(tap({40, 750}) + tap({195, 810}), "rotate ");
    bar->hideRotateBtnWithAnimation(true, true);
    EXPECT_EQ(tap({40, 750}), "");
    host.wait(0.4);
    bar->hideRotateBtnWithAnimation(false, true);
    host.wait(0.2);
    EXPECT_EQ(tap({40, 750}), "");
    host.wait(0.2);
    EXPECT_EQ(tap({40, 750}), "rotate ");
}

TEST(EditImageView, ShowsFewerPixelsWhileItIsOnItsWayAndThePixelsThemselvesAtRest) {
    constexpr int side = 400;
    TestHost host;
    gfx::Bitmap stripes(side, side);
    for (int i = 0; i < side * side; ++i) {
        const double shade = i % side % 2;
        stripes.setColorAt(i % side, i / side, {shade, shade, shade, 1});
    }
    const auto view = EditImageView::initWithFrame({50, 100, 290, 290});
    view->overlayView()->setHidden(true);
    view->showPicture(
        host.environment().device().makeImage(std::move(stripes), 1, gfx::ImageOrientation::Up), 0);
    host.window().rootView()->addSubview(view);
    // How much neighbours differ in the middle, where halves of both are averaged to one grey.
    const auto contrast = [&] {
        host.window().display();
        const gfx::BitmapRef seen = host.window().surface()->makeImage()->pixels();
        double least = 1;
        double most = 0;
        for (int x = 180; x < 200; ++x) {
            for (int y = 230; y < 250; ++y) {
                least = std::min(least, seen->colorAt(x, y).red);
                most = std::max(most, seen->colorAt(x, y).red);
            }
        }
        return most - least;
    };
    for (int turns = 0; turns < 4; ++turns) {
        if (turns > 0) view->showPicture(view->image(), turns);
        EXPECT_GT(contrast(), 0.5) << turns;
        view->setTransform(gfx::AffineTransform::rotation(0.5));
        EXPECT_LT(contrast(), 0.02) << turns;
        view->setTransform({});
    }
}

TEST(EditImageView, ShowsALargePictureOnItsWayWhereItIs) {
    TestHost host({3});
    gfx::Bitmap halves(2000, 2100);
    for (int y = 0; y < halves.height(); ++y) {
        for (int x = 0; x < halves.width(); ++x)
            halves.setColorAt(x, y, x < 1000 ? gfx::Color{1, 0, 0, 1} : gfx::Color{0, 0, 1, 1});
    }
    const auto view = EditImageView::initWithFrame({100, 100, 200, 210});
    view->overlayView()->setHidden(true);
    view->showPicture(
        host.environment().device().makeImage(std::move(halves), 1, gfx::ImageOrientation::Up), 1);
    host.window().rootView()->addSubview(view);
    // Turned by a quarter to the left, red is below; a turn to the right moves it leftwards.
    for (const double angle : {0., 0.4}) {
        view->setTransform(gfx::AffineTransform::rotation(angle));
        for (const double distance : {3., 90.}) {
            const gfx::Point down{-distance * std::sin(angle), distance * std::cos(angle)};
            const gfx::Point red = (view->center() + down) * 3;
            const gfx::Point blue = (view->center() - down) * 3;
            EXPECT_EQ(hexAt(host, red.x, red.y), "#FF0000FF") << angle << " " << distance;
            EXPECT_EQ(hexAt(host, blue.x, blue.y), "#0000FFFF") << angle << " " << distance;
        }
    }
}

}  // namespace
}  // namespace kalim
