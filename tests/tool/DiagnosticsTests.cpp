#include <gtest/gtest.h>

#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/tool/FixedText.h"
#include "kalimkit/tool/QNTAutoDebugPerformanceInfo.h"
#include "tests/support/TestHost.h"

namespace kalim {
namespace {

TEST(FixedText, HasItsDecimalsAndAPoint) {
    EXPECT_EQ(fixedText(0.055, 1), "0.1");
    EXPECT_EQ(fixedText(-1234.5, 2), "-1234.50");
    EXPECT_EQ(fixedText(12, 0), "12");
    EXPECT_EQ(fixedText(-12, 0), "-12");
    EXPECT_EQ(fixedText(1e300, 2).size(), 304u);
}

TEST(MDrawLogUtil, HandsTheBareMessageToTheHostsCallback) {
    MDrawLogUtil& relay = MDrawLogUtil::sharedInstance();
    relay.logInfoMethodName("nobody listens", "draw");
    std::vector<std::string> texts;
    MDrawView::setLogTransferToBlock([&](const std::string& text) { texts.push_back(text); });
    relay.logInfoMethodName("drawn", "draw");
    // Taken away only by who has set it.
    const int setter = 0;
    relay.clearLogTransferBlock(&setter);
    relay.logInfoMethodName("kept", "");
    EXPECT_EQ(texts.back(), "kept");
    relay.setLogTransferBlock([&](const std::string& text) { texts.push_back(text); }, &setter);
    relay.clearLogTransferBlock(&relay);
    relay.logInfoMethodName("kept, too", "");
    relay.clearLogTransferBlock(&setter);
    relay.logInfoMethodName("dropped", "");
    EXPECT_EQ(texts.back(), "kept, too");
    MDrawView::setLogTransferToBlock({});
    relay.logInfoMethodName("nobody listens", "draw");
    EXPECT_EQ(texts, (std::vector<std::string>{"drawn", "kept", "kept, too"}));
}

TEST(QNTAutoDebugPerformanceInfo, CollectsTimeAndMemoryBetweenCheckpoints) {
    test::TestHost host;
    constexpr double mebibyte = 1024 * 1024;
    host.environment().setMemory(10 * mebibyte, 99 * mebibyte);
    const auto info = QNTAutoDebugPerformanceInfo::initWithName("export");
    info->start();
    host.wait(0.2509);
    host.environment().setMemory(12.5 * mebibyte, 99 * mebibyte);
    info->appendInfo("fit");
    host.wait(1);
    host.environment().setMemory(11 * mebibyte, 99 * mebibyte);
    info->appendInfo(std::nullopt);
    info->appendInfo("draw");
    EXPECT_EQ(info->infos(),
              "fit(250 ms [mem info] total = 12.500000, add = 2.500000);\n "
              "draw(1000 ms [mem info] total = 11.000000, add = -1.500000);\n ");
    EXPECT_EQ(info->startMemeryUsed(), 10);
    host.wait(1);
    info->end();
    EXPECT_EQ(info->infos(), "");
    EXPECT_EQ(info->startMemeryUsed(), 11);
    EXPECT_EQ(info->startDate(), host.environment().wallClock());
    EXPECT_EQ(info->availableMemory(), 99);

    const auto unstarted = QNTAutoDebugPerformanceInfo::initWithName("export");
    unstarted->appendInfo("fit");
    EXPECT_EQ(unstarted->infos(), "fit(0 ms [mem info] total = 11.000000, add = 11.000000);\n ");
}

TEST(QNTAutoDebugPerformanceInfo, DoesNothingUntilItIsEnabledAndKnowsWhatItDoesNotKnow) {
    test::TestHost host;
    const auto info = QNTAutoDebugPerformanceInfo::init();
    info->start();
    info->appendInfo("draw");
    EXPECT_EQ(info->infos(), "");
    EXPECT_EQ(info->startDate(), 0);
    // The machine's own figures, in MiB: more than one, less than a mebi of them.
    EXPECT_GT(info->usedMemory(), 1);
    EXPECT_LT(info->usedMemory(), 1024 * 1024);
    EXPECT_GT(info->availableMemory(), 0);
    host.environment().setMemory(std::nullopt, std::nullopt);
    EXPECT_EQ(info->usedMemory(), 9223372036854775808.0);
    EXPECT_EQ(info->availableMemory(), 9223372036854775808.0);
}

}  // namespace
}  // namespace kalim
