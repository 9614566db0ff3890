#include "kalimkit/theme/HexColor.h"

#include <gtest/gtest.h>

namespace kalim {

TEST(HexColor, NumbersCountFromTheirLowestThreeBytes) {
    const gfx::Color red{246 / 255.0, 52 / 255.0, 52 / 255.0, 1};
    EXPECT_EQ(*colorWithHex2(0xF63434), red);
    EXPECT_EQ(*colorWithHex2(0x1F63434), red);
    EXPECT_EQ(*colorWithHex2Alpha(0xF63434, 0.25), red.withAlpha(0.25));
    EXPECT_NE(colorWithHex2(0xF63434), colorWithHex2(0xF63434)) << "each is an object of its own";
}

TEST(HexColor, TextsAreReadAsTheyAreWritten) {
    // An empty result stands for the clear colour.
    const struct {
        const char* text;
        const char* hex;
    } cases[] = {
        {"F63434", "#F63434FF"},
        {"#F63434", "#F63434FF"},
        {"0XF63434", "#F63434FF"},
        {"  0x1aa9ff\n", "#1AA9FFFF"},
        {"\u3000\u00a01aa9ff\u2028", "#1AA9FFFF"},
        {"0x#1aa9ff", "#1AA9FFFF"},
        {"ZZ1aFG", "#001A00FF"},
        {"éé12éé", "#001200FF"},
        {"#0x1aa9ff", ""},
        {"", ""},
        {"12345", ""},
        {"#12345", ""},
        {"0x1234", ""},
        {"#FFF", ""},
        {"F63434FF", ""},
        {"12 345", "#120045FF"},
    };
    for (const auto& [text, hex] : cases) {
        EXPECT_EQ(colorWithHexString(text)->hex(), *hex ? hex : "#00000000") << text;
    }
    EXPECT_EQ(colorWithHexStringAlpha("1d1d1d", 0.85)->alpha, 0.85);
    EXPECT_EQ(colorWithHexStringAlpha("1d1d", 0.85)->alpha, 0);
}

}  // namespace kalim
