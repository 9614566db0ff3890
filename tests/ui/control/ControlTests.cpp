#include "kalimkit/ui/control/Control.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kalimkit/ui/gesture/PanGestureRecognizer.h"
#include "kalimkit/ui/gesture/TapGestureRecognizer.h"
#include "tests/support/Finger.h"
#include "tests/support/RecordingDevice.h"
#include "tests/support/TestHost.h"

namespace kalim::ui {

namespace {

// A control at (100, 100) to (140, 140) that writes down its events.
struct ControlTest : testing::Test {
    ControlTest() {
        root->addSubview(control);
        static constexpr const char* names[] = {"down", "in", "out", "cancel", "value"};
        for (int i = 0; i < 5; ++i) {
            control->addAction(static_cast<ControlEvent>(i), [this, i](Control& sender) {
                log += std::string(names[i]) + (sender.isHighlighted() ? "* " : " ");
            });
        }
    }

    test::TestHost host{{.device = std::make_shared<test::RecordingDevice>()}};
    test::Finger finger{host.window()};
    std::shared_ptr<View> root = host.window().rootView();
    std::shared_ptr<Control> control = Control::initWithFrame({100, 100, 40, 40});
    std::string log;
};

TEST_F(ControlTest, FollowsAFingerWithinAGraceOfSeventyPoints) {
    struct Case {
        std::vector<gfx::Point> way;
        std::vector<bool> highlighted;
        std::string events;
    };
    const Case cases[] = {
        {{{120, 120}}, {true}, "down* in "},
        {{{120, 120}, {209, 120}}, {true, true}, "down* in "},
        {{{120, 120}, {211, 120}}, {true, false}, "down* out "},
        {{{120, 120}, {120, 29}, {120, 31}}, {true, false, true}, "down* in "},
        // A finger has to land inside.
        {{{90, 120}, {120, 120}}, {false, false}, ""},
    };
    for (const Case& each : cases) {
        log.clear();
        for (std::size_t i = 0; i < each.way.size(); ++i) {
            i == 0 ? finger.down(each.way[i]) : finger.moveTo(each.way[i]);
            EXPECT_EQ(control->isHighlighted(), each.highlighted[i]) << each.events << i;
        }
        finger.up();
        EXPECT_EQ(log, each.events);
        EXPECT_FALSE(control->isHighlighted());
    }
}

TEST_F(ControlTest, IsCancelledByTheHostByAPanAboveItAndByBeingDisabled) {
    finger.down({120, 120}).cancel();
    EXPECT_EQ(log, "down* cancel ");
    finger.down({120, 120});
    control->setEnabled(false);
    EXPECT_EQ(log, "down* cancel down* cancel ");
    finger.moveTo({121, 120}).up();
    control->setEnabled(true);
    root->addGestureRecognizer(std::make_shared<PanGestureRecognizer>());
    finger.down({120, 120}).moveTo({135, 120}).up();
    EXPECT_EQ(log, "down* cancel down* cancel down* cancel ");
}

TEST_F(ControlTest, KeepsTouchesAndTapsFromWhatLiesAboveAndBelowIt) {
    const auto tap = std::make_shared<TapGestureRecognizer>();
    tap->setHandler([this](GestureRecognizer&) { log += "tap "; });
    root->addGestureRecognizer(tap);
    const auto below = Control::initWithFrame({0, 0, 390, 844});
    below->addAction(ControlEvent::TouchDown, [this](Control&) { log += "below "; });
    root->insertSubview(below, 0);
    finger.tap({120, 120});
    control->setEnabled(false);
    finger.tap({120, 120});
    EXPECT_EQ(log, "down* in ");
    below->removeFromSuperview();
    finger.tap({50, 50});
    EXPECT_EQ(log, "down* in tap ");
    control->addGestureRecognizer(tap);
    finger.tap({120, 120});
    EXPECT_EQ(log, "down* in tap tap ");
}

TEST_F(ControlTest, ActionsMayLetGoOfTheControlAndOfItsWindow) {
    for (const ControlEvent event : {ControlEvent::TouchDown, ControlEvent::TouchUpInside}) {
        auto window = std::make_unique<Window>(gfx::Size{50, 50});
        std::weak_ptr<Control> held;
        {
            const auto sender = Control::initWithFrame({0, 0, 50, 50});
            held = sender;
            window->rootView()->addSubview(sender);
        }
        bool wasHeld = false;
        held.lock()->addAction(event, [&](Control& sender) {
            sender.removeActions(event);
            window = nullptr;
            wasHeld = !held.expired() && &sender == held.lock().get();
        });
        Window& touched = *window;
        touched.fingersBegan({{1, {20, 20}}});
        if (window) touched.fingersEnded({{1, {20, 20}}});
        EXPECT_TRUE(wasHeld);
        EXPECT_TRUE(held.expired());
    }
}

}  // namespace

}  // namespace kalim::ui
