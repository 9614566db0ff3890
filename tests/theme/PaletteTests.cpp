#include "kalimkit/theme/Palette.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/TestHost.h"

namespace kalim {

namespace {

struct Pair {
    gfx::Color Palette::*shown;
    std::vector<gfx::Color Palette::*> grounds;
};

const std::vector<Pair> texts{
    {&Palette::text,
     {&Palette::window, &Palette::bar, &Palette::raised, &Palette::hovered, &Palette::pressed}},
    {&Palette::secondaryText,
     {&Palette::window, &Palette::bar, &Palette::raised, &Palette::hovered, &Palette::pressed}},
    {&Palette::disabledText, {&Palette::bar, &Palette::raised}},
    {&Palette::chosenText, {&Palette::chosen}},
    {&Palette::accentText, {&Palette::accent}},
    {&Palette::tipText, {&Palette::tip}},
    {&Palette::danger, {&Palette::bar, &Palette::raised, &Palette::hovered}},
};

const std::vector<Pair> lines{
    {&Palette::track, {&Palette::bar, &Palette::raised}},
    {&Palette::focus, {&Palette::window, &Palette::bar, &Palette::raised}},
    {&Palette::accent, {&Palette::bar, &Palette::raised}},
};

void expectContrast(const Palette& palette, const std::vector<Pair>& pairs, double least) {
    for (const Pair& pair : pairs) {
        for (gfx::Color Palette::*const ground : pair.grounds) {
            EXPECT_GE(contrastRatio(palette.*pair.shown, palette.*ground), least)
                << (palette.*pair.shown).hex() << " on " << (palette.*ground).hex();
        }
    }
}

}  // namespace

TEST(Palette, StandsOutFromItsGrounds) {
    // 21 for black on white; 4.54 for this grey, as the guidelines' own examples have it.
    EXPECT_DOUBLE_EQ(contrastRatio({0, 0, 0}, {1, 1, 1}), 21);
    EXPECT_NEAR(contrastRatio(*gfx::Color::fromHex("#767676"), {1, 1, 1}), 4.54, 0.005);
    for (const bool isDark : {false, true}) {
        for (const bool isHigh : {false, true}) {
            const Palette palette = Palette::of({isDark, isHigh});
            expectContrast(palette, texts, isHigh ? 7 : 4.5);
            expectContrast(palette, lines, 3);
            EXPECT_GE(contrastRatio(palette.separator, palette.bar), isHigh ? 3 : 1);
        }
    }
}

TEST(Palette, FollowsTheAppearanceAndTheHost) {
    test::TestHost host;
    EXPECT_EQ(Palette::current().bar, Palette::of({}).bar);
    host.environment().setAppearance({.isDark = true});
    EXPECT_EQ(Palette::current().bar, Palette::of({.isDark = true}).bar);
    const gfx::Color own{0.5, 0.25, 0, 1};
    EXPECT_TRUE(setPaletteColor("bar", own));
    EXPECT_FALSE(setPaletteColor("bars", own));
    EXPECT_EQ(Palette::current().bar, own);
    EXPECT_EQ(Palette::current().text, Palette::of({.isDark = true}).text);
    EXPECT_TRUE(setPaletteColor("bar", {}));
    EXPECT_EQ(Palette::current().bar, Palette::of({.isDark = true}).bar);
}

}  // namespace kalim
