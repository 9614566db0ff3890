#include "kalimkit/gfx/Version.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace {

TEST(Version, TextAndNumberAreThoseOfTheProject) {
    const std::string text(reinterpret_cast<const char*>(KalimKitDylibFrameworkVersionString));
    EXPECT_EQ(text, KALIM_PROJECT_VERSION);
    EXPECT_EQ(KalimKitDylibFrameworkVersionNumber, std::strtod(text.c_str(), nullptr));
    EXPECT_GT(KalimKitDylibFrameworkVersionNumber, 0);
}

}  // namespace
