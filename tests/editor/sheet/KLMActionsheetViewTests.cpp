#include "kalimkit/editor/sheet/KLMActionsheetView.h"

#include <gtest/gtest.h>

#include <functional>

#include "tests/support/Finger.h"
#include "tests/support/RecordingDevice.h"
#include "tests/support/TestHost.h"

namespace kalim {

namespace {

class Delegate : public KLMActionsheetViewDelegate {
public:
    void modalAlertPressedWithButtonIndex(KLMActionsheetView& sheet, int index) override {
        EXPECT_EQ(sheet.tag(), 7);
        heard.push_back(index);
        whenPressed();
    }
    std::vector<int> heard;
    std::function<void()> whenPressed = [] {};
};

class KLMActionsheetViewTest : public testing::Test {
protected:
    void show() {
        sheet = KLMActionsheetView::initActionSheetCancelButtonTitleDelegate("继续标注", "放弃修改",
                                                                             delegate);
        sheet->setTag(7);
        sheet->showAlert(*host.window().rootView());
        host.wait(1);
    }
    void tap(gfx::Point p) { test::Finger(host.window()).tap(p); }

    test::TestHost host{{1, {390, 844}, std::make_shared<test::RecordingDevice>()}};
    std::shared_ptr<Delegate> delegate = std::make_shared<Delegate>();
    std::shared_ptr<KLMActionsheetView> sheet;
};

}  // namespace

TEST_F(KLMActionsheetViewTest, PutsTheRedCancelAboveTheActionWhichReachesTheEdgeOfTheScreen) {
    host.environment().setScreen({2, {1242, 2688}, true});
    show();
    const auto& upper = sheet->buttons().at(0);
    const auto& lower = sheet->buttons().at(1);
    EXPECT_TRUE(sheet->isiPhoneX());
    EXPECT_EQ(sheet->sheetPanel()->frame(), gfx::Rect(0, 699, 390, 145));
    EXPECT_EQ(lower->contentEdgeInsets(), (ui::EdgeInsets{14, 0, 48, 0}));
    EXPECT_EQ(upper->currentTitleColor()->hex(), "#D92D21FF");
    EXPECT_EQ(lower->currentTitleColor()->hex(), "#000000FF");
    EXPECT_EQ(sheet->buttonWithTag(1), upper);
    EXPECT_EQ(sheet->buttonWithTag(0), lower);
}

TEST_F(KLMActionsheetViewTest, AnswersWhenItHasSlidAway) {
    const struct {
        gfx::Point place;
        int index;
    } cases[] = {{{195, 760}, 1}, {{195, 820}, 0}, {{195, 100}, 0}};
    for (const auto& [place, index] : cases) {
        show();
        tap({195, 788});
        EXPECT_FALSE(sheet->isAnimating()) << "between the buttons";
        tap(place);
        host.wait(0.2);
        EXPECT_TRUE(delegate->heard.empty());
        tap({195, 760});
        host.wait(0.04);
        EXPECT_EQ(delegate->heard, std::vector{index}) << "what is tapped meanwhile does not count";
        EXPECT_EQ(sheet->superview(), nullptr);
        delegate->heard.clear();
    }
}

TEST_F(KLMActionsheetViewTest, SlidesOverTheWindowAndIsModalMeanwhile) {
    const auto bottom = [this] { return sheet->sheetPanel()->shownFrame().maxY(); };
    show();
    sheet->removeFromSuperview();
    sheet = KLMActionsheetView::initActionSheetCancelButtonTitleDelegate("a", "b", delegate);
    EXPECT_EQ(sheet->sheetPanel()->frame(), gfx::Rect(0, 844, 320, 380));
    sheet->showAlert();
    EXPECT_EQ(sheet->superview(), host.window().rootView().get()) << "the key window";
    EXPECT_EQ(bottom(), 844 + 111);
    EXPECT_EQ(host.window().rootView()->hitTest({195, 100}), sheet);
    host.wait(0.23 / 2);
    EXPECT_NEAR(bottom(), 844 + 55.5, 15) << "as of the last frame";
    host.wait(0.12);
    EXPECT_EQ(bottom(), 844);
    host.window().setSize({500, 900});
    host.window().display();
    EXPECT_EQ(sheet->sheetPanel()->frame(), gfx::Rect(0, 789, 500, 111));
}

TEST_F(KLMActionsheetViewTest, DelegateMayLetGoOfTheSheet) {
    show();
    delegate->whenPressed = [this] {
        sheet->removeFromSuperview();
        sheet.reset();
    };
    tap({195, 760});
    host.wait(1);
    EXPECT_EQ(sheet, nullptr);
    show();
    delegate.reset();
    tap({195, 100});
    host.wait(1);
    EXPECT_EQ(sheet->superview(), nullptr);
}

}  // namespace kalim
