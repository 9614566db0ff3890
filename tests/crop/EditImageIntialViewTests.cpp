#include "kalimkit/crop/EditImageIntialView.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "tests/image/CoordinatePictures.h"
#include "tests/support/Finger.h"

namespace kalim {
namespace {

using test::Finger;

// Whoever opened the editor: gives a picture, writes down what it is told, and may do something
// about it.
class Opener : public EditImageInitialViewDelegate {
public:
    void getOriginalImage(const OriginalImageCallback& callback) override {
        hear("original");
        callback(picture, 0);
    }
    void getDisplayImage(const DisplayImageCallback& callback) override {
        hear("display");
        callback({}, 0, 1);
    }
    void onCropImageDone(const gfx::ImageRef& image) override {
        result = image;
        hear("image");
    }
    void OnClickEditImageDoneBarButton() override {
        ++done;
        hear("done");
    }
    void OnClickEditImageBackBarButton() override {
        ++back;
        hear("back");
    }

    void hear(const std::string& message) {
        if (answer) answer(message);
    }
    std::function<void(const std::string& message)> answer;

    gfx::ImageRef picture;
    gfx::ImageRef result;
    int done = 0;
    int back = 0;
};

// The editor with a picture of 240 x 180 pixels that knows its coordinates. The content is
// (20, 20, 350, 681), the picture 350 x 262 in the middle of it.
class CropScreen : public test::TestHost {
public:
    CropScreen() : opener(std::make_shared<Opener>()) {
        opener->picture = test::coordinatePicture(*this, 240, 180);
        open();
    }

    void open(double pause = 1) {
        view = EditImageIntialView::initWithFrame(window().rootView()->bounds());
        view->setDelegate(opener);
        window().rootView()->addSubview(view);
        view->onEditImageWithEditEntrance(nullptr, 0);
        wait(pause);
    }

    void tap(const std::shared_ptr<ui::View>& button) {
        Finger(window()).tap(button->convertPointTo(button->bounds().center(), nullptr));
        wait(1);
    }
    void drag(gfx::Point from, gfx::Point by, double pause = 1) {
        Finger(window()).down(from).moveTo(from + by, 8).up();
        wait(pause);
    }
    void zoom(double factor) {
        test::pinchRotate(window(), {view->contentFrame().center(), 50},
                          {view->contentFrame().center(), 50 * factor}, 8);
        Finger(window(), 1).up();
        Finger(window(), 2).up();
        wait(2);
    }
    gfx::Color seenAt(gfx::Point p) {
        window().display();
        return window().surface()->makeImage()->pixels()->colorAt(static_cast<int>(p.x),
                                                                  static_cast<int>(p.y));
    }
    bool isCovered() const {
        const gfx::Rect image = view->eIScrollView()->imageFrame();
        return image.inset(-1e-6, -1e-6).contains(view->cropFrame());
    }

    std::shared_ptr<Opener> opener;
    std::shared_ptr<EditImageIntialView> view;
};

TEST(EditImageIntialView, CutsWhatIsUnderTheFrameAfterTurnsZoomsPansAndDrags) {
    for (const std::string steps : {"zp", "er", "ezprr", "rrrep", "zezrz"}) {
        CropScreen screen;
        auto& view = *screen.view;
        for (const char step : steps) {
            if (step == 'r') screen.tap(view.cropToolBar()->rotateBtn());
            if (step == 'z') screen.zoom(1.6);
            if (step == 'p') screen.drag(view.contentFrame().center(), {-40, 25}, 1.5);
            if (step == 'e') screen.drag(view.cropFrame().origin + gfx::Point{1, 1}, {70, 50});
        }
        const auto turns = std::count(steps.begin(), steps.end(), 'r');
        EXPECT_EQ(view.currentRotationOrientation(), turns % 4) << steps;
        EXPECT_TRUE(screen.isCovered()) << steps;
        const gfx::Rect frame = view.cropFrame();
        struct Sample {
            // Of the middle of a pixel of the screen, in terms of the frame.
            gfx::Point share;
            gfx::Color seen;
        };
        std::vector<Sample> samples;
        for (const gfx::Point at : {gfx::Point{0.1, 0.15}, {0.8, 0.2}, {0.45, 0.55}, {0.9, 0.9}}) {
            const gfx::Point p{std::floor(frame.minX() + at.x * frame.size.width),
                               std::floor(frame.minY() + at.y * frame.size.height)};
            samples.push_back({{(p.x + 0.5 - frame.minX()) / frame.size.width,
                                (p.y + 0.5 - frame.minY()) / frame.size.height},
                               screen.seenAt(p)});
        }
        const gfx::Rect bright = view.overlayView()->brightFrame();
        const gfx::Size whole = view.overlayView()->bounds().size;
        const double across = (turns % 2 ? 180 : 240) / whole.width;
        const double down = (turns % 2 ? 240 : 180) / whole.height;
        const std::string announced = view.accessibilityElements().at(0).value;
        screen.tap(view.cropToolBar()->doneBtn());
        ASSERT_TRUE(screen.opener->result) << steps;
        const gfx::PixelSize pixels = screen.opener->result->pixelSize();
        EXPECT_EQ(announced, std::to_string(pixels.width) + " × " + std::to_string(pixels.height));
        const gfx::BitmapRef cut = screen.opener->result->pixels();
        // Green holds the row and blue the column of the picture's pixel, in 255ths. The
        // screen shows what is between two pixels.
        for (const auto& [share, seen] : samples) {
            // The first pixel that is cut is the one in which the bright frame begins.
            const double left = bright.minX() * across;
            const double top = bright.minY() * down;
            const gfx::Color is = cut->colorAt(
                static_cast<int>(left - std::floor(left) + share.x * bright.size.width * across),
                static_cast<int>(top - std::floor(top) + share.y * bright.size.height * down));
            EXPECT_NEAR(is.green * 255, seen.green * 255, 1.01) << steps << " " << share.x;
            EXPECT_NEAR(is.blue * 255, seen.blue * 255, 1.01) << steps << " " << share.x;
        }
    }
}

TEST(EditImageIntialView, ConfirmedUnchangedKeepsEveryPixelAndTurnedExchangesTheSides) {
    const struct {
        int width, height, turns;
        gfx::PixelSize expected;
    } cases[] = {{240, 180, 0, {240, 180}}, {999, 1333, 0, {999, 1333}},
                 {2000, 11, 0, {2000, 11}}, {780, 1688, 0, {780, 1688}},
                 {241, 179, 1, {179, 241}}, {3, 997, 3, {997, 3}},
                 {1, 1, 2, {1, 1}},         {333, 500, 4, {333, 500}}};
    for (const auto& c : cases) {
        CropScreen screen;
        screen.opener->picture = test::coordinatePicture(screen, c.width, c.height);
        const auto view = EditImageIntialView::initWithFrame(screen.window().rootView()->bounds());
        view->setDelegate(screen.opener);
        screen.window().rootView()->addSubview(view);
        view->onEditImageWithEditEntrance(nullptr, 0);
        screen.wait(1);
        for (int turn = 0; turn < c.turns; ++turn)
            screen.tap(view->cropToolBar()->rotateBtn());
        EXPECT_EQ(view->canRevert(), c.turns % 4 != 0) << c.width;
        screen.tap(view->cropToolBar()->doneBtn());
        ASSERT_TRUE(screen.opener->result) << c.width;
        EXPECT_EQ(screen.opener->result->pixelSize(), c.expected) << c.width;
        EXPECT_EQ(screen.opener->done, 1);
        EXPECT_TRUE(view->isCropOver());
    }
}

TEST(EditImageIntialView, TurnsAboutTheMiddleOfTheFrameWithTheBarLocked) {
    CropScreen screen;
    auto& view = *screen.view;
    screen.drag({20, 491}, {90, -60});
    const gfx::Point middle = view.cropFrame().center();
    const auto isLike = [](const gfx::Color& a, const gfx::Color& b) {
        return std::abs(a.green - b.green) < 0.012 && std::abs(a.blue - b.blue) < 0.012;
    };
    const gfx::Color atMiddle = screen.seenAt(middle);
    const gfx::Color topLeft = screen.seenAt(view.cropFrame().origin + gfx::Point{6, 6});
    view.onCropToolBarRotateBtnClicked();
    for (int moment = 0; moment < 3; ++moment) {
        screen.wait(0.1);
        EXPECT_TRUE(isLike(screen.seenAt(middle), atMiddle)) << moment;
        view.onCropToolBarRotateBtnClicked();
        view.onCropToolBarCancelBtnClicked();
        EXPECT_TRUE(view.isRotationIconLocked() && view.isRotating()) << moment;
    }
    screen.wait(1);
    EXPECT_EQ(view.currentRotationOrientation(), 1);
    EXPECT_EQ(screen.opener->back, 0);
    // Counter-clockwise: the top left corner comes to the bottom left.
    const gfx::Rect frame = view.cropFrame();
    EXPECT_TRUE(isLike(screen.seenAt({frame.minX() + 6, frame.maxY() - 7}), topLeft));
}

TEST(EditImageIntialView, TurnsToAnOrientationAndTellsOnceWhenItIsThere) {
    CropScreen screen;
    auto& view = *screen.view;
    std::string heard;
    const auto turnTo = [&](std::int32_t orientation, bool animated) {
        heard.clear();
        view.rotateImageToOrientationWithAnimationCompletion(
            orientation, animated, [&](bool finished) { heard += finished ? "there" : "ignored"; });
    };
    struct Case {
        std::int32_t orientation;
        bool animated;
        const char* atOnce;
        const char* inTheEnd;
        gfx::Size pixels;
    };
    for (const Case& c : {Case{0, true, "there", "there", {240, 180}},
                          {2, true, "", "there", {240, 180}},
                          {7, true, "ignored", "ignored", {240, 180}},
                          {1, false, "there", "there", {180, 240}},
                          {0, true, "", "there", {240, 180}},
                          {3, true, "", "there", {180, 240}}}) {
        turnTo(c.orientation, c.animated);
        EXPECT_EQ(heard, c.atOnce) << c.orientation;
        screen.wait(1);
        EXPECT_EQ(heard, c.inTheEnd) << c.orientation;
        EXPECT_EQ(view.eIScrollView()->imageView()->pixelsSeen(), c.pixels) << c.orientation;
    }
    EXPECT_EQ(view.currentRotationOrientation(), 3);
    // On its way it takes no other turn.
    view.onCropToolBarRotateBtnClicked();
    turnTo(1, true);
    EXPECT_EQ(heard, "ignored");
}

TEST(EditImageIntialView, CancelTakesTheTurnBackBeforeItGoes) {
    CropScreen screen;
    auto& view = *screen.view;
    const gfx::Rect frame = view.cropFrame();
    screen.tap(view.cropToolBar()->rotateBtn());
    // As it goes the picture is upright again, and where it was.
    screen.opener->answer = [&](const std::string&) {
        EXPECT_EQ(view.eIScrollView()->imageView()->pixelsSeen(), gfx::Size(240, 180));
        EXPECT_EQ(view.eIScrollView()->imageFrame(), frame);
    };
    screen.tap(view.cropToolBar()->cancelBtn());
    EXPECT_EQ(screen.opener->back, 1);
    EXPECT_EQ(screen.opener->done, 0);
    EXPECT_FALSE(screen.opener->result);
    EXPECT_TRUE(view.isCropOver());
    EXPECT_EQ(view.currentRotationOrientation(), 0);
}

TEST(EditImageIntialView, WhatTakesOverOnTheWayBackToTheMiddleGoesOnFromWhatIsSeen) {
    enum { EdgeDrag, PictureDrag, Revert, RevertTurn };
    for (const int action : {EdgeDrag, PictureDrag, Revert, RevertTurn}) {
        CropScreen screen;
        auto& view = *screen.view;
        const auto& grid = *view.cropGridView();
        const auto& picture = *view.eIScrollView()->imageView();
        if (action == RevertTurn) screen.tap(view.cropToolBar()->rotateBtn());
        // 0.15 s of the 0.3 s are over: half of the way.
        screen.drag(view.cropFrame().origin + gfx::Point{1, 1}, {100, 80}, 0.55);
        const gfx::Rect frame = grid.shownFrame();
        const gfx::Rect image = picture.shownRectInWindow();
        ASSERT_GT(frame.minX() - view.cropFrame().minX(), 20);
        const auto expectSeen = [&] {
            EXPECT_TRUE(grid.shownFrame().inset(-1e-6, -1e-6).contains(frame)) << action;
            EXPECT_NEAR(picture.shownRectInWindow().minX(), image.minX(), 1e-6) << action;
            EXPECT_NEAR(picture.shownRectInWindow().minY(), image.minY(), 1e-6) << action;
            EXPECT_NEAR(picture.shownRectInWindow().maxX(), image.maxX(), 1e-6) << action;
        };
        Finger finger(screen.window());
        if (action == EdgeDrag) finger.down({frame.minX(), frame.midY()}).moveTo({5, 400});
        if (action == PictureDrag) finger.down(frame.center()).moveTo({300, 400});
        if (action >= Revert) view.onCropToolBarRevertBtnClicked();
        if (action != EdgeDrag) expectSeen();
        screen.wait(0.1);
        if (action == PictureDrag) expectSeen();
        if (action == RevertTurn) continue;
        const gfx::Rect seen = grid.shownFrame();
        EXPECT_TRUE(
            picture.shownRectInWindow().inset(-1e-6, -1e-6).contains(grid.shownRectInWindow()));
        EXPECT_NEAR(grid.borderGridLines()[1]->shownFrame().maxX(), seen.size.width, 1e-6);
        EXPECT_NEAR(grid.borderGridLines()[1]->shownFrame().maxY(), seen.size.height, 1e-6);
    }
}

TEST(EditImageIntialView, RevertTakesTheFrameOutOfTheFingersThatAreDown) {
    for (int turns = 0; turns < 3; ++turns) {
        CropScreen screen;
        auto& view = *screen.view;
        for (int turn = 0; turn < turns; ++turn)
            screen.tap(view.cropToolBar()->rotateBtn());
        Finger finger(screen.window());
        finger.down({20, 360}).moveTo({120, 360}, 4);
        EXPECT_EQ(view.cropFrame().minX(), 95);
        view.onCropToolBarRevertBtnClicked();
        EXPECT_FALSE(view.isTimerRunning()) << turns;
        screen.wait(1);
        finger.moveTo({200, 360}).up();
        screen.wait(1);
        EXPECT_EQ(view.cropFrame(), view.cropOriginalFrame()) << turns;
        // The next finger is heeded again.
        screen.drag({20, 360}, {100, 0}, 0);
        EXPECT_GT(view.cropFrame().minX(), 90) << turns;
    }
}

TEST(EditImageIntialView, AResizeDuringTheOpeningLeavesItAsIfOpenedAtThatSize) {
    CropScreen screen;
    screen.view->removeFromSuperview();
    screen.open(0.1);
    screen.view->setFrame({0, 0, 844, 390});
    screen.wait(1);
    // 844 x 633 points are higher than the view, so nothing is left free above; 227 are the
    // content's height.
    const auto& content = *screen.view->eIScrollView();
    EXPECT_EQ(screen.view->naturalTopLength(), 0);
    EXPECT_EQ(content.frame(), gfx::Rect(0, 0, 844, 390));
    EXPECT_EQ(screen.view->cropFrame(), gfx::Rect(271, 20, 302, 227));
    EXPECT_EQ(content.contentInset(), (ui::EdgeInsets{20, 271, 143, 271}));
}

TEST(EditImageIntialView, AResizeEndsDragsAndReverts) {
    // The picture is 302 x 227 points there, and as high as the content.
    for (const bool reverts : {false, true}) {
        CropScreen screen;
        auto& view = *screen.view;
        Finger finger(screen.window());
        finger.down({20, 360}).moveTo({120, 360}, 4);
        if (reverts) view.onCropToolBarRevertBtnClicked();
        screen.wait(0.1);
        view.setFrame({0, 0, 844, 390});
        view.layoutIfNeeded();
        const gfx::Rect frame = view.cropFrame();
        EXPECT_NEAR(frame.size.width, reverts ? 302 : 302 * 275 / 350., 1e-9);
        finger.moveTo({500, 200}, 2).up();
        screen.wait(1);
        EXPECT_EQ(view.cropFrame(), frame) << reverts;
        EXPECT_EQ(view.canRevert(), !reverts);
        EXPECT_EQ(view.overlayView()->overlayLevel(), 2) << reverts;
        EXPECT_EQ(view.cropToolBar()->rotateBtn()->alpha(), 1) << reverts;
    }
}

TEST(EditImageIntialView, WhoeverOpenedItMayDropItWithinEveryMessage) {
    for (const std::string message : {"original", "display", "image", "done", "back"}) {
        CropScreen screen;
        auto& view = screen.view;
        view->removeFromSuperview();
        int heard = 0;
        screen.opener->answer = [&](const std::string& name) {
            if (name != message) return;
            ++heard;
            view->removeFromSuperview();
            view = nullptr;
            // It goes as well, with all that the editor asks it for.
            screen.opener = nullptr;
        };
        screen.open();
        if (view) {
            const auto bar = view->cropToolBar();
            Finger(screen.window())
                .tap((message == "back" ? bar->cancelBtn() : bar->doneBtn())
                         ->convertPointTo({30, 30}, nullptr));
        }
        screen.wait(1);
        EXPECT_EQ(heard, 1) << message;
        EXPECT_FALSE(view) << message;
    }
}

}  // namespace
}  // namespace kalim
