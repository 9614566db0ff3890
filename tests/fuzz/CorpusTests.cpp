#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include "fuzz/Fuzzing.h"
#include "tests/support/ProgramRun.h"

namespace kalim::test {

// The fuzzer itself takes another compiler; what it has found is borne everywhere.
TEST(Corpus, IsBorneByEveryTarget) {
    EXPECT_FALSE(fuzz::targets().empty());
    for (const fuzz::NamedTarget& one : fuzz::targets()) {
        int inputCount = 0;
        const std::filesystem::path folder = std::filesystem::path(KALIM_CORPORA) / one.name;
        for (const auto& file : std::filesystem::directory_iterator(folder)) {
            SCOPED_TRACE(file.path().string());
            const std::string input = readText(file.path());
            const auto* const bytes = reinterpret_cast<const std::uint8_t*>(input.data());
            one.target({bytes, input.size()});
            // What breaks off in the middle.
            one.target({bytes, input.size() / 2});
            ++inputCount;
        }
        EXPECT_GT(inputCount, 0) << one.name;
    }
}

}  // namespace kalim::test
