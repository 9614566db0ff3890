#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <iterator>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "kalimkit/codec/Decode.h"
#include "tests/support/ProgramRun.h"

namespace kalim::test {

namespace {

namespace fs = std::filesystem;
using std::chrono::duration;
using std::chrono::steady_clock;

pid_t begin(std::vector<std::string> arguments, const fs::path& folder) {
    std::vector<char*> words;
    arguments.insert(arguments.begin(), KALIM_COMMAND);
    for (std::string& word : arguments)
        words.push_back(word.data());
    words.push_back(nullptr);
    const pid_t process = ::fork();
    if (process != 0) return process;
    // A group of its own, which its helpers are in, too.
    ::setpgid(0, 0);
    if (::chdir(folder.c_str()) != 0) ::_exit(126);
    ::execv(KALIM_COMMAND, words.data());
    ::_exit(127);
}

// Whether somebody of the group lives; what is dead and not yet taken away by the system does not.
bool hasLivingMember(pid_t group) {
    for (const fs::directory_entry& entry : fs::directory_iterator("/proc")) {
        const std::string name = entry.path().filename().string();
        if (name.find_first_not_of("0123456789") != std::string::npos) continue;
        // It may be gone at any moment. The names here have no blanks.
        std::FILE* const file = std::fopen((entry.path() / "stat").c_str(), "r");
        if (file == nullptr) continue;
        char state = 0;
        int parent = 0;
        int found = 0;
        const int count = std::fscanf(file, "%*d %*s %c %d %d", &state, &parent, &found);
        std::fclose(file);
        if (count == 3 && found == group && state != 'Z') return true;
    }
    return false;
}

bool goesAway(pid_t group) {
    for (int i = 0; i < 300; ++i, std::this_thread::sleep_for(duration<double>(0.01))) {
        if (!hasLivingMember(group)) return true;
    }
    return false;
}

}  // namespace

TEST(EndedCommand, LeavesTheOldOrTheNewFileAndNothingElse) {
    const TemporaryFolder folder;
    const std::string photo = KALIM_ROOT "/docs/photos/coffee.png";
    const std::vector<std::string> arguments{"image",     "fit", "--size", "1200x1200",
                                             "--enlarge", photo, "out.png"};
    const auto begun = steady_clock::now();
    ::waitpid(begin(arguments, folder.path()), nullptr, 0);
    const double whole = duration<double>(steady_clock::now() - begun).count();
    const std::string result = readText(folder.path() / "out.png");
    ASSERT_GT(result.size(), 1000U);
    std::mt19937 random(16);
    constexpr int times = 20;
    int ended = 0;
    for (int i = 0; i < times; ++i) {
        writeText(folder.path() / "out.png", "old");
        const pid_t process = begin(arguments, folder.path());
        std::this_thread::sleep_for(
            duration<double>(whole * std::uniform_real_distribution<>(0.05, 1.1)(random)));
        const int signals[] = {SIGTERM, SIGINT, SIGHUP};
        ::kill(process, signals[i % 3]);
        int status = 0;
        ::waitpid(process, &status, 0);
        ended += WIFSIGNALED(status) ? 1 : 0;
        EXPECT_TRUE(goesAway(process));
        const std::string left = readText(folder.path() / "out.png");
        EXPECT_TRUE(left == result || (left == "old" && WIFSIGNALED(status))) << left.size();
        EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), fs::directory_iterator()),
                  1);
    }
    EXPECT_GT(ended, times / 3);
}

}  // namespace kalim::test
