#include "kalimkit/host/sdl/UserDefaults.h"

#include <gtest/gtest.h>

#include "tests/support/ProgramRun.h"

namespace kalim::test {

TEST(UserDefaults, OutliveTheProcessAndLeaveOtherLinesAlone) {
    const TemporaryFolder folder;
    const auto path = folder.path() / "made" / "on the way" / "defaults";
    EXPECT_EQ(UserDefaults(path).value("ring"), std::nullopt);
    EXPECT_EQ(UserDefaults(path).setValue("ring", false), std::nullopt);
    EXPECT_EQ(readText(path), "ring=false\n");

    writeText(path, "later=a=b\nno sign\nodd=perhaps\nring=false");
    UserDefaults defaults(path);
    EXPECT_EQ(defaults.value("ring"), false);
    EXPECT_EQ(defaults.value("odd"), std::nullopt);
    // Another process writes while this one runs.
    writeText(path, "no sign\nring=false\nother=true\n");
    EXPECT_EQ(defaults.setValue("ring", true), std::nullopt);
    EXPECT_EQ(readText(path), "no sign\nring=true\nother=true\n");
}

TEST(UserDefaults, HoldWhereTheyCannotBeWritten) {
    const TemporaryFolder folder;
    writeText(folder.path() / "file", "");
    UserDefaults defaults(folder.path() / "file" / "defaults");
    EXPECT_NE(defaults.setValue("ring", false), std::nullopt);
    EXPECT_EQ(defaults.value("ring"), false);

    const std::string longText(2 << 20, 'x');
    writeText(folder.path() / "long", longText);
    UserDefaults unread(folder.path() / "long");
    EXPECT_NE(unread.setValue("ring", false), std::nullopt);
    EXPECT_EQ(unread.value("ring"), false);
    EXPECT_EQ(readText(folder.path() / "long"), longText);
}

}  // namespace kalim::test
