#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/ProgramRun.h"

namespace kalim::test {

// Another program writes into a photo what must not get out, and what may.
TEST(MetadataOption, IsThatOfEveryCommandThatWritesPictures) {
    if (std::string(KALIM_EXIFTOOL).empty()) GTEST_SKIP() << "exiftool is not installed";
    const TemporaryFolder folder;
    const auto run = [&](const std::string& program, const std::vector<std::string>& arguments,
                         const std::string& input = {}) {
        const ProgramRun done = runProgram(program, arguments, folder.path(), input);
        EXPECT_EQ(done.status, 0) << arguments[0] << done.errors;
    };
    writeText(folder.path() / "in.jpg", readText(KALIM_ROOT "/docs/photos/rocket.jpg"));
    run(KALIM_EXIFTOOL, {"-q", "-overwrite_original", "-Make=Maker", "-Artist=SECRET",
                         "-GPSMapDatum=SECRET", "-XMP-dc:Title=SECRET", "in.jpg"});
    const std::string steps =
        R"({"make":"MDrawArrow","points":[[60,300],[200,400]],"color":"#FF3B30"})"
        "\n"
        R"({"saveDocument":"w.kalim"})"
        "\n";
    const std::vector<std::vector<std::string>> commands{
        {"play", "-", "--picture", "in.jpg"},
        {"render", "w.kalim", "-o", "out.jpg"},
        {"image", "turn", "in.jpg", "out.jpg"},
        {"image", "fit", "--size", "99x99", "in.jpg", "out.jpg"},
        {"redact", "in.jpg", "-o", "out.jpg", "--rect", "8,8,64,64"},
    };
    const std::string exports[] = {R"({"export":"out.jpg","at":"picture"})",
                                   R"({"export":"out.jpg"})"};
    for (const auto& command : commands) {
        for (const std::string& line : exports) {
            for (const std::string mode : {"", "safe", "keep", "none"}) {
                std::vector<std::string> arguments = command;
                if (!mode.empty()) {
                    arguments.push_back("--metadata");
                    arguments.push_back(mode);
                }
                run(KALIM_COMMAND, arguments, steps + line);
                const std::string result = readText(folder.path() / "out.jpg");
                SCOPED_TRACE(command[0] + " " + command[1] + " " + mode);
                EXPECT_EQ(result.find("SECRET") != std::string::npos, mode == "keep");
                EXPECT_EQ(result.find("Maker") != std::string::npos, mode != "none");
            }
            if (command[0] != "play") break;
        }
    }
}

}  // namespace kalim::test
