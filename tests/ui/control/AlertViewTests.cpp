#include "kalimkit/ui/control/AlertView.h"

#include <gtest/gtest.h>

#include "kalimkit/ui/gesture/TapGestureRecognizer.h"
#include "tests/ui/Stage.h"

namespace kalim::ui {

namespace {

struct AlertViewTest : testing::Test, test::Stage {
    AlertViewTest() : Stage({400, 800}) {}

    std::shared_ptr<AlertView> show(std::vector<std::string> buttons,
                                    const std::string& title = "Title") {
        return AlertView::show(window(), {title, "Message", std::move(buttons),
                                          [this](std::size_t i) { answers.push_back(i); }});
    }
    static gfx::Point middleOf(const View& view) {
        return view.convertPointTo(view.bounds().center(), nullptr);
    }

    std::vector<std::size_t> answers;
};

TEST_F(AlertViewTest, IsTheOnlyThingThatTakesTouchesUntilItIsAnswered) {
    add<TapGestureRecognizer>("tap");
    const auto alert = show({"No", "Yes"});
    one.tap({10, 10}).tap(middleOf(*alert->panel()));
    EXPECT_TRUE(answers.empty());
    one.tap(middleOf(*alert->buttons()[1]));
    EXPECT_EQ(answers, std::vector<std::size_t>{1});
    EXPECT_EQ(AlertView::topmostIn(window()), nullptr);
    EXPECT_EQ(take(), test::Lines());
    alert->dismissWithButton(0);
    EXPECT_EQ(answers.size(), 1u);
    wait(0.19);
    EXPECT_TRUE(alert->superview());
    wait(0.02);
    EXPECT_FALSE(alert->superview());
    one.tap({10, 10});
    EXPECT_EQ(take(), test::Lines{"tap ended"});
}

TEST_F(AlertViewTest, LaysItsButtonsOutInARowOfTwoOrAColumnWithinTheWindow) {
    // The title is 17 high, the message 13, 4 apart and 20 from the rest.
    const struct {
        std::vector<std::string> buttons;
        double panelHeight;
        gfx::Rect last;
    } cases[] = {
        {{"OK"}, 118, {0, 74, 270, 44}},
        {{"A", "B"}, 118, {135, 74, 135, 44}},
        {{"A", "B", "C"}, 206, {0, 162, 270, 44}},
        {{"A", "Too long for a half"}, 162, {0, 118, 270, 44}},
        {{}, 118, {0, 74, 270, 44}},
    };
    for (const auto& each : cases) {
        const auto alert = show(each.buttons);
        EXPECT_EQ(alert->buttons().back()->frame(), each.last);
        EXPECT_EQ(alert->panel()->frame(),
                  gfx::Rect(65, 400 - each.panelHeight / 2, 270, each.panelHeight));
        alert->removeFromSuperview();
    }
    const auto large = AlertView::show(window(), {"", std::string(2000, 'x'), {"OK"}, {}});
    window().setSize({600, 300});
    window().display();
    EXPECT_EQ(large->frame(), gfx::Rect(0, 0, 600, 300));
    EXPECT_EQ(large->panel()->frame(), gfx::Rect(165, 24, 270, 252));
}

TEST_F(AlertViewTest, StacksAndMayBringUpAnotherOrLoseItsWindow) {
    const auto first = show({"1"}, "first");
    const auto second = AlertView::show(
        window(), {"second", "", {"2"}, [&](std::size_t) { show({"3"}, "third"); }});
    EXPECT_EQ(AlertView::topmostIn(window()), second);
    second->dismissWithButton(0);
    EXPECT_EQ(AlertView::topmostIn(window())->alert().title, "third");
    AlertView::topmostIn(window())->dismissWithButton(0);
    EXPECT_EQ(AlertView::topmostIn(window()), first);

    auto other = std::make_unique<Window>(gfx::Size{300, 300});
    std::weak_ptr<AlertView> last =
        AlertView::show(*other, {"", "", {"Quit"}, [&](std::size_t) { other = nullptr; }});
    test::Finger(*other).tap(middleOf(*last.lock()->buttons()[0]));
    wait(1);
    EXPECT_TRUE(last.expired());
}

}  // namespace

}  // namespace kalim::ui
