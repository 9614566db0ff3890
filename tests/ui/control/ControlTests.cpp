#include "kalimkit/ui/control/Control.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kalimkit/ui/gesture/PanGestureRecognizer.h"
#include "kalimkit/ui/gesture/TapGestureRecognizer.h"
#include "tests/ui/Stage.h"

namespace kalim::ui {

namespace {

// A control at (100, 100) to (140, 140) that writes down its events.
struct ControlTest : testing::Test, test::Stage {
    ControlTest() {
        root->addSubview(control);
        static constexpr const char* names[] = {"down", "in", "out", "cancel", "value"};
        for (int i = 0; i < 5; ++i) {
            control->addAction(static_cast<ControlEvent>(i), [this, i](Control& sender) {
                log += std::string(names[i]) + (sender.isHighlighted() ? "* " : " ");
            });
        }
    }

    std::shared_ptr<Control> control = Control::initWithFrame({100, 100, 40, 40});
    std::string log;
};

TEST_F(ControlTest, FollowsAFingerWithinAGraceOfSeventyPoints) {
    const struct {
        std::vector<gfx::Point> way;
        std::vector<bool> highlighted;
        std::string events;
    } cases[] = {
        {{{120, 120}}, {true}, "down* in "},
        {{{120, 120}, {209, 120}}, {true, true}, "down* in "},
        {{{120, 120}, {211, 120}}, {true, false}, "down* out "},
        {{{120, 120}, {120, 29}, {120, 31}}, {true, false, true}, "down* in "},
        // A finger has to land inside.
        {{{90, 120}, {120, 120}}, {false, false}, ""},
    };
    for (const auto& each : cases) {
        log.clear();
        for (std::size_t i = 0; i < each.way.size(); ++i) {
            i == 0 ? one.down(each.way[i]) : one.moveTo(each.way[i]);
            EXPECT_EQ(control->isHighlighted(), each.highlighted[i]) << each.events << i;
        }
        one.up();
        EXPECT_EQ(log, each.events);
        EXPECT_FALSE(control->isHighlighted());
    }
}

TEST_F(ControlTest, IsCancelledByTheHostByAPanAboveItAndByBeingDisabled) {
    one.down({120, 120}).cancel();
    EXPECT_EQ(log, "down* cancel ");
    one.down({120, 120});
    control->setEnabled(false);
    EXPECT_EQ(log, "down* cancel down* cancel ");
    one.moveTo({121, 120}).up();
    control->setEnabled(true);
    root->addGestureRecognizer(std::make_shared<PanGestureRecognizer>());
    one.down({120, 120}).moveTo({135, 120}).up();
    EXPECT_EQ(log, "down* cancel down* cancel down* cancel ");
}

TEST_F(ControlTest, KeepsTouchesAndTapsFromWhatLiesAboveAndBelowIt) {
    const auto tap = std::make_shared<TapGestureRecognizer>();
    tap->setHandler([this](GestureRecognizer&) { log += "tap "; });
    root->addGestureRecognizer(tap);
    const auto below = Control::initWithFrame({0, 0, 390, 844});
    below->addAction(ControlEvent::TouchDown, [this](Control&) { log += "below "; });
    root->insertSubview(below, 0);
    one.tap({120, 120});
    control->setEnabled(false);
    one.tap({120, 120});
    EXPECT_EQ(log, "down* in ");
    below->removeFromSuperview();
    one.tap({50, 50});
    EXPECT_EQ(log, "down* in tap ");
    control->addGestureRecognizer(tap);
    one.tap({120, 120});
    EXPECT_EQ(log, "down* in tap tap ");
}

TEST_F(ControlTest, ActionsMayLetGoOfTheControlAndOfItsWindow) {
    for (const ControlEvent event : {ControlEvent::TouchDown, ControlEvent::TouchUpInside}) {
        auto window = std::make_unique<Window>(gfx::Size{50, 50});
        window->rootView()->addSubview(Control::initWithFrame({0, 0, 50, 50}));
        const std::weak_ptr<View> held = window->rootView()->subviews()[0];
        bool wasHeld = false;
        static_cast<Control&>(*held.lock()).addAction(event, [&](Control& sender) {
            sender.removeActions(event);
            window = nullptr;
            wasHeld = !held.expired() && &sender == held.lock().get();
        });
        test::Finger finger(*window);
        finger.down({20, 20});
        if (window) finger.up();
        EXPECT_TRUE(wasHeld);
        EXPECT_TRUE(held.expired());
    }
}

}  // namespace

}  // namespace kalim::ui
