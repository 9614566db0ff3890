#include <gtest/gtest.h>

#include "kalimkit/editor/sheet/QNTMaskView.h"
#include "kalimkit/editor/sheet/TesselConfirmButton.h"
#include "kalimkit/gfx/Surface.h"
#include "kalimkit/theme/FrameworkImages.h"
#include "tests/support/Finger.h"
#include "tests/support/TestHost.h"

namespace kalim {

namespace {

using Keys = std::vector<std::string>;

class Floor : public ui::View {
public:
    explicit Floor(std::string& heardText) : heard(heardText) {}
    void touchesBegan(const ui::TouchEvent& /*event*/) override { heard += "floor "; }
    void lie() { init({0, 0, 390, 844}); }
    std::string& heard;
};

class Delegate : public QNTMaskViewDelegate {
public:
    void clickAtMaskView() override {
        heard += "mask ";
        if (letsGo) mask->removeFromSuperview();
        if (letsGo) mask.reset();
    }
    std::string heard;
    std::shared_ptr<QNTMaskView> mask = QNTMaskView::init();
    bool letsGo = false;
};

}  // namespace

TEST(QNTMaskView, TouchClosesThePanelAndGoesOn) {
    test::TestHost host;
    const auto delegate = std::make_shared<Delegate>();
    const auto floor = std::make_shared<Floor>(delegate->heard);
    floor->lie();
    host.window().rootView()->addSubview(floor);
    floor->addSubview(delegate->mask);
    delegate->mask->setFrame({0, 600, 390, 244});
    delegate->mask->setDelegate(delegate);
    host.window().display();
    EXPECT_EQ(delegate->mask->gradientView()->frame(), gfx::Rect(0, 0, 390, 244));
    EXPECT_EQ(frameworkImageName(delegate->mask->gradientView()->image()),
              "background_mask_gradient");
    test::Finger(host.window()).tap({10, 700});
    EXPECT_EQ(delegate->heard, "mask floor ");
    delegate->letsGo = true;
    test::Finger(host.window()).tap({10, 700});
    EXPECT_EQ(delegate->mask, nullptr);
}

class TesselConfirmButtonTest : public testing::Test {
protected:
    TesselConfirmButtonTest() {
        button->setFrame({100, 100, 60, 60});
        host.window().rootView()->addSubview(button);
        host.window().display();
    }
    // Red of the pixel there, window points; the mark is white on 0.22.
    int red(int x, int y) {
        host.window().display();
        const auto bitmap = host.window().surface()->makeImage()->pixels();
        return static_cast<int>(bitmap->colorAt(x, y).red * 255 + 0.5);
    }

    test::TestHost host;
    std::shared_ptr<TesselConfirmButton> button = TesselConfirmButton::init();
};

TEST_F(TesselConfirmButtonTest, DrawsAWhiteCheckMarkOnAGreyCircle) {
    EXPECT_EQ(button->goPath().points(),
              (std::vector<gfx::Point>{{16.5, 31.5}, {24.5, 39.5}, {43.5, 20.5}}));
    EXPECT_EQ(red(130, 110), 56);
    EXPECT_EQ(red(102, 102), 0) << "outside of the circle";
    EXPECT_GT(red(134, 129), 200) << "on the long stroke";
}

TEST_F(TesselConfirmButtonTest, CheckMarkComesAndGoes) {
    button->ApperaWithDuration(0.5);
    EXPECT_EQ(button->runningAnimationKeys(), Keys{"goApprea"});
    EXPECT_EQ(red(134, 129), 56);
    host.wait(0.6);
    EXPECT_GT(red(134, 129), 200);
    button->DisApperaWithDuration(0.2);
    host.wait(0.2);
    EXPECT_NEAR(button->shownRectInWindow().size.width, 48, 1e-6);
    host.wait(0.1);
    EXPECT_EQ(button->animationKeys(), Keys{"scale-layer"});
    host.wait(0.2);
    EXPECT_EQ(button->shownRectInWindow().size.width, 60);
    EXPECT_EQ(red(134, 129), 56) << "it stays away";
    button->ApperaWithDuration(0.1);
    host.wait(0.2);
    EXPECT_GT(red(134, 129), 200);
    EXPECT_FALSE(host.loop().isBusy());
}

}  // namespace kalim
