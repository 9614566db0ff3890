#include "kalimkit/ui/loop/RunLoop.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "kalimkit/ui/loop/DisplayLink.h"
#include "kalimkit/ui/loop/Timer.h"

namespace kalim::ui {

namespace {

// A loop whose work writes its name and the time it ran at, in thousandths of a second.
struct LoopLog {
    RunLoop loop;
    std::vector<std::string> lines;

    void write(const char* name) {
        char line[60];
        std::snprintf(line, sizeof line, "%s@%.0f", name, loop.now() * 1000);
        lines.push_back(line);
    }
    RunLoop::Work work(const char* name) {
        return [this, name] { write(name); };
    }
    std::vector<std::string> take() { return std::exchange(lines, {}); }
};

using Lines = std::vector<std::string>;

TEST(RunLoop, WorkRunsByDueTimeAndThenInTheOrderOfScheduling) {
    LoopLog log;
    log.loop.after(0.2, log.work("b"));
    log.loop.after(0.1, log.work("a"));
    log.loop.after(0.2, log.work("c"));
    log.loop.async(log.work("now"));
    log.loop.after(-5, log.work("overdue"));
    log.loop.advanceTo(0.15);
    EXPECT_EQ(log.take(), (Lines{"now@0", "overdue@0", "a@100"}));
    EXPECT_EQ(log.loop.now(), 0.15);
    log.loop.advanceTo(0.2);
    EXPECT_EQ(log.take(), (Lines{"b@200", "c@200"}));
}

TEST(RunLoop, WorkThatWorkSchedulesRunsInTheSameAdvanceWhenItIsDue) {
    LoopLog log;
    log.loop.after(0.1, [&] {
        log.write("first");
        log.loop.after(0.1, log.work("chained"));
        log.loop.after(0.5, log.work("too late"));
        log.loop.async(log.work("queued"));
    });
    log.loop.after(0.15, log.work("between"));
    log.loop.advanceTo(0.5);
    EXPECT_EQ(log.take(), (Lines{"first@100", "queued@100", "between@150", "chained@200"}));
    EXPECT_EQ(log.loop.nextDue(), 0.6);
}

TEST(RunLoop, CancellingWithinWorkStopsWhatIsDueAtTheSameMoment) {
    LoopLog log;
    std::uint64_t own = 0;
    std::uint64_t other = 0;
    own = log.loop.after(0.1, [&] {
        log.write("canceller");
        log.loop.cancel(own);
        log.loop.cancel(other);
        log.loop.cancel(987654);
    });
    other = log.loop.after(0.1, log.work("cancelled"));
    log.loop.after(0.1, log.work("last"));
    log.loop.advanceTo(1);
    EXPECT_EQ(log.take(), (Lines{"canceller@100", "last@100"}));
    EXPECT_FALSE(log.loop.isBusy());
}

TEST(RunLoop, DroppedWorkMayCancelOtherWorkAsItGoes) {
    auto loop = std::make_unique<RunLoop>();
    const auto ownTimer = [&loop] {
        auto timer = std::make_shared<Timer>(*loop);
        timer->start(1, true, [] {});
        return [timer] {};
    };
    const std::uint64_t id = loop->after(2, ownTimer());
    loop->after(3, ownTimer());
    loop->cancel(id);
    EXPECT_EQ(loop->nextDue(), 1) << "the timer of the work that is left";
    loop.reset();
}

TEST(RunLoop, DrainingRunsTheQueueToItsEndAndLeavesTheClock) {
    LoopLog log;
    log.loop.advanceTo(0.3);
    log.loop.async([&] {
        log.write("one");
        log.loop.async(log.work("three"));
    });
    log.loop.async(log.work("two"));
    log.loop.after(0.001, log.work("later"));
    log.loop.drain();
    EXPECT_EQ(log.take(), (Lines{"one@300", "two@300", "three@300"}));
    log.loop.advanceTo(0.1);
    EXPECT_EQ(log.loop.now(), 0.3) << "time does not go back";
    EXPECT_EQ(log.take(), Lines());
}

TEST(RunLoop, WorkThatMovesTheClockIsIgnored) {
    LoopLog log;
    log.loop.after(0.1, [&] {
        log.loop.async(log.work("queued"));
        log.loop.drain();
        log.loop.advanceTo(5);
        log.write("outer");
    });
    log.loop.advanceTo(1);
    EXPECT_EQ(log.take(), (Lines{"outer@100", "queued@100"}));
    EXPECT_EQ(log.loop.now(), 1);
}

TEST(RunLoop, TenTenthsReachWhatIsDueAfterASecond) {
    LoopLog log;
    int ticks = 0;
    log.loop.after(1, log.work("due"));
    DisplayLink link(log.loop, [&](Time) { ++ticks; });
    link.setPaused(false);
    // The sum of the steps falls short of 1 by rounding.
    for (int step = 0; step < 10; ++step)
        log.loop.advanceTo(log.loop.now() + 0.1);
    EXPECT_EQ(log.take(), Lines{"due@1000"});
    EXPECT_EQ(ticks, 60);
}

TEST(RunLoop, AFrameTicksAfterTheWorkOfItsMomentAndThenDisplays) {
    LoopLog log;
    DisplayLink link(log.loop, [&](Time time) {
        EXPECT_EQ(time, 0.5);
        log.write("link");
        log.loop.async(log.work("queued"));
        link.setPaused(true);
    });
    log.loop.setFrameHandler(log.work("display"));
    log.loop.after(0.5, [&] {
        link.setPaused(false);
        log.loop.after(0, log.work("work"));
    });
    log.loop.advanceTo(0.6);
    EXPECT_EQ(log.take(), (Lines{"work@500", "link@500", "display@500", "queued@500"}));
}

TEST(RunLoop, FramesDoNotDriftOverAnHour) {
    RunLoop loop;
    std::uint64_t ticks = 0;
    std::uint64_t offGrid = 0;
    DisplayLink link(loop, [&](Time time) {
        ++ticks;
        if (time != static_cast<double>(ticks) / 60) ++offGrid;
    });
    link.setPaused(false);
    while (loop.now() < 3600)
        loop.advanceTo(std::min(loop.now() + 0.7301, 3600.0));
    EXPECT_EQ(ticks, 216000u);
    EXPECT_EQ(offGrid, 0u);
}

TEST(RunLoop, FramesThatNobodyNeedsPassInSilence) {
    LoopLog log;
    log.loop.setFrameHandler(log.work("display"));
    DisplayLink paused(log.loop, [&](Time) { log.write("paused link"); });
    log.loop.advanceTo(3600);
    EXPECT_EQ(log.take(), Lines());
    EXPECT_FALSE(log.loop.isBusy());
    log.loop.requestFrame();
    EXPECT_TRUE(log.loop.isBusy());
    EXPECT_NEAR(log.loop.nextDue(), 3600 + 1.0 / 60, 1e-9);
    log.loop.advanceTo(3601);
    EXPECT_EQ(log.take(), Lines{"display@3600017"});
}

TEST(RunLoop, ALinkStartedOnTheGridTicksFirstAnIntervalLater) {
    RunLoop loop;
    std::vector<Time> ticks;
    DisplayLink link(loop, [&](Time time) { ticks.push_back(time); });
    loop.advanceTo(1);
    link.setPaused(false);
    loop.drain();
    loop.advanceTo(2);
    ASSERT_EQ(ticks.size(), 60u);
    EXPECT_EQ(ticks.front(), 61.0 / 60);
    EXPECT_EQ(ticks.back(), 2);
}

TEST(RunLoop, ALinkMayAskForEveryThirdFrame) {
    LoopLog log;
    DisplayLink link(log.loop, [&](Time) { log.write("third"); });
    link.setPaused(false);
    log.loop.advanceTo(1.0 / 60);
    link.setFrameInterval(3);
    log.loop.advanceTo(0.12);
    EXPECT_EQ(log.take(), (Lines{"third@17", "third@67", "third@117"}));
    link.setFrameInterval(0);
    log.loop.advanceTo(0.15);
    EXPECT_EQ(log.take(), (Lines{"third@133", "third@150"}));
}

TEST(RunLoop, LinksMayComeAndGoWhileAFrameTicks) {
    LoopLog log;
    std::unique_ptr<DisplayLink> last;
    std::unique_ptr<DisplayLink> first;
    std::unique_ptr<DisplayLink> doomed;
    const auto start = [&](std::function<void(Time)> tick) {
        auto link = std::make_unique<DisplayLink>(log.loop, std::move(tick));
        link->setPaused(false);
        return link;
    };
    first = start([&](Time) {
        log.write("first");
        first.reset();
        doomed.reset();
        last = start([&](Time) { log.write("last"); });
    });
    doomed = start([&](Time) { log.write("doomed"); });
    const auto behind = start([&](Time) { log.write("behind"); });
    log.loop.advanceTo(0.02);
    EXPECT_EQ(log.take(), (Lines{"first@17", "behind@17"}));
    log.loop.advanceTo(0.04);
    EXPECT_EQ(log.take(), (Lines{"behind@33", "last@33"}));
}

TEST(Timer, ALateHostGetsEveryFiringOfItsGrid) {
    LoopLog log;
    Timer timer(log.loop);
    log.loop.advanceTo(0.05);
    timer.start(0.1, true, log.work("fire"));
    log.loop.advanceTo(0.36);
    EXPECT_EQ(log.take(), (Lines{"fire@150", "fire@250", "fire@350"}));
    timer.stop();
    EXPECT_FALSE(log.loop.isBusy());
}

TEST(Timer, RepeatsWithoutDriftForAnHour) {
    RunLoop loop;
    int firings = 0;
    Timer timer(loop);
    timer.start(0.1, true, [&] { ++firings; });
    loop.advanceTo(3600);
    EXPECT_EQ(firings, 36000);
}

TEST(Timer, FiresOnceUnlessItRepeats) {
    LoopLog log;
    Timer timer(log.loop);
    timer.start(0.1, false, [&] {
        log.write("once");
        EXPECT_FALSE(timer.isRunning());
    });
    EXPECT_TRUE(timer.isRunning());
    log.loop.advanceTo(1);
    timer.start(0, false, log.work("shortest"));
    EXPECT_NEAR(log.loop.nextDue(), 1.0001, 1e-9);
    log.loop.advanceTo(2);
    EXPECT_EQ(log.take(), (Lines{"once@100", "shortest@1000"}));
}

TEST(Timer, MayBeStoppedRestartedAndDestroyedWithinItsOwnCallback) {
    LoopLog log;
    Timer stopped(log.loop);
    stopped.start(0.1, true, [&] {
        log.write("stopped");
        stopped.stop();
    });
    Timer restarted(log.loop);
    restarted.start(0.2, true, [&, name = std::string("restarted")] {
        restarted.start(0.3, false, log.work("second life"));
        log.write(name.c_str());
    });
    auto destroyed = std::make_unique<Timer>(log.loop);
    destroyed->start(0.3, true, [&, name = std::string("destroyed")] {
        destroyed.reset();
        log.write(name.c_str());
    });
    log.loop.advanceTo(2);
    EXPECT_EQ(log.take(),
              (Lines{"stopped@100", "restarted@200", "destroyed@300", "second life@500"}));
}

}  // namespace

}  // namespace kalim::ui
