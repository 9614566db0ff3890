#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "kalimkit/store/SqliteWorkStore.h"
#include "tests/support/ProgramRun.h"

namespace kalim::test {

namespace {

namespace fs = std::filesystem;

class WorksCommand : public testing::Test {
protected:
    WorksCommand() { ::setenv("XDG_STATE_HOME", folder.path().c_str(), 1); }
    ~WorksCommand() override { ::unsetenv("XDG_STATE_HOME"); }
    ProgramRun works(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), "works");
        return runProgram(KALIM_COMMAND, arguments, folder.path());
    }

    TemporaryFolder folder;
};

}  // namespace

TEST_F(WorksCommand, ListsAndForgets) {
    EXPECT_EQ(works({"--json"}).output, "[]\n");
    EXPECT_EQ(works({}).output, "");
    EXPECT_EQ(works({"--forget", "all"}).status, 0);
    EXPECT_TRUE(fs::is_empty(folder.path()));
    std::vector<std::string> ids;
    store::SqliteWorkStore editor(store::SqliteWorkStore::usualPath());
    {
        store::SqliteWorkStore ended(store::SqliteWorkStore::usualPath());
        for (const char* const picture : {"a\n.png", "b.png"}) {
            ids.push_back(ended.begin({picture, "00ff", {1}, {}}));
            ended.record(ids.back(), "a step");
        }
    }
    ids.push_back(editor.begin({"c.png", "00ff", {1}, {}}));
    const std::string listed = works({"--json"}).output;
    EXPECT_EQ(listed.find(R"([{"id":")" + ids[0] +
                          R"(","picture":"a\n.png","sha256":"00ff","began":"20)"),
              0U)
        << listed;
    EXPECT_NE(listed.find(R"(Z","steps":1},{"id":")" + ids[1]), std::string::npos) << listed;
    const ProgramRun shown = works({});
    EXPECT_NE(shown.output.find("1 step   b.png\n"), std::string::npos) << shown.output;
    EXPECT_NE(shown.output.find("0 steps  c.png  (an editor is at it)\n"), std::string::npos);

    EXPECT_EQ(works({"--forget", ids[0]}).status, 0);
    EXPECT_EQ(works({"--forget", ids[0]}).errors,
              "kalimkit: there is no unfinished work " + ids[0] + "\n");
    EXPECT_EQ(works({"--forget", ids[2]}).errors,
              "kalimkit: an editor is at the work " + ids[2] + "\n");
    EXPECT_EQ(works({"--forget", ""}).status, 2);
    const ProgramRun all = works({"--forget", "all"});
    EXPECT_EQ(all.status, 0);
    EXPECT_EQ(all.errors, "kalimkit: works that an editor is at stay: 1\n");
    EXPECT_NE(works({}).output.find(ids[2]), std::string::npos);
    editor.end(ids[2]);
    EXPECT_EQ(works({"--json"}).output, "[]\n");
}

TEST_F(WorksCommand, TellsOfADatabaseThatIsDamagedAndForgetsThatToo) {
    fs::create_directory(folder.path() / "kalimkit");
    const fs::path path = store::SqliteWorkStore::usualPath();
    for (const bool isForgotten : {false, true}) {
        writeText(path, std::string(3000, 'g'));
        const ProgramRun run = isForgotten ? works({"--forget", "all"}) : works({"--json"});
        EXPECT_EQ(run.status, isForgotten ? 0 : 2);
        EXPECT_EQ(run.errors.empty(), isForgotten) << run.errors;
        EXPECT_EQ(fs::exists(path.string() + ".damaged"), !isForgotten);
    }
}

}  // namespace kalim::test
