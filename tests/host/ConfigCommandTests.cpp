#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/ProgramRun.h"

namespace kalim::test {

TEST(ConfigCommand, NamesFileLineAndKeyOfWhatIsWrong) {
    const TemporaryFolder folder;
    struct Case {
        const char* text;
        // Empty where nothing is.
        const char* complaint;
    };
    const Case cases[] = {
        {"theme = \"dark\"\nwidths = [2, 7.5]\ncopy = true\nactions-on-enter = [\"exit\"]\n", ""},
        {"theme = \"dark\"\ncolour = \"#FF0000\"\n",
         "c.toml:2: colour: there is no such key; did you mean color?"},
        {"zzz = 1", "c.toml:1: zzz: there is no such key; kalimkit config --show lists them"},
        {"\nwidth = 400", "c.toml:2: width: must be a number of points from 1 to 100, not 400"},
        {"pens = [\"arrow\", \"txt\"]", "c.toml:1: pens: must be freehand, line, arrow"},
        {"colors = []", "c.toml:1: colors: must name at least a colour"},
        {"early-exit = 1", "c.toml:1: early-exit: must be true or false, not 1"},
        {"quality = 90.5", "c.toml:1: quality: must be a whole number from 1 to 100, not 90.5"},
        {"actions-on-escape = \"save\"", "must be save-to-file, save-to-clipboard or exit"},
        {"scale = { x = 1 }", "c.toml:1: scale: must be a text, a number, true or false"},
        {"theme = \"dark", "c.toml:1: "},
    };
    for (const Case& one : cases) {
        writeText(folder.path() / "c.toml", one.text);
        const ProgramRun run =
            runProgram(KALIM_COMMAND, {"config", "--check", "c.toml"}, folder.path());
        EXPECT_EQ(run.status, *one.complaint ? 2 : 0) << one.text << run.errors;
        EXPECT_NE(run.errors.find(one.complaint), std::string::npos) << run.errors;
    }
    writeText(folder.path() / "c.toml", cases[0].text);
    const ProgramRun shown =
        runProgram(KALIM_COMMAND, {"config", "--show", "c.toml"}, folder.path());
    EXPECT_NE(shown.output.find("\nwidths = [ 2, 7.5 ]\n"), std::string::npos);
    EXPECT_NE(shown.output.find("\n# grow = false\n"), std::string::npos);
    // What it shows can be read again, the examples as well.
    std::string all = shown.output;
    for (std::size_t at = all.find("\n# "); at != std::string::npos;
         at = all.find("\n# ", at + 1)) {
        const std::string line = all.substr(at + 3, all.find('\n', at + 1) - at - 3);
        if (line.find(" = ") != std::string::npos && line.find(' ') == line.find(" = "))
            all.erase(at + 1, 2);
    }
    writeText(folder.path() / "all.toml", all);
    const ProgramRun again =
        runProgram(KALIM_COMMAND, {"config", "--check", "all.toml"}, folder.path());
    EXPECT_EQ(again.status, 0) << again.errors;
}

TEST(ConfigCommand, WordsAreReadAsPeopleWriteThem) {
    const TemporaryFolder folder;
    const std::string photo = KALIM_ROOT "/docs/photos/coffee.png";
    writeText(folder.path() / "info", "a file called like a command");
    writeText(folder.path() / "note.txt", "no picture");
    const std::pair<std::vector<std::string>, const char*> refused[] = {
        {{"lost.png"}, "kalimkit: lost.png: No such file or directory"},
        {{"note.txt"}, "kalimkit: note.txt: not a picture"},
        {{"-o", "x.png", "lost.png"}, "unknown command or option: -o"},
        {{"info"}, "info is a command; the file of that name is opened by kalimkit edit info"},
        {{"image", "turn", photo, "o.png", "--quality", "0"}, "from 1 to 100, not 0"},
        {{"edit", photo, "--actions-on-enter", "jump"}, "save-to-file, save-to-clipboard or exit"},
    };
    for (const auto& [words, complaint] : refused) {
        const ProgramRun run = runProgram(KALIM_COMMAND, words, folder.path());
        EXPECT_EQ(run.status, 2) << complaint;
        EXPECT_NE(run.errors.find(complaint), std::string::npos) << run.errors;
    }
    // Through pipes, into a name made of the time, and in another quality.
    const ProgramRun piped = runProgram(
        KALIM_COMMAND, {"image", "crop", "--rect", "0,0,60,40", photo, "-"}, folder.path());
    const ProgramRun turned =
        runProgram(KALIM_COMMAND, {"image", "turn", "-", "-"}, folder.path(), piped.output);
    EXPECT_EQ(turned.output.substr(1, 3), "PNG") << turned.errors;
    writeText(folder.path() / "piped.png", piped.output);
    const ProgramRun named =
        runProgram(KALIM_COMMAND, {"redact", "--rect", "0,0,9,9", "piped.png", "-o", "%Y%%.jpg"},
                   folder.path());
    EXPECT_EQ(named.status, 0) << named.errors;
    const ProgramRun coarse = runProgram(
        KALIM_COMMAND, {"image", "turn", "--quality", "10", photo, "coarse.jpg"}, folder.path());
    EXPECT_EQ(coarse.status, 0) << coarse.errors;
    std::size_t namedByTime = 0;
    for (const auto& file : std::filesystem::directory_iterator(folder.path()))
        namedByTime +=
            file.path().extension() == ".jpg" && file.path().stem().string().ends_with("%");
    EXPECT_EQ(namedByTime, 1U);
    EXPECT_LT(readText(folder.path() / "coarse.jpg").size(), 30000U);
}

}  // namespace kalim::test
