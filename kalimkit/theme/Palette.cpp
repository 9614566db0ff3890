#include "kalimkit/theme/Palette.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <utility>
#include <vector>

#include "kalimkit/gfx/Contrast.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

namespace {

constexpr PaletteColor colors[] = {
    {"window", &Palette::window},
    {"bar", &Palette::bar},
    {"raised", &Palette::raised},
    {"hovered", &Palette::hovered},
    {"pressed", &Palette::pressed},
    {"chosen", &Palette::chosen},
    {"accent", &Palette::accent},
    {"tip", &Palette::tip},
    {"text", &Palette::text},
    {"secondary-text", &Palette::secondaryText},
    {"disabled-text", &Palette::disabledText},
    {"chosen-text", &Palette::chosenText},
    {"accent-text", &Palette::accentText},
    {"tip-text", &Palette::tipText},
    {"danger", &Palette::danger},
    {"track", &Palette::track},
    {"focus", &Palette::focus},
    {"separator", &Palette::separator},
    {"shadow", &Palette::shadow},
};

// 0xRRGGBBAA of each appearance, in the order above: light, dark, and both with high contrast.
constexpr std::uint32_t values[][std::size(colors)] = {
    {0xe4e7ecff, 0xf7f8faff, 0xffffffff, 0xe9ecf1ff, 0xd9dde4ff, 0xd6e4ffff, 0x1a5cd8ff, 0x23282fff,
     0x1b2027ff, 0x454e5aff, 0x667080ff, 0x0a419fff, 0xffffffff, 0xffffffff, 0xa8201aff, 0x747d8bff,
     0x1a5cd8ff, 0xd3d8dfff, 0x00000040},
    {0x15181cff, 0x23272dff, 0x2c3138ff, 0x363c45ff, 0x424953ff, 0x1e3d70ff, 0x8ab6ffff, 0xf0f3f6ff,
     0xf0f3f6ff, 0xbcc4ceff, 0x98a1adff, 0xd6e6ffff, 0x0b1c38ff, 0x171a1eff, 0xffaaa2ff, 0x8d96a2ff,
     0x8ab6ffff, 0x3d444dff, 0x00000099},
    {0xffffffff, 0xffffffff, 0xffffffff, 0xe2e2e2ff, 0xcdcdcdff, 0x000000ff, 0x00328fff, 0x000000ff,
     0x000000ff, 0x1c1c1cff, 0x555555ff, 0xffffffff, 0xffffffff, 0xffffffff, 0x7d0f0aff, 0x000000ff,
     0x00328fff, 0x000000ff, 0x00000066},
    {0x000000ff, 0x000000ff, 0x000000ff, 0x2c2c2cff, 0x404040ff, 0xffffffff, 0xffe14dff, 0xffffffff,
     0xffffffff, 0xe6e6e6ff, 0xa8a8a8ff, 0x000000ff, 0x000000ff, 0x000000ff, 0xffb4adff, 0xffffffff,
     0xffe14dff, 0xffffffff, 0x000000ff},
};

// Of texts on their ground.
constexpr double leastContrast = 4.5;

gfx::Color colorOf(std::uint32_t value) {
    const auto byte = [value](int shift) { return ((value >> shift) & 0xff) / 255.0; };
    return {byte(24), byte(16), byte(8), byte(0)};
}

using Given = std::pair<gfx::Color Palette::*, gfx::Color>;

// What the host of an environment has given.
struct GivenColors {
    std::vector<Given> colors;

    static GivenColors& current() { return ui::Environment::current().attachment<GivenColors>(); }
};

// Whether texts of the dark palette stand out more.
bool isDarkGround(const gfx::Color& ground, ui::Appearance appearance) {
    appearance.isDark = true;
    const gfx::Color light = Palette::of(appearance).text;
    appearance.isDark = false;
    return contrastRatio(ground, light) > contrastRatio(ground, Palette::of(appearance).text);
}

// The colour, or black or white where it does not stand out.
gfx::Color readableOn(const gfx::Color& ground, const gfx::Color& color) {
    if (contrastRatio(ground, color) >= leastContrast) return color;
    const gfx::Color black{0, 0, 0, color.alpha};
    const gfx::Color white{1, 1, 1, color.alpha};
    return contrastRatio(ground, white) > contrastRatio(ground, black) ? white : black;
}

}  // namespace

Palette Palette::of(const ui::Appearance& appearance) {
    const auto& row = values[(appearance.hasHighContrast ? 2 : 0) + (appearance.isDark ? 1 : 0)];
    Palette palette;
    for (std::size_t i = 0; i < std::size(colors); ++i)
        palette.*colors[i].color = colorOf(row[i]);
    return palette;
}

Palette Palette::current() {
    const auto& given = GivenColors::current().colors;
    const auto givenAs = [&given](gfx::Color Palette::*place) {
        const auto found = std::ranges::find(given, place, &Given::first);
        return found == given.end() ? nullptr : &found->second;
    };
    ui::Appearance appearance = ui::Environment::current().appearance();
    const gfx::Color* const bar = givenAs(&Palette::bar);
    // What is shown on a host's own bar suits that, as far as the host has not said it.
    const bool followsBar = bar && !givenAs(&Palette::text);
    if (followsBar) appearance.isDark = isDarkGround(*bar, appearance);
    Palette palette = of(appearance);
    for (const auto& [place, color] : given)
        palette.*place = color;
    if (!followsBar) return palette;
    for (const auto place : {&Palette::text, &Palette::secondaryText}) {
        if (!givenAs(place)) palette.*place = readableOn(*bar, palette.*place);
    }
    return palette;
}

std::span<const PaletteColor> paletteColors() {
    return colors;
}

bool setPaletteColor(std::string_view name, const std::optional<gfx::Color>& color) {
    const auto* const named = std::ranges::find(colors, name, &PaletteColor::name);
    if (named == std::end(colors)) return false;
    auto& given = GivenColors::current().colors;
    std::erase_if(given, [&](const auto& each) { return each.first == named->color; });
    if (color) given.emplace_back(named->color, *color);
    return true;
}

double contrastRatio(const gfx::Color& one, const gfx::Color& other) {
    const double a = gfx::luminance(one);
    const double b = gfx::luminance(other);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

}  // namespace kalim
