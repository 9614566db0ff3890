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
    gfx::Rect inWindow(const ui::View& view) { return view.convertRectTo(view.bounds(), nullptr); }
    void tap(gfx::Point p) { test::Finger(host.window()).tap(p); }

    test::TestHost host{{1, {390, 844}, std::make_shared<test::RecordingDevice>()}};
    std::shared_ptr<Delegate> delegate = std::make_shared<Delegate>();
    std::shared_ptr<KLMActionsheetView> sheet;
};

}  // namespace

TEST_F(KLMActionsheetViewTest, PutsCancelAboveTheAction) {
    const struct {
        gfx::PixelSize screen;
        bool isPhone;
        double room;
    } cases[] = {{{780, 1688}, true, 0}, {{1242, 2688}, true, 34}, {{1242, 2688}, false, 0}};
    for (const auto& [screen, isPhone, room] : cases) {
        host.environment().setScreen({2, screen, isPhone});
        show();
        EXPECT_EQ(sheet->isiPhoneX(), room > 0);
        const auto& upper = sheet->buttons().at(0);
        const auto& lower = sheet->buttons().at(1);
        EXPECT_EQ(inWindow(*sheet->sheetPanel()), gfx::Rect(0, 733 - room, 390, 111 + room));
        EXPECT_EQ(inWindow(*upper), gfx::Rect(0, 733 - room, 390, 52));
        EXPECT_EQ(inWindow(*lower), gfx::Rect(0, 792 - room, 390, 52 + room));
        EXPECT_EQ(lower->contentEdgeInsets(), (ui::EdgeInsets{14, 0, 14 + room, 0}));
        EXPECT_EQ(upper->currentTitle(), "放弃修改");
        EXPECT_EQ(upper->currentTitleColor()->hex(), "#D92D21FF");
        EXPECT_EQ(lower->currentTitle(), "继续标注");
        EXPECT_EQ(lower->currentTitleColor()->hex(), "#000000FF");
        EXPECT_EQ(sheet->buttonWithTag(1), upper);
        EXPECT_EQ(sheet->buttonWithTag(0), lower);
        sheet->removeFromSuperview();
    }
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
