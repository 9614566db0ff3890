#include "kalimkit/editor/bar/TesselTopTool.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "kalimkit/theme/FrameworkImages.h"
#include "tests/support/Finger.h"
#include "tests/support/RecordingDevice.h"
#include "tests/support/TestHost.h"

namespace kalim {

namespace {

class Delegate : public TesselTopToolDelegate {
public:
    void clickTool() override { hear("tool "); }
    bool canContinueClose() override {
        hear("may? ");
        return mayClose;
    }
    void clickToolClose() override { hear("close "); }
    void clickToolConfirm() override { hear("confirm "); }
    void clickToolMore() override { hear("more "); }
    void clickToolUndo() override { hear("undo "); }
    void clickToolRedo() override { hear("redo "); }
    void clickToolDone() override { hear("done "); }

    bool mayClose = true;
    std::string heard;
    std::function<void()> whenHearing = [] {};

private:
    void hear(const char* message) {
        heard += message;
        whenHearing();
    }
};

// At size 16 each of the two characters of a title is 16 wide.
class TesselTopToolTest : public testing::Test {
protected:
    TesselTopToolTest() { put(TesselTopTool::init(), 64); }
    void put(const std::shared_ptr<TesselTopTool>& made, double height) {
        bar = made;
        bar->setFrame({0, 0, 390, height});
        bar->setDelegate(delegate);
        host.window().rootView()->addSubview(bar);
        host.window().display();
    }
    std::string heardAfterTap(gfx::Point p) {
        test::Finger(host.window()).tap(p);
        return std::exchange(delegate->heard, {});
    }

    test::TestHost host{{1, {390, 844}, std::make_shared<test::RecordingDevice>()}};
    std::shared_ptr<Delegate> delegate = std::make_shared<Delegate>();
    std::shared_ptr<TesselTopTool> bar;
};

}  // namespace

TEST_F(TesselTopToolTest, ALongTitleEndsBeforeTheStepsBegin) {
    EXPECT_EQ(bar->doneButton()->frame(), bar->confirmButton()->frame());
    EXPECT_EQ(bar->moreButton()->frame(), gfx::Rect(289, 10, 44, 44));
    for (const auto& [title, width] :
         {std::pair{"发送图片", 64.0}, {"把这张图片发送给所有人", 129.0}}) {
        bar->confirmButton()->setTitle(title);
        bar->setNeedsLayout();
        host.window().display();
        EXPECT_EQ(bar->confirmButton()->frame().minX(), 375 - width) << title;
    }
}

TEST_F(TesselTopToolTest, TitlesAreWhiteAndFadeWithTheState) {
    EXPECT_EQ(bar->backgroundColor()->hex(), "#1D1D1DD9");
    for (const auto& button :
         {bar->closeButton(), std::shared_ptr<ui::Button>(bar->confirmButton()),
          bar->doneButton()}) {
        EXPECT_EQ(button->titleFont().size, 16);
        EXPECT_EQ(button->titleColor(ui::ControlState::Normal)->hex(), "#FFFFFFFF");
        EXPECT_EQ(button->titleColor(ui::ControlState::Highlighted)->hex(), "#FFFFFFCC");
        EXPECT_EQ(button->titleColor(ui::ControlState::Disabled)->hex(), "#FFFFFF33");
    }
}

TEST_F(TesselTopToolTest, EveryButtonTellsTheDelegateInOrder) {
    bar->setUndoEnableRedoEnable(true, true);
    EXPECT_EQ(heardAfterTap({31, 32}), "may? tool close ");
    EXPECT_EQ(heardAfterTap({359, 32}), "tool confirm ");
    EXPECT_EQ(heardAfterTap({171, 32}), "tool undo ");
    EXPECT_EQ(heardAfterTap({219, 32}), "tool redo ");
    EXPECT_EQ(heardAfterTap({311, 32}), "") << "the more button is never shown";
    bar->handleMore();
    EXPECT_EQ(std::exchange(delegate->heard, {}), "tool more ");
    delegate->mayClose = false;
    EXPECT_EQ(heardAfterTap({31, 32}), "may? ");
    bar->setUndoEnableRedoEnable(false, true);
    EXPECT_EQ(heardAfterTap({171, 32}), "");
    EXPECT_EQ(frameworkImageName(bar->undoButton()->currentImage()), "icon_tool_undo_disable");
    EXPECT_EQ(frameworkImageName(bar->redoButton()->currentImage()), "icon_tool_redo");
}

TEST_F(TesselTopToolTest, SendTakesTapsUpToTenPointsBesideIt) {
    EXPECT_EQ(heardAfterTap({343 - 8, 32}), "tool confirm ");
    EXPECT_EQ(heardAfterTap({343 - 12, 32}), "");
    EXPECT_EQ(heardAfterTap({15 + 32 + 8, 32}), "") << "the other buttons do not";
}

TEST_F(TesselTopToolTest, DelegateMayLetGoOfTheBarAndOfItself) {
    bar->setUndoEnableRedoEnable(true, true);
    delegate->whenHearing = [this] {
        if (bar) bar->removeFromSuperview();
        bar.reset();
    };
    EXPECT_EQ(heardAfterTap({171, 32}), "tool undo ");
    put(TesselTopTool::init(), 64);
    delegate.reset();
    test::Finger(host.window()).tap({31, 32});
}

}  // namespace kalim
