#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "kalimkit/codec/Decode.h"
#include "tests/support/ProgramRun.h"

namespace kalim::test {

namespace {

class PlayCommand : public testing::Test {
protected:
    ProgramRun run(const std::vector<std::string>& arguments, const std::string& input = {},
                   OutputTo outputTo = OutputTo::Pipe) const {
        return runProgram(KALIM_COMMAND, arguments, folder.path(), input, outputTo);
    }
    ProgramRun play(const std::string& scenario) const { return run({"play", "-"}, scenario); }
    bool exists(const char* name) const { return std::filesystem::exists(folder.path() / name); }

    TemporaryFolder folder;
};

constexpr const char* box = R"({"make":"MDrawRect","points":[[10,10],[110,60]]})";

}  // namespace

TEST_F(PlayCommand, StopsAtABrokenLineAndKeepsWhatWasPrinted) {
    writeText(folder.path() / "steps.jsonl",
              "{\"call\":\"lineWidth\"}\r\n   \n\n{\"call\":\"fly\"}\n{\"call\":\"lineWidth\"}\n");
    const ProgramRun result = run({"play", "steps.jsonl"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.output, "{\"result\":7}\n");
    EXPECT_EQ(result.errors, "kalimkit: steps.jsonl:4: the canvas has no operation fly\n");
}

TEST_F(PlayCommand, ReadsStandardInput) {
    const ProgramRun good =
        run({"play", "--scale", "3", "--canvas", "100x50.5", "-"}, R"({"call":"canUndo"})");
    EXPECT_EQ(good.status, 0) << good.errors;
    EXPECT_EQ(good.output, "{\"result\":false}\n");
    EXPECT_EQ(play("{\"wait\":0}\n{").errors.rfind("kalimkit: standard input:2: broken JSON", 0),
              0U);
    EXPECT_EQ(play("").status, 0);
}

TEST_F(PlayCommand, RefusesWhatItCannotRead) {
    std::filesystem::create_directory(folder.path() / "folder");
    writeText(folder.path() / "text.png", "no picture");
    struct Case {
        std::vector<std::string> arguments;
        const char* complaint;
    };
    const Case cases[] = {
        {{"play", "lost.jsonl"}, "kalimkit: lost.jsonl: No such file or directory"},
        {{"play", "folder"}, "kalimkit: folder: Is a directory"},
        {{"play", "/dev/zero"}, "kalimkit: /dev/zero:1: the line is longer than 64 MiB"},
        {{"play", "a\x1B[2J.jsonl"}, "kalimkit: a\\x1B[2J.jsonl: No such file"},
        {{"play", "-", "--picture", "lost.png"}, "kalimkit: --picture: lost.png"},
        {{"play", "-", "--picture", "text.png"}, "kalimkit: --picture: text.png"},
        {{"play"}, "SCENARIO is required"},
        {{}, "kalimkit: which command?"},
        {{"paint", "-"}, "unknown command or option: paint"},
        {{"play", "-", "more"}, "more"},
        {{"play", "-", "--editors"}, "--editors"},
        {{"play", "-", "--canvas", "390"}, "--canvas: must be two sides from 1 to 32767"},
        {{"play", "-", "--canvas", "0x844"}, "not 0x844"},
        {{"play", "-", "--canvas", "nanx844"}, "not nanx844"},
        {{"play", "-", "--canvas", "390x1e99"}, "not 390x1e99"},
        {{"play", "-", "--canvas", "390x844x2"}, "not 390x844x2"},
        {{"play", "-", "--canvas", "20000x20000"}, "a side is longer than 32767 pixels"},
        {{"play", "-", "--scale", "big"}, "--scale: must be a number from 0.5 to 8, not big"},
        {{"play", "-", "--scale", "8.5"}, "not 8.5"},
        {{"play", "-", "--scale"}, "--scale"},
    };
    for (const Case& one : cases) {
        const ProgramRun result = run(one.arguments, "{\"print\":\"canvas\"}\n");
        EXPECT_EQ(result.status, 2) << one.complaint;
        EXPECT_EQ(result.output, "") << one.complaint;
        EXPECT_NE(result.errors.find(one.complaint), std::string::npos) << result.errors;
    }
}

TEST_F(PlayCommand, WritesPicturesByTheirExtensionAndNoOthers) {
    const std::string steps = std::string(box) + "\n{\"export\":\"NAME\"}\n";
    const auto exporting = [&](const std::string& name) {
        return play(std::string(steps).replace(steps.find("NAME"), 4, name));
    };
    for (const char* name : {"box.png", "box.JPG", "box.jpeg"}) {
        const ProgramRun result = exporting(name);
        EXPECT_EQ(result.status, 0) << result.errors;
        const auto picture = codec::decodeFile((folder.path() / name).string());
        ASSERT_FALSE(picture.error) << *picture.error;
        // The box and half its line, from the canvas's corner on, at two pixels per point.
        EXPECT_EQ(picture.bitmap.size(), (gfx::PixelSize{227, 127})) << name;
    }
    for (const char* name : {"box.gif", "png", "folder.png/box"}) {
        const ProgramRun result = exporting(name);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.errors, "kalimkit: standard input:2: " + std::string(name) +
                                     ": pictures are written as .png, .jpg, .jpeg or .webp\n");
        EXPECT_FALSE(exists(name));
    }
    const ProgramRun lost = exporting("nowhere/box.png");
    EXPECT_EQ(lost.status, 2);
    EXPECT_NE(lost.errors.find("nowhere/box.png"), std::string::npos) << lost.errors;
}

TEST_F(PlayCommand, SaysWhenItsOutputCannotBeWritten) {
    for (const OutputTo outputTo : {OutputTo::FullDevice, OutputTo::ClosedPipe}) {
        const ProgramRun result =
            run({"play", "-"}, "{\"print\":\"canvas\"}\n{\"wait\":\"\"}\n", outputTo);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.errors.rfind("kalimkit: standard output: ", 0), 0U) << result.errors;
        EXPECT_EQ(run({"--help"}, {}, outputTo).status, 2);
    }
}

TEST_F(PlayCommand, TellsItsOptionsAndItsVersion) {
    const ProgramRun help = run({"play", "--help"});
    EXPECT_EQ(help.status, 0);
    for (const char* option : {"--canvas", "--scale", "--picture", "SCENARIO"})
        EXPECT_NE(help.output.find(option), std::string::npos) << help.output;
    // No command asks for its picture first.
    for (const std::vector<std::string>& command : std::vector<std::vector<std::string>>{
             {}, {"play"}, {"edit"}, {"image"}, {"image", "fit"}}) {
        for (const char* question : {"--version", "--help"}) {
            std::vector<std::string> asked = command;
            asked.emplace_back(question);
            const ProgramRun answer = run(asked);
            EXPECT_EQ(answer.status, 0) << answer.errors;
            EXPECT_EQ(answer.output.rfind("kalimkit ", 0) == 0, question[2] == 'v')
                << answer.output;
        }
    }
}

}  // namespace kalim::test
