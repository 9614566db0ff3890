#include "kalimkit/store/SqliteWorkStore.h"

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/ProgramRun.h"

namespace kalim::store {

namespace {

namespace fs = std::filesystem;

ui::WorkStart startOf(const std::string& picture, std::size_t size = 3) {
    return {picture, std::string(64, 'a'), std::vector<std::uint8_t>(size, 0xC5),
            "set-up \n of " + picture};
}

std::vector<ui::WorkSummary> listOf(ui::WorkStore& store) {
    std::vector<ui::WorkSummary> works;
    store.list([&](std::vector<ui::WorkSummary> listed) { works = std::move(listed); });
    return works;
}

std::optional<ui::Work> openIn(ui::WorkStore& store, const std::string& id) {
    std::optional<ui::Work> work;
    store.open(id, [&](std::optional<ui::Work> opened) { work = std::move(opened); });
    return work;
}

std::string stepText(int number) {
    return "{\"step\":" + std::to_string(number) + ",\"is\":\"" + std::string(number % 500, 'x') +
           "\"}";
}

class SqliteWorkStoreTest : public ::testing::Test {
protected:
    SqliteWorkStore& make() { return *(_store = std::make_unique<SqliteWorkStore>(path())); }
    std::string path() const {
        return (folder.path() / "state" / "kalimkit" / "works.sqlite").string();
    }
    // Of all the files there are.
    std::string everything() const {
        std::string text;
        for (const auto& entry : fs::directory_iterator(fs::path(path()).parent_path()))
            text += test::readText(entry.path());
        return text;
    }

    test::TemporaryFolder folder;
    std::unique_ptr<SqliteWorkStore> _store;
};

}  // namespace

TEST_F(SqliteWorkStoreTest, AWorkIsThereAfterItsEditorAndGoneWithoutATrace) {
    const mode_t mask = ::umask(0);
    SqliteWorkStore& first = make();
    EXPECT_TRUE(listOf(first).empty());
    EXPECT_FALSE(fs::exists(folder.path() / "state"));
    const std::string id = first.begin(startOf("a.png", 3 << 20));
    for (int number = 0; number < 20; ++number)
        first.record(id, stepText(number));
    for (const auto& entry : fs::directory_iterator(fs::path(path()).parent_path()))
        EXPECT_EQ(entry.status().permissions(), fs::perms(0600)) << entry.path();
    EXPECT_EQ(fs::status(fs::path(path()).parent_path()).permissions(), fs::perms(0700));
    ::umask(mask);

    SqliteWorkStore second(path());
    const std::string other = second.begin(startOf("b.png"));
    second.record(other, "stays");
    ASSERT_EQ(listOf(second).size(), 2U);
    EXPECT_TRUE(listOf(second).front().isHeld);
    EXPECT_FALSE(openIn(second, id));
    second.forget(id);
    second.end(id);
    second.record(id, "not mine");
    _store = nullptr;

    std::optional<ui::Work> work = openIn(second, id);
    ASSERT_TRUE(work);
    EXPECT_EQ(work->summary.picture, "a.png");
    EXPECT_EQ(work->setUp, "set-up \n of a.png");
    EXPECT_EQ(work->bytes, startOf("a.png", 3 << 20).bytes);
    ASSERT_EQ(work->steps.size(), 20U);
    EXPECT_EQ(work->steps.back(), stepText(19));
    second.record(id, "one more");
    EXPECT_EQ(listOf(second).front().steps, 21U);
    EXPECT_NE(everything().find("one more"), std::string::npos);

    second.end(id);
    EXPECT_EQ(everything().find("one more"), std::string::npos);
    EXPECT_EQ(everything().find("a.png"), std::string::npos);
    EXPECT_LT(everything().size(), 200000U);
    ASSERT_EQ(listOf(second).size(), 1U);
    EXPECT_EQ(listOf(second).front().id, other);
    EXPECT_EQ(second.problem(), "");
    for (const char* const none : {"", "1", "zzzzzzzz", "ffffffff"}) {
        second.forget(none);
        EXPECT_FALSE(openIn(second, none));
    }
}

TEST_F(SqliteWorkStoreTest, WhatStandsInTheWayIsToldOnceAndTheEditorGoesOn) {
    fs::create_directories(fs::path(path()).parent_path());
    const auto write = [&](const std::string& bytes) { test::writeText(path(), bytes); };
    const auto run = [&](const char* sql) {
        fs::remove(path());
        sqlite3* database = nullptr;
        sqlite3_open(path().c_str(), &database);
        sqlite3_exec(database, sql, nullptr, nullptr, nullptr);
        sqlite3_close(database);
    };
    struct Case {
        const char* name;
        std::function<void()> prepare;
        const char* reason;
        bool isSetAside;
    };
    const Case cases[] = {
        {"garbage", [&] { write(std::string(5000, 'g')); }, "it was damaged and is now ", true},
        {"a newer version",
         [&] {
             run("CREATE TABLE works(a); PRAGMA application_id=1264675949; PRAGMA user_version=2");
         },
         "a newer version has written it", false},
        {"somebody else's", [&] { run("CREATE TABLE notes(a)"); }, "it holds something else",
         false},
        {"a folder",
         [&] {
             fs::remove(path());
             fs::create_directory(path());
         },
         "unable to open", false},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(one.name);
        one.prepare();
        const std::string before = fs::is_directory(path()) ? "" : test::readText(path());
        std::vector<std::string> told;
        SqliteWorkStore& store = make();
        store.setOnProblem([&](const std::string& sentence) { told.push_back(sentence); });
        EXPECT_TRUE(listOf(store).empty());
        EXPECT_EQ(store.begin(startOf("a.png")), "");
        store.record("00000001", "step");
        ASSERT_EQ(told.size(), 1U);
        EXPECT_EQ(told.front().find(path() + ": " + one.reason), 0U) << told.front();
        EXPECT_EQ(fs::exists(path()), !one.isSetAside);
        const std::string after = one.isSetAside ? path() + ".damaged" : path();
        EXPECT_EQ(fs::is_directory(after) ? "" : test::readText(after), before);
        EXPECT_EQ(store.forgetSetAside(), one.isSetAside ? 1 : 0);
    }
    fs::remove_all(path());
    for (const std::string& nowhere : {std::string(), path() + "/below/works.sqlite"}) {
        test::writeText(path(), "");
        SqliteWorkStore store(nowhere);
        EXPECT_TRUE(listOf(store).empty());
        EXPECT_EQ(store.problem(), "");
        EXPECT_EQ(store.begin(startOf("a.png")), "");
        EXPECT_NE(store.problem(), "");
    }
}

TEST_F(SqliteWorkStoreTest, ALockedDatabaseAndAFullDiskEndTheRecordingAlone) {
    SqliteWorkStore& store = make();
    const std::string id = store.begin(startOf("a.png"));
    store.record(id, "kept");
    sqlite3* other = nullptr;
    sqlite3_open(path().c_str(), &other);
    sqlite3_exec(other, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr);
    store.record(id, "lost");
    EXPECT_NE(store.problem().find("locked"), std::string::npos);
    sqlite3_close(other);
    store.record(id, "would leave a gap");
    EXPECT_EQ(listOf(store).front().steps, 1U);

    SqliteWorkStore full(path());
    const std::string next = full.begin(startOf("b.png"));
    rlimit before{};
    ::getrlimit(RLIMIT_FSIZE, &before);
    rlimit small = before;
    small.rlim_cur = 100000;
    ::signal(SIGXFSZ, SIG_IGN);
    ::setrlimit(RLIMIT_FSIZE, &small);
    for (int number = 0; number < 200; ++number)
        full.record(next, stepText(499));
    ::setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_NE(full.problem(), "");
    EXPECT_GT(listOf(full).back().steps, 0U);
    // What was sent is removed all the same.
    full.end(next);
    store.end(id);
    EXPECT_TRUE(listOf(store).empty());
    EXPECT_EQ(everything().find("xxx"), std::string::npos);
}

// Tells the pipe of every step that was recorded; every tenth work is ended.
[[noreturn]] void recordForEver(const std::string& path, int pipe, char name) {
    for (int count = 0;; ++count) {
        SqliteWorkStore store(path);
        const std::string id = store.begin(startOf(std::string(1, name), 20000));
        for (int number = 0; number < 40; ++number) {
            store.record(id, stepText(number));
            if (!store.problem().empty()) std::fprintf(stderr, "%s\n", store.problem().c_str());
            const char told[2] = {name, static_cast<char>(number)};
            if (::write(pipe, told, 2) != 2) ::_exit(1);
        }
        store.end(id);
    }
}

TEST_F(SqliteWorkStoreTest, NoFinishedStepIsLostWhenTwoEditorsAreKilled) {
    std::mt19937 random(7);
    for (int round = 0; round < 12; ++round) {
        // They also meet where there is no database yet.
        if (round % 2 == 0) fs::remove_all(folder.path() / "state");
        int ends[2];
        ASSERT_EQ(::pipe(ends), 0);
        std::vector<pid_t> children;
        for (const char name : {'a', 'b'}) {
            children.push_back(::fork());
            if (children.back() == 0) recordForEver(path(), ends[1], name);
        }
        ::close(ends[1]);
        std::this_thread::sleep_for(std::chrono::milliseconds(random() % 60 + 1));
        for (const pid_t child : children)
            ::kill(child, SIGKILL);
        for (const pid_t child : children)
            ::waitpid(child, nullptr, 0);
        int steps[2] = {0, 0};
        for (char told[2]; ::read(ends[0], told, 2) == 2;)
            steps[told[0] - 'a'] = told[1] + 1;
        ::close(ends[0]);
        SqliteWorkStore& store = make();
        for (const ui::WorkSummary& summary : listOf(store)) {
            const auto work = openIn(store, summary.id);
            ASSERT_TRUE(work);
            EXPECT_EQ(work->bytes.size(), 20000U);
            for (std::size_t number = 0; number < work->steps.size(); ++number)
                EXPECT_EQ(work->steps[number], stepText(static_cast<int>(number)));
            int& told = steps[summary.picture[0] - 'a'];
            // A whole work may have been ended, and another be begun, before it was told.
            EXPECT_TRUE(told == 40 || static_cast<int>(work->steps.size()) >= told) << told;
            told = 40;
            store.end(summary.id);
        }
        for (const int told : steps)
            EXPECT_TRUE(told == 0 || told == 40) << "a work of " << told << " steps is gone";
        EXPECT_EQ(store.problem(), "");
    }
}

}  // namespace kalim::store
