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

TEST(RunLoop, WorkRunsByDueTimeThenInTheOrderOfSchedulingWhoeverAddsIt) {
    LoopLog log;
    log.loop.after(0.2, log.work("b"));
    log.loop.after(0.1, [&] {
        log.write("a");
        log.loop.after(0.1, log.work("chained"));
        log.loop.async(log.work("queued"));
        // The clock is the host's: within work it stays where it is.
        log.loop.drain();
        log.loop.advanceTo(5);
        log.write("still a");
    });
    log.loop.after(0.2, log.work("c"));
    log.loop.after(0.9, log.work("last"));
    log.loop.async([&] {
        log.write("now");
        log.loop.async(log.work("then"));
    });
    log.loop.after(-5, log.work("overdue"));
    log.loop.after(0.001, log.work("soon"));
    log.loop.drain();
    EXPECT_EQ(log.take(), (Lines{"now@0", "overdue@0", "then@0"}));
    log.loop.advanceTo(0.15);
    EXPECT_EQ(log.take(), (Lines{"soon@1", "a@100", "still a@100", "queued@100"}));
    log.loop.advanceTo(0.1);
    EXPECT_EQ(log.loop.now(), 0.15) << "time does not go back";
    log.loop.advanceTo(0.2);
    EXPECT_EQ(log.take(), (Lines{"b@200", "c@200", "chained@200"}));
    EXPECT_EQ(log.loop.nextDue(), 0.9);
    // The sum of the steps falls short of 0.9 by rounding.
    int ticks = 0;
    DisplayLink link(log.loop, [&](Time) { ++ticks; });
    link.setPaused(false);
    for (int step = 0; step < 7; ++step)
        log.loop.advanceTo(log.loop.now() + 0.1);
    EXPECT_EQ(log.take(), Lines{"last@900"});
    EXPECT_EQ(ticks, 42);
}

TEST(RunLoop, WorkIsCancelledWhenItIsDueAlreadyAndMayCancelOtherWorkAsItIsDropped) {
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

    // Frames that nobody needs pass in silence.
    log.loop.advanceTo(3600);
    EXPECT_EQ(log.take(), Lines());
    EXPECT_FALSE(log.loop.isBusy());
    log.loop.requestFrame();
    EXPECT_TRUE(log.loop.isBusy());
    EXPECT_NEAR(log.loop.nextDue(), 3600 + 1.0 / 60, 1e-9);
    log.loop.advanceTo(3601);
    EXPECT_EQ(log.take(), Lines{"display@3600017"});
}

TEST(RunLoop, FramesAndTimersDoNotDriftOverAnHour) {
    RunLoop loop;
    std::uint64_t ticks = 0;
    std::uint64_t offGrid = 0;
    int firings = 0;
    // Started on the grid, so the first tick comes an interval later.
    loop.advanceTo(1);
    DisplayLink link(loop, [&](Time time) {
        ++ticks;
        if (time != static_cast<double>(ticks + 60) / 60) ++offGrid;
    });
    link.setPaused(false);
    Timer timer(loop);
    timer.start(0.1, true, [&] { ++firings; });
    loop.drain();
    while (loop.now() < 3601)
        loop.advanceTo(std::min(loop.now() + 0.7301, 3601.0));
    EXPECT_EQ(ticks, 216000u);
    EXPECT_EQ(offGrid, 0u);
    EXPECT_EQ(firings, 36000);
}

TEST(RunLoop, LinksMayComeAndGoWhileAFrameTicksAndSkipFrames) {
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
    last.reset();
    behind->setFrameInterval(3);
    log.loop.advanceTo(0.14);
    EXPECT_EQ(log.take(), (Lines{"behind@83", "behind@133"}));
    behind->setFrameInterval(0);
    log.loop.advanceTo(0.17);
    EXPECT_EQ(log.take(), (Lines{"behind@150", "behind@167"}));
}

TEST(Timer, FiresOnItsGridUntilItIsStoppedRestartedOrDestroyedFromWithinToo) {
    LoopLog log;
    Timer timer(log.loop);
    log.loop.advanceTo(0.05);
    timer.start(0.1, true, log.work("fire"));
    // A late host gets every firing.
    log.loop.advanceTo(0.36);
    EXPECT_EQ(log.take(), (Lines{"fire@150", "fire@250", "fire@350"}));
    timer.stop();
    EXPECT_FALSE(log.loop.isBusy());
    timer.start(0.04, false, [&] {
        log.write("once");
        EXPECT_FALSE(timer.isRunning());
    });
    EXPECT_TRUE(timer.isRunning());
    log.loop.advanceTo(1);
    timer.start(0, false, log.work("shortest"));
    EXPECT_NEAR(log.loop.nextDue(), 1.0001, 1e-9);
    log.loop.advanceTo(2);
    EXPECT_EQ(log.take(), (Lines{"once@400", "shortest@1000"}));

    timer.start(0.1, true, [&] {
        log.write("stopped");
        timer.stop();
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
    log.loop.advanceTo(4);
    EXPECT_EQ(log.take(),
              (Lines{"stopped@2100", "restarted@2200", "destroyed@2300", "second life@2500"}));
}

}  // namespace

}  // namespace kalim::ui
