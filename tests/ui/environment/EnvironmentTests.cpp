#include "kalimkit/ui/environment/Environment.h"

#include <gtest/gtest.h>

#include "kalimkit/gfx/Raise.h"
#include "tests/support/RecordingDevice.h"
#include "tests/support/TestHost.h"

namespace kalim::ui {

namespace {

TEST(Environment, TheOneBeforeComesBackWhenAScopeEnds) {
    ASSERT_FALSE(Environment::hasCurrent());
    try {
        Environment::current();
        FAIL() << "there is none";
    } catch (const ProgrammingError& error) {
        EXPECT_EQ(error.name(), "EnvironmentException");
    }
    const auto device = std::make_shared<test::RecordingDevice>();
    {
        test::TestHost outer({.device = device});
        {
            const test::TestHost inner({.scale = 3, .device = device});
            EXPECT_EQ(Environment::current().screen().scale, 3);
        }
        EXPECT_EQ(&Environment::current(), &outer.environment());
    }
    EXPECT_FALSE(Environment::hasCurrent());
}

TEST(HeadlessEnvironment, RecordsAlertsInOrderAnswersEachAtOnceAndGoesWithTheRunLoop) {
    test::TestHost host({.scale = 3, .device = std::make_shared<test::RecordingDevice>()});
    HeadlessEnvironment& environment = host.environment();
    std::vector<std::size_t> answers;
    environment.presentAlert({"first", "text", {"OK", "Cancel"}, [&](std::size_t button) {
                                  answers.push_back(button);
                                  environment.presentAlert({"second", "", {}, {}});
                              }});
    EXPECT_EQ(answers, std::vector<std::size_t>{0});
    const std::vector<Alert> alerts = host.takeAlerts();
    ASSERT_EQ(alerts.size(), 2u);
    EXPECT_EQ(alerts[0].title, "first");
    EXPECT_EQ(alerts[0].buttons, (std::vector<std::string>{"OK", "Cancel"}));
    EXPECT_EQ(alerts[1].title, "second");
    EXPECT_TRUE(host.takeAlerts().empty());

    const double start = environment.wallClock();
    host.wait(1.5);
    EXPECT_EQ(environment.wallClock(), start + 1.5);
    EXPECT_EQ(environment.screen().nativeSize, (gfx::PixelSize{1170, 2532}));
    environment.setLocalizedString("kalim.ok", "好");
    EXPECT_EQ(environment.localizedString("kalim.ok"), "好");
    EXPECT_EQ(environment.localizedString("kalim.none"), "kalim.none");
}

}  // namespace

}  // namespace kalim::ui
