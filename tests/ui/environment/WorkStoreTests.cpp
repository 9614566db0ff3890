#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "kalimkit/ui/environment/MemoryWorkStore.h"
#include "tests/support/TestHost.h"

namespace kalim::ui {

TEST(WorkStore, TimesAreThoseOfTheCalendar) {
    EXPECT_EQ(utcTime(0), "1970-01-01T00:00:00Z");
    EXPECT_EQ(utcTime(951782400.9), "2000-02-29T00:00:00Z");
    EXPECT_EQ(utcTime(1772352930), "2026-03-01T08:15:30Z");
    EXPECT_EQ(utcTime(4107542399), "2100-02-28T23:59:59Z");
    EXPECT_EQ(utcTime(-1), "1969-12-31T23:59:59Z");
}

TEST(MemoryWorkStore, AWorkOutlivesItsEditorAndIsHeldByOne) {
    const test::TestHost host;
    const auto contents = std::make_shared<MemoryWorkStore::Contents>();
    auto first = std::make_unique<MemoryWorkStore>(contents);
    const std::string id = first->begin({"a.png", "00ff", {1, 2}, "set-up"});
    first->record(id, "one");
    first->record("none", "lost");

    MemoryWorkStore second(contents);
    std::optional<Work> work;
    const auto keep = [&](std::optional<Work> opened) { work = std::move(opened); };
    second.open(id, keep);
    EXPECT_FALSE(work);
    second.forget(id);
    first = nullptr;
    second.open(id, keep);
    ASSERT_TRUE(work);
    EXPECT_EQ(work->summary, (WorkSummary{id, "a.png", "00ff", work->summary.began, 1, true}));
    EXPECT_EQ(work->bytes, (std::vector<std::uint8_t>{1, 2}));
    EXPECT_EQ(work->steps, std::vector<std::string>{"one"});

    std::vector<std::string> told;
    second.breakDown("the disk is full");
    second.setOnProblem([&](const std::string& sentence) { told.push_back(sentence); });
    second.breakDown("again");
    second.record(id, "two");
    EXPECT_EQ(told, std::vector<std::string>{"the disk is full"});
    EXPECT_EQ(contents->works.front().steps.size(), 1U);
    EXPECT_EQ(second.begin({}), "");
    second.end(id);
    EXPECT_TRUE(contents->works.empty());
}

}  // namespace kalim::ui
