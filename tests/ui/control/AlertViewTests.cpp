#include "kalimkit/ui/control/AlertView.h"

#include <gtest/gtest.h>

#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/gesture/TapGestureRecognizer.h"
#include "tests/support/Finger.h"
#include "tests/support/RecordingDevice.h"
#include "tests/support/TestHost.h"

namespace kalim::ui {

namespace {

struct AlertViewTest : testing::Test {
    std::shared_ptr<AlertView> show(std::vector<std::string> buttons,
                                    const std::string& title = "Title") {
        return AlertView::show(host.window(), {title, "Message", std::move(buttons),
                                               [this](std::size_t i) { answers.push_back(i); }});
    }
    static gfx::Point middleOf(const View& view) {
        return view.convertPointTo(view.bounds().center(), nullptr);
    }

    test::TestHost host{{.size = {400, 800}, .device = std::make_shared<test::RecordingDevice>()}};
    test::Finger finger{host.window()};
    std::vector<std::size_t> answers;
};

TEST_F(AlertViewTest, IsTheOnlyThingThatTakesTouchesUntilItIsAnswered) {
    const auto root = host.window().rootView();
    const auto tap = std::make_shared<TapGestureRecognizer>();
    int taps = 0;
    tap->setHandler([&taps](GestureRecognizer&) { ++taps; });
    root->addGestureRecognizer(tap);
    const auto alert = show({"No", "Yes"});
    finger.tap({10, 10}).tap(middleOf(*alert->panel()));
    EXPECT_TRUE(answers.empty());
    finger.tap(middleOf(*alert->buttons()[1]));
    EXPECT_EQ(answers, std::vector<std::size_t>{1});
    EXPECT_EQ(AlertView::topmostIn(host.window()), nullptr);
    EXPECT_EQ(taps, 0);
    alert->dismissWithButton(0);
    EXPECT_EQ(answers.size(), 1u);
    host.wait(0.19);
    EXPECT_TRUE(alert->superview());
    host.wait(0.02);
    EXPECT_FALSE(alert->superview());
    finger.tap({10, 10});
    EXPECT_EQ(taps, 1);
}

TEST_F(AlertViewTest, LaysItsButtonsOutInARowOfTwoOrAColumn) {
    // The title is 17 high, the message 13, 4 apart and 20 from the rest.
    struct Case {
        std::vector<std::string> buttons;
        double panelHeight;
        gfx::Rect last;
    };
    const Case cases[] = {
        {{"OK"}, 118, {0, 74, 270, 44}},
        {{"A", "B"}, 118, {135, 74, 135, 44}},
        {{"A", "B", "C"}, 206, {0, 162, 270, 44}},
        {{"A", "Too long for a half"}, 162, {0, 118, 270, 44}},
        {{}, 118, {0, 74, 270, 44}},
    };
    for (const Case& each : cases) {
        const auto alert = show(each.buttons);
        EXPECT_EQ(alert->buttons().back()->frame(), each.last);
        EXPECT_EQ(alert->panel()->frame(),
                  gfx::Rect(65, 400 - each.panelHeight / 2, 270, each.panelHeight));
        alert->removeFromSuperview();
    }
}

TEST_F(AlertViewTest, StaysInTheMiddleAndWithinTheWindow) {
    const auto alert = AlertView::show(host.window(), {"", std::string(2000, 'x'), {"OK"}, {}});
    host.window().setSize({600, 300});
    host.window().display();
    EXPECT_EQ(alert->frame(), gfx::Rect(0, 0, 600, 300));
    EXPECT_EQ(alert->panel()->frame(), gfx::Rect(165, 24, 270, 252));
}

TEST_F(AlertViewTest, StacksAndMayBringUpAnotherOrLoseItsWindow) {
    const auto first = show({"1"}, "first");
    const auto second = AlertView::show(
        host.window(), {"second", "", {"2"}, [&](std::size_t) { show({"3"}, "third"); }});
    EXPECT_EQ(AlertView::topmostIn(host.window()), second);
    second->dismissWithButton(0);
    EXPECT_EQ(AlertView::topmostIn(host.window())->alert().title, "third");
    AlertView::topmostIn(host.window())->dismissWithButton(0);
    EXPECT_EQ(AlertView::topmostIn(host.window()), first);

    auto window = std::make_unique<Window>(gfx::Size{300, 300});
    std::weak_ptr<AlertView> last =
        AlertView::show(*window, {"", "", {"Quit"}, [&](std::size_t) { window = nullptr; }});
    Window& touched = *window;
    const gfx::Point place = middleOf(*last.lock()->buttons()[0]);
    touched.fingersBegan({{1, place}});
    touched.fingersEnded({{1, place}});
    host.wait(1);
    EXPECT_TRUE(last.expired());
}

}  // namespace

}  // namespace kalim::ui
