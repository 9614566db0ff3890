#include "kalimkit/editor/picker/TesselPenView.h"

#include <gtest/gtest.h>

#include <functional>

#include "kalimkit/theme/ColorImages.h"
#include "kalimkit/theme/FrameworkImages.h"
#include "kalimkit/theme/HexColor.h"
#include "tests/support/Finger.h"
#include "tests/support/RecordingDevice.h"
#include "tests/support/TestHost.h"

namespace kalim {

namespace {

class Delegate : public TesselPenViewDelegate {
public:
    int clickAtPenView() override {
        ++taps;
        whenTapped();
        return 0;
    }
    int taps = 0;
    std::function<void()> whenTapped = [] {};
};

class TesselPenViewTest : public testing::Test {
protected:
    TesselPenViewTest() {
        button->setDelegate(delegate);
        host.window().rootView()->addSubview(button);
        host.window().display();
    }

    test::TestHost host;
    std::shared_ptr<Delegate> delegate = std::make_shared<Delegate>();
    std::shared_ptr<TesselPenView> button = TesselPenView::initWithFrame({170, 769, 50, 50});
};

}  // namespace

TEST_F(TesselPenViewTest, ShowsBlackLighterSoThatItIsSeen) {
    const struct {
        unsigned pen;
        const char* color;
        const char* tint;
    } cases[] = {{6, "F63434", "F63434"}, {6, "000000", "242424"}, {0, "F63434", nullptr}};
    for (const auto& [pen, color, tint] : cases) {
        button->setPen(pen);
        button->setColor(colorWithHexString(color));
        const auto plain = imageNamedForFramework(frameworkImageName(button->icon()));
        const auto expected = tint ? imageWithTintColor(plain, colorWithHexString(tint)) : plain;
        EXPECT_TRUE(*button->icon()->pixels() == *expected->pixels());
        EXPECT_EQ(button->image(ui::ControlState::Highlighted), button->icon());
        EXPECT_TRUE(gfx::equalColors(button->color(), colorWithHexString(color)));
    }
}

TEST_F(TesselPenViewTest, TapIsToldAndASlideIsNot) {
    test::Finger finger(host.window());
    finger.tap({195, 794});
    EXPECT_EQ(delegate->taps, 1);
    finger.down({195, 794}).moveTo({202, 794});
    EXPECT_EQ(button->startPoint(), (gfx::Point{25, 25}));
    finger.up();
    EXPECT_EQ(delegate->taps, 2);
    finger.down({195, 794}).moveTo({206, 794}).moveTo({195, 794}).up();
    EXPECT_EQ(delegate->taps, 2);
    finger.down({195, 794}).moveTo({206, 794}).cancel();
    button->sendActions(ui::ControlEvent::TouchUpInside);
    EXPECT_EQ(delegate->taps, 3) << "as a screen reader does it";
    delegate->whenTapped = [this] {
        button->removeFromSuperview();
        button.reset();
    };
    finger.tap({195, 794});
    EXPECT_EQ(button, nullptr);
}

TEST_F(TesselPenViewTest, RingHintPlaysOnlyWhileItMay) {
    button->ringAnimationOp(1);
    EXPECT_FALSE(button->isRinging());
    button->setCanUseRingAnimation(true);
    for (const int op : {2, 1, 1, -1})
        button->ringAnimationOp(op);
    ASSERT_EQ(button->shapeLayers().size(), 2u);
    EXPECT_EQ(button->runningAnimationKeys(),
              (std::vector<std::string>{"FirstRingAnimationKey", "SecondRingAnimationKey"}));
    EXPECT_EQ(button->firstRing()->frame(), gfx::Rect(1, 1, 48, 48));
    button->ringAnimationOp(0);
    EXPECT_FALSE(button->isRinging());
    EXPECT_TRUE(button->shapeLayers().empty());
    host.wait(0.1);
    EXPECT_FALSE(host.loop().isBusy());
}

// The first ring has grown to 48 x 1.8333 = 88 points after 0.6 s and is not seen until 1.4 s; the
// second sets out 0.2 s later and grows to 80.
TEST_F(TesselPenViewTest, RingsGrowOneAfterTheOtherAndStartAgain) {
    button->setCanUseRingAnimation(true);
    button->ringAnimationOp(1);
    const struct {
        double time;
        bool isFirstSeen;
        bool isSecondSeen;
    } moments[] = {{0.1, true, false},  {0.5, true, true},   {0.7, false, true},
                   {0.9, false, false}, {1.3, false, false}, {1.5, true, false}};
    for (const auto& [time, isFirstSeen, isSecondSeen] : moments) {
        host.loop().advanceTo(time);
        EXPECT_EQ(!button->firstRing()->extent().isEmpty(), isFirstSeen) << time;
        EXPECT_EQ(!button->secondRing()->extent().isEmpty(), isSecondSeen) << time;
        if (time != 0.7) continue;
        EXPECT_NEAR(button->firstRing()->shownOutline().boundingBox().size.width, 88, 0.01);
    }
}

TEST_F(TesselPenViewTest, ZoomComesBackByItself) {
    const auto width = [this] { return button->shownRectInWindow().size.width; };
    button->zoomOutWithDuration(0.1);
    host.wait(0.1);
    EXPECT_NEAR(width(), 40, 1e-6);
    host.wait(0.2);
    EXPECT_EQ(width(), 50);
    button->zoomInWithDuration(0.2);
    host.wait(0.1);
    EXPECT_NEAR(width(), 45, 1e-6);
    EXPECT_EQ(button->frame().size.width, 50);
    host.wait(0.2);
    EXPECT_FALSE(host.loop().isBusy());
}

}  // namespace kalim
