// Plays scenarios that nobody has thought of and checks after every step that the undo does as it
// should and that the screen shows what a full redraw shows. What fails is shrunk and left as a
// scenario.
//
//     tests-random [--seeds N] [--steps N] [--first SEED] [--forgiving yes|no]
//     tests-random --replay FILE --first SEED     a scenario, on what that seed is played on
//
// Every seed is played on a canvas that is not forgiving and on one that is; --forgiving says on
// which alone.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>

#include "kalimkit/backend/cairo/CairoDevice.h"
#include "kalimkit/codec/Encode.h"
#include "kalimkit/codec/Files.h"
#include "tests/random/ScenarioDriver.h"
#include "tests/random/ScenarioRun.h"
#include "tests/support/ProgramRun.h"

namespace kalim::test {

namespace {

namespace fs = std::filesystem;

struct Options {
    std::uint32_t seeds = 20;
    std::uint32_t steps = 200;
    std::uint32_t first = 1;
    std::string replay;
    std::string forgiving;

    bool wants(bool isForgiving) const {
        return forgiving.empty() || isForgiving == (forgiving == "yes");
    }
};

Options options;

// The folder that a failing seed's scenario is left in. A scenario is there already while it is
// played, so that a crash leaves it, too.
class RandomSteps : public testing::Test {
protected:
    void play(bool isForgiving) {
        if (!options.wants(isForgiving)) GTEST_SKIP();
        if (!options.replay.empty()) return replay(Setting::ofSeed(options.first, isForgiving));
        for (std::uint32_t seed = options.first; seed < options.first + options.seeds; ++seed)
            playSeed(seed, Setting::ofSeed(seed, isForgiving));
    }

    static void replay(const Setting& setting) {
        ScenarioRun run(setting);
        std::istringstream lines(readText(options.replay));
        for (std::string line; std::getline(lines, line) && !run.fault();)
            EXPECT_TRUE(run.play(line)) << line;
        run.finish();
        EXPECT_FALSE(run.fault()) << *run.fault();
    }

    void playSeed(std::uint32_t seed, const Setting& setting) {
        const fs::path file = _folder.path() / ("seed-" + std::to_string(seed) + ".jsonl");
        Lines lines;
        std::string fault;
        {
            std::ofstream out(file);
            ScenarioRun run(setting);
            ScenarioDriver driver(run.canvas(), seed);
            while (lines.size() < options.steps && !run.fault()) {
                lines.push_back(driver.nextLine());
                out << lines.back() << std::endl;
                run.play(lines.back());
            }
            run.finish();
            lines = run.played();
            fault = run.fault().value_or("");
        }
        if (!fault.empty()) leave(file, setting, seed, shrink(setting, lines, fault));
    }

    void leave(const fs::path& file, const Setting& setting, std::uint32_t seed,
               const Shrunk& shrunk) {
        _folder.keep();
        std::string text;
        for (const std::string& line : shrunk.lines)
            text += line + "\n";
        writeText(file, text);
        writePicture();
        std::ostringstream screen;
        screen << " --canvas " << setting.screen.canvas.width << "x" << setting.screen.canvas.height
               << " --scale " << setting.screen.scale;
        if (setting.hasPicture) screen << " --picture picture.png";
        if (setting.screen.forgiving) screen << " --forgiving";
        ADD_FAILURE() << "seed " << seed << ": " << shrunk.fault << "\n"
                      << text << "cd " << _folder.path().string() << " && kalimkit play "
                      << file.filename().string() << screen.str() << "\ntests-random --replay "
                      << file.string() << " --first " << seed << " --forgiving "
                      << (setting.screen.forgiving ? "yes" : "no");
    }

    void writePicture() const {
        codec::Bytes bytes;
        ASSERT_FALSE(codec::encodePng(samplePicture(), bytes));
        ASSERT_FALSE(codec::writeFileAtomically((_folder.path() / "picture.png").string(), bytes));
    }

    // What the font libraries keep for the process would be reported as leaked.
    static void TearDownTestSuite() { gfx::CairoDevice::releaseFontCaches(); }

    TemporaryFolder _folder;
};

TEST_F(RandomSteps, LeaveTheCanvasAndItsUndoInOrder) {
    play(false);
}

TEST_F(RandomSteps, LeaveAForgivingCanvasAndItsUndoInOrder) {
    play(true);
}

bool readOption(const std::string& name, const std::string& value) {
    if (name == "--replay") {
        options.replay = value;
        return true;
    }
    if (name == "--forgiving") {
        options.forgiving = value;
        return value == "yes" || value == "no";
    }
    std::uint32_t* const number = name == "--seeds"   ? &options.seeds
                                  : name == "--steps" ? &options.steps
                                  : name == "--first" ? &options.first
                                                      : nullptr;
    if (!number) return false;
    *number = static_cast<std::uint32_t>(std::strtoul(value.c_str(), nullptr, 10));
    return true;
}

}  // namespace

}  // namespace kalim::test

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    for (int index = 1; index < argc; index += 2) {
        if (index + 1 < argc && kalim::test::readOption(argv[index], argv[index + 1])) continue;
        std::cerr << "tests-random: what is " << argv[index] << "?\n";
        return 2;
    }
    return RUN_ALL_TESTS();
}
