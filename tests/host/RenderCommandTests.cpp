#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "kalimkit/codec/Decode.h"
#include "tests/support/ProgramRun.h"

namespace kalim::test {

namespace {

namespace fs = std::filesystem;

constexpr const char* steps =
    R"({"make":"MDrawArrow","points":[[60,300],[200,400]],"color":"#FF3B30"})"
    "\n"
    R"({"make":"MDrawText","points":[[60,450],[200,500]],"text":"你好"})"
    "\n"
    R"({"make":"MDrawMosiac","points":[[100,400],[180,470]]})"
    "\n"
    R"({"make":"MDrawRect","points":[[300,500],[450,580]]})"
    "\n";

class RenderCommand : public testing::Test {
protected:
    RenderCommand() {
        // 600 x 400.
        const std::string photo = KALIM_ROOT "/docs/photos/coffee.png";
        const ProgramRun saved =
            runProgram(KALIM_COMMAND, {"play", "-", "--picture", photo}, folder.path(),
                       std::string(steps) + R"({"export":"export.png","at":"picture"})"
                                            "\n"
                                            R"({"saveDocument":"w.kalim"})"
                                            "\n"
                                            R"({"saveDocument":"s.kalim","sealed":true})");
        EXPECT_EQ(saved.status, 0) << saved.errors;
    }

    ProgramRun run(const std::vector<std::string>& arguments, const std::string& input = {}) const {
        return runProgram(KALIM_COMMAND, arguments, folder.path(), input);
    }
    std::string text(const char* name) const { return readText(folder.path() / name); }
    bool exists(const char* name) const { return fs::exists(folder.path() / name); }
    gfx::PixelSize sizeOf(const char* name) const {
        return codec::decodeFile((folder.path() / name).string()).bitmap.size();
    }

    TemporaryFolder folder;
};

}  // namespace

TEST_F(RenderCommand, MakesThePictureThatTheFirstCanvasExported) {
    EXPECT_EQ(run({"render", "w.kalim"}).status, 0);
    EXPECT_EQ(text("w.png"), text("export.png"));
    EXPECT_EQ(run({"render", "-"}, text("w.kalim")).output, text("export.png"));
    // What is burnt in and what was drawn over it look as before; the lines beyond the edge, too.
    EXPECT_EQ(run({"render", "s.kalim", "-o", "s.jpg"}).status, 0);
    EXPECT_EQ(sizeOf("s.jpg"), sizeOf("export.png"));
    EXPECT_EQ(text("s.jpg").substr(0, 2), "\xFF\xD8");
    // From the picture's upper edge, at 292 points, to the line's outer one, at 583.5.
    EXPECT_EQ(run({"render", "w.kalim", "--screen-size", "-o", "points.png"}).status, 0);
    EXPECT_EQ(sizeOf("points.png").height, 292);
    EXPECT_EQ(run({"render", "w.kalim", "--max-side", "100", "-f", "webp"}).status, 0);
    EXPECT_EQ(sizeOf("w.webp").width, 100);
    EXPECT_EQ(run({"render", "w.kalim", "--max-side", "9999", "-o", "large.png"}).status, 0);
    EXPECT_EQ(text("large.png"), text("export.png"));
}

TEST_F(RenderCommand, TheSamePictureComesOfEveryView) {
    const std::string step = R"({"export":"again.png","at":"picture"})";
    for (const std::vector<std::string>& screen :
         std::vector<std::vector<std::string>>{{"--canvas", "320x568", "--scale", "1"},
                                               {"--canvas", "1280x800", "--editor"},
                                               {"--scale", "3", "--editor", "--forgiving"}}) {
        std::vector<std::string> arguments{"play", "-", "--picture", "w.kalim"};
        arguments.insert(arguments.end(), screen.begin(), screen.end());
        const ProgramRun done = run(arguments, step);
        EXPECT_EQ(done.status, 0) << done.errors;
        EXPECT_EQ(text("again.png"), text("export.png")) << screen.back();
        fs::remove(folder.path() / "again.png");
    }
}

TEST_F(RenderCommand, GoesOnAfterWhatFails) {
    fs::create_directory(folder.path() / "out");
    fs::create_directory(folder.path() / "b");
    fs::copy_file(folder.path() / "s.kalim", folder.path() / "b" / "w.kalim");
    writeText(folder.path() / "bad.kalim", "{\"format\":1}");
    const ProgramRun done = run({"render", "w.kalim", "bad.kalim", "b/w.kalim", "lost.kalim",
                                 "export.png", "s.kalim", "--out-dir", "out", "--json", "-j2"});
    EXPECT_EQ(done.status, 2);
    for (const char* line :
         {R"({"file":"w.kalim","output":"out/w.png"})",
          R"({"file":"s.kalim","output":"out/s.png"})",
          R"({"file":"bad.kalim","error":"bad.kalim: format)",
          R"({"file":"b/w.kalim","error":"b/w.kalim: out/w.png is the picture of)",
          R"({"file":"lost.kalim","error":"lost.kalim: No such file)",
          R"({"file":"export.png","error":"export.png: this is a picture)"}) {
        EXPECT_NE(done.output.find(line), std::string::npos) << done.output;
    }
    EXPECT_EQ(text("out/w.png"), text("export.png"));
    EXPECT_NE(done.errors.find("kalimkit: bad.kalim: format"), std::string::npos) << done.errors;
    struct Case {
        std::vector<std::string> arguments;
        const char* complaint;
    };
    const Case cases[] = {
        {{"w.kalim", "s.kalim", "-o", "two.png"}, "-o names one picture"},
        {{"w.kalim", "-o", "w.kalim"}, "w.kalim is a file to be rendered"},
        {{"w.kalim", "--out-dir", "nowhere"}, "nowhere: there is no such folder"},
        {{"w.kalim", "-o", "-", "--json"}, "--json and the picture"},
        {{"w.kalim", "--max-side", "0"}, "--max-side"},
        {{"w.kalim", "-f", "gif"}, "must be png, jpeg or webp"},
    };
    for (const Case& wrong : cases) {
        std::vector<std::string> arguments = wrong.arguments;
        arguments.insert(arguments.begin(), "render");
        const ProgramRun refused = run(arguments);
        EXPECT_EQ(refused.status, 2) << wrong.complaint;
        EXPECT_NE(refused.errors.find(wrong.complaint), std::string::npos) << refused.errors;
    }
    EXPECT_FALSE(exists("two.png"));
}

// One process reads from a pipe that nobody fills until it is killed.
TEST_F(RenderCommand, LosesOnlyTheFileOfAProcessThatIsKilled) {
    const ProgramRun done =
        runProgram("/bin/bash",
                   {"-c",
                    "mkfifo slow.kalim; \"$0\" render slow.kalim w.kalim s.kalim -j2 --json & "
                    "until [[ -s w.png && -s s.png ]]; do sleep 0.05; done; "
                    "kill -KILL $(pgrep -P $!); wait $!",
                    KALIM_COMMAND},
                   folder.path());
    EXPECT_EQ(done.status, 2);
    EXPECT_NE(
        done.output.find(R"("error":"slow.kalim: the process that worked on it was ended: K)"),
        std::string::npos)
        << done.output << done.errors;
    EXPECT_EQ(text("w.png"), text("export.png"));
}

TEST_F(RenderCommand, PassesOverWhatIsDone) {
    EXPECT_EQ(run({"render", "w.kalim", "s.kalim"}).status, 0);
    const auto before = fs::last_write_time(folder.path() / "w.png");
    fs::last_write_time(folder.path() / "s.png", before - std::chrono::hours(1));
    const ProgramRun again = run({"render", "w.kalim", "s.kalim", "--update", "--json"});
    EXPECT_EQ(again.status, 0);
    EXPECT_EQ(fs::last_write_time(folder.path() / "w.png"), before);
    EXPECT_GT(fs::last_write_time(folder.path() / "s.png"), before);
}

TEST_F(RenderCommand, InfoDescribesADocument) {
    const std::string described = run({"info", "w.kalim"}).output;
    for (const char* part :
         {R"({"kind":"document","mediaType":"image/png","size":[600,400],"orientation":1,)",
          R"("tools":[{"class":"MDrawArrow","text":null,"measureText":null},)",
          R"({"class":"MDrawText","text":"你好",)",
          R"("crop":null,"quarterTurns":0,"sealed":false})"})
        EXPECT_NE(described.find(part), std::string::npos) << described;
    const std::string sealed = run({"info", "s.kalim"}).output;
    EXPECT_NE(sealed.find(R"("sealed":true)"), std::string::npos) << sealed;
    EXPECT_EQ(sealed.find("MDrawMosiac"), std::string::npos) << sealed;
}

}  // namespace kalim::test
