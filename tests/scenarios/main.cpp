// Plays every scenario of this folder with the kalimkit command and holds what it prints, and the
// picture it exports, against what is written down:
//
//     NAME.jsonl                      the scenario; it finds the sample photos in photos/,
//                                     documents of earlier versions in documents/
//     NAME.options                    options for the command, where it needs any
//     NAME.expected                   what each printed line must hold, see JsonMatch.h
//     ../golden/cairo/NAME.png        the picture NAME.png that it exports, where it is compared
//
// With KALIM_DRAFT=FOLDER in the environment nothing is compared: what each scenario prints and
// exports is left in FOLDER, to be checked by hand before it is taken over.

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "kalimkit/codec/Decode.h"
#include "tests/scenarios/JsonMatch.h"
#include "tests/support/PictureComparison.h"
#include "tests/support/ProgramRun.h"

namespace kalim::test {

namespace {

namespace fs = std::filesystem;

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

std::vector<std::string> wordsOf(const std::string& text) {
    std::vector<std::string> words;
    std::istringstream stream(text);
    for (std::string word; stream >> word;)
        words.push_back(word);
    return words;
}

class ScenarioTest : public testing::Test {
public:
    explicit ScenarioTest(fs::path scenario) : _scenario(std::move(scenario)) {}

    void TestBody() override {
        fs::create_directory_symlink(KALIM_PHOTOS, _folder.path() / "photos");
        fs::create_directory_symlink(KALIM_DOCUMENTS, _folder.path() / "documents");
        std::vector<std::string> arguments{"play", _scenario.string()};
        for (const std::string& word : wordsOf(readText(beside(".options"))))
            arguments.push_back(word);
        const ProgramRun run = runProgram(KALIM_COMMAND, arguments, _folder.path());
        ASSERT_EQ(run.status, 0) << run.errors;
        EXPECT_EQ(run.errors, "");
        if (const char* drafts = std::getenv("KALIM_DRAFT")) {
            leaveDraft(drafts, run.output);
            GTEST_SKIP() << "written to " << drafts << ", nothing compared";
        }
        comparePrints(run.output);
        comparePicture();
        if (HasFailure()) {
            _folder.keep();
            std::cout << "What it exported is in " << _folder.path() << "\n";
        }
    }

private:
    fs::path beside(const char* extension) const {
        return fs::path(_scenario).replace_extension(extension);
    }
    std::string pictureName() const { return _scenario.stem().string() + ".png"; }

    void comparePrints(const std::string& output) const {
        const std::vector<std::string> printed = linesOf(output);
        ASSERT_TRUE(fs::exists(beside(".expected"))) << "nothing is written down to expect";
        const std::vector<std::string> expected = linesOf(readText(beside(".expected")));
        EXPECT_EQ(printed.size(), expected.size()) << output;
        for (std::size_t index = 0; index < std::min(printed.size(), expected.size()); ++index) {
            EXPECT_EQ(differenceOfJson(expected[index], printed[index]), "")
                << "in line " << index + 1 << " of what it prints:\n"
                << printed[index];
        }
    }

    void comparePicture() const {
        const fs::path golden = fs::path(KALIM_GOLDEN) / pictureName();
        if (!fs::exists(golden)) return;
        const auto expected = codec::decodeFile(golden.string());
        const auto actual = codec::decodeFile((_folder.path() / pictureName()).string());
        ASSERT_FALSE(expected.error) << *expected.error;
        ASSERT_FALSE(actual.error) << *actual.error;
        const PictureComparison comparison = comparePictures(expected.bitmap, actual.bitmap);
        EXPECT_TRUE(comparison.matches()) << comparison.message;
    }

    void leaveDraft(const fs::path& folder, const std::string& output) const {
        fs::create_directories(folder);
        writeText(folder / beside(".expected").filename(), output);
        const fs::path picture = _folder.path() / pictureName();
        if (!fs::exists(picture)) return;
        fs::copy_file(picture, folder / pictureName(), fs::copy_options::overwrite_existing);
    }

    fs::path _scenario;
    TemporaryFolder _folder;
};

// draw-and-pick becomes DrawAndPick: a hyphen means something to --gtest_filter.
std::string testName(const std::string& fileName) {
    std::string name;
    bool isFirst = true;
    for (const char letter : fileName) {
        if (letter == '-') {
            isFirst = true;
        } else {
            name += isFirst ? static_cast<char>(std::toupper(letter)) : letter;
            isFirst = false;
        }
    }
    return name;
}

void registerScenarios() {
    std::vector<fs::path> scenarios;
    for (const fs::directory_entry& entry : fs::directory_iterator(KALIM_SCENARIOS)) {
        if (entry.path().extension() == ".jsonl") scenarios.push_back(entry.path());
    }
    std::ranges::sort(scenarios);
    for (const fs::path& scenario : scenarios) {
        testing::RegisterTest(
            "Scenario", (testName(scenario.stem().string()) + "GoesAsWrittenDown").c_str(), nullptr,
            nullptr, __FILE__, __LINE__,
            [scenario]() -> testing::Test* { return new ScenarioTest(scenario); });
    }
}

}  // namespace

}  // namespace kalim::test

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    // The same fonts whatever else is installed.
    ::setenv("FONTCONFIG_FILE", KALIM_FONTS, 0);
    kalim::test::registerScenarios();
    return RUN_ALL_TESTS();
}
