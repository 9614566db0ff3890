#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "kalimkit/canvas/CountedTools.h"
#include "kalimkit/image/SmallPicture.h"
#include "kalimkit/shapes/Badge.h"
#include "kalimkit/shapes/CountText.h"
#include "kalimkit/shapes/MDrawMagnifier.h"
#include "kalimkit/shapes/MDrawNumber.h"
#include "kalimkit/shapes/outline/CurvedArrowOutline.h"

namespace kalim {

namespace {

TEST(EverydayKit, CountsInEveryStyle) {
    struct Case {
        int number;
        const char* style;
        const char* text;
    };
    constexpr Case cases[] = {{1, "1", "1"},  {128, "1", "128"},      {1, "a", "a"},
                              {26, "a", "z"}, {27, "A", "AA"},        {703, "A", "AAA"},
                              {4, "i", "iv"}, {1994, "i", "mcmxciv"}, {4000, "i", "4000"}};
    for (const Case& each : cases)
        EXPECT_EQ(countText(each.number, each.style), each.text);
}

TEST(EverydayKit, NumbersComeBackToTheirPlaceInTheirSeries) {
    const auto number = [](const char* style) {
        const ToolRef tool = MDrawNumber::initWithStartPoint({});
        tool->setProperty("style", style);
        return tool;
    };
    const ToolRef first = number("1");
    const ToolRef letter = number("a");
    const ToolRef second = number("1");
    const ToolRef third = number("1");
    const ToolRef fourth = number("1");
    CountedTools counted;
    const auto countsAmong = [&](const ToolList& tools) {
        counted.recount(tools);
        std::vector<int> counts;
        for (const ToolRef& tool : tools)
            counts.push_back(tool->count());
        return counts;
    };
    using Counts = std::vector<int>;
    EXPECT_EQ(countsAmong({first, letter, second, third, fourth}), (Counts{1, 1, 2, 3, 4}));
    EXPECT_EQ(countsAmong({first, letter, fourth}), (Counts{1, 1, 2}));
    // What comes back lies on top, and counts as before.
    EXPECT_EQ(countsAmong({first, letter, fourth, third, second}), (Counts{1, 1, 4, 3, 2}));
    letter->setProperty("style", "1");
    EXPECT_EQ(countsAmong({first, letter, fourth, third, second}), (Counts{1, 2, 5, 4, 3}));
}

TEST(EverydayKit, DashesInkBothEndsOfALine) {
    // 12 on and 8 off: six dashes fit, whose gaps are stretched.
    const auto spans = dashSpans(110, {12, 8});
    ASSERT_EQ(spans.size(), 6U);
    EXPECT_EQ(spans.front().from, 0);
    EXPECT_NEAR(spans[1].from, 19.6, 1e-9);
    EXPECT_NEAR(spans.back().to, 110, 1e-9);
    // Too short for two.
    EXPECT_EQ(dashSpans(9, {10, 10}).size(), 1U);
    // Of a rectangle each corner has ink on both of its sides.
    gfx::Path box;
    box.addRect({0, 0, 100, 60});
    const gfx::Path dashed = dashedPath(box, {10, 10}, DashFit::ToEnds);
    for (const gfx::Point corner : {gfx::Point{0, 0}, {100, 0}, {100, 60}, {0, 60}}) {
        EXPECT_GE(std::ranges::count(dashed.points(), corner), 2) << corner.x << " " << corner.y;
    }
}

TEST(EverydayKit, CurvedArrowsKeepTheirTipAndTheirReach) {
    const CurvedArrow arrow{.length = 200,
                            .bend = 0.25,
                            .headHalfWidth = 17,
                            .tailWidth = 4,
                            .lineWidth = 12,
                            .hasHeadAtEnd = true,
                            .hasHeadAtStart = true,
                            .dashes = {}};
    const gfx::Path outline = curvedArrowOutline(arrow);
    EXPECT_EQ(std::ranges::count(outline.points(), gfx::Point(0, 0)), 1);
    EXPECT_EQ(std::ranges::count(outline.points(), gfx::Point(200, 0)), 1);
    EXPECT_NEAR(distanceFrom(arrow, {100, 50}), 0, 1e-6);
    EXPECT_NEAR(distanceFrom(arrow, {100, 80}), 30, 0.1);
}

TEST(EverydayKit, InkIsLegibleOnEveryColour) {
    const auto linear = [](double c) {
        return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
    };
    const auto light = [&](const gfx::Color& c) {
        return 0.2126 * linear(c.red) + 0.7152 * linear(c.green) + 0.0722 * linear(c.blue) + 0.05;
    };
    for (const char* hex : {"#F63434", "#FF9500", "#FFCC00", "#34C759", "#0A84FF", "#AF52DE",
                            "#FFFFFF", "#000000", "#808080", "#FF2D55"}) {
        const gfx::Color ground = *gfx::Color::fromHex(hex);
        const double a = light(ground);
        const double b = light(inkOn(ground));
        EXPECT_GE(std::max(a, b) / std::min(a, b), 3) << hex;
    }
}

TEST(EverydayKit, AMagnifierStaysACircleInAGroupThatIsStretched) {
    const auto magnifier = MDrawMagnifier::initWithStartPoint({100, 100});
    magnifier->drawThrough(std::vector<gfx::Point>{{160, 160}});
    magnifier->scaleBy({100, 100}, {2, 1});
    EXPECT_EQ(magnifier->frame(), gfx::Rect(115, 85, 90, 90));
}

TEST(EverydayKit, SmallPicturesGoThroughTexts) {
    // Two pixels: opaque red and a transparent one.
    const auto picture = readSmallPicture("2x1:/wAA/wAAAAA=");
    ASSERT_TRUE(picture);
    EXPECT_EQ(picture->colorAt(0, 0), (gfx::Color{1, 0, 0, 1}));
    EXPECT_EQ(picture->colorAt(1, 0).alpha, 0);
    for (const char* wrong : {"", "2x1", "2x1:", "2x2:/wAA/wAAAAA=", "0x1:/wAA/w==",
                              "257x1:/wAA/w==", "2x1:/wAA/wAAAA", "-2x1:/wAA/wAAAAA="}) {
        EXPECT_FALSE(readSmallPicture(wrong)) << wrong;
    }
}

}  // namespace

}  // namespace kalim
