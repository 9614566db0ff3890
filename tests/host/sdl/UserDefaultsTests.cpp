#include "kalimkit/host/sdl/UserDefaults.h"

#include <gtest/gtest.h>

#include "kalimkit/theme/EnglishTexts.h"
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

TEST(EnglishTexts, AreForLanguagesThatAreNamedAndNotChinese) {
    for (const char* locale : {"en_US.UTF-8", "de-DE", "fr", "en@quot"})
        EXPECT_TRUE(prefersEnglishTexts(locale)) << locale;
    for (const char* locale : {"", "C", "C.UTF-8", "POSIX", "zh_CN.UTF-8", "zh-Hant", "zh"})
        EXPECT_FALSE(prefersEnglishTexts(locale)) << locale;
    EXPECT_EQ(englishText("继续标注"), "Keep Editing");
    EXPECT_EQ(englishText("μm"), "μm");
}

}  // namespace kalim::test
