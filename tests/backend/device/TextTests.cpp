#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <numeric>
#include <string>

#include "tests/backend/device/Canvas.h"

namespace kalim::gfx {
namespace {

using test::alphaAt;
using test::Canvas;
using test::inkBox;
using test::testDevice;
using Offsets = std::vector<std::size_t>;

Font systemFont(double size, bool bold = false) {
    return {.family = "", .size = size, .bold = bold};
}

double width(std::string_view text, const Font& font) {
    const std::vector<double> advances = testDevice().advances(text, font);
    return std::accumulate(advances.begin(), advances.end(), 0.0);
}

double coverage(const Bitmap& bitmap) {
    double sum = 0;
    for (std::size_t i = 3; i < bitmap.byteCount(); i += 4)
        sum += bitmap.data()[i] / 255.0;
    return sum;
}

TEST(DrawnText, ThereIsOneAdvanceForEachGrapheme) {
    const Font font = systemFont(24);
    EXPECT_EQ(3U, testDevice().advances("ae\u0301漢", font).size());
    EXPECT_EQ((std::vector<double>{24, 24}), testDevice().advances("漢字", font));
    EXPECT_TRUE(testDevice().advances("", font).empty());
    // An accent takes no room of its own.
    EXPECT_NEAR(width("e", font), width("e\u0301", font), 0.5);
    EXPECT_GT(testDevice().advances("Wi", font)[0], 2 * testDevice().advances("Wi", font)[1]);
}

TEST(DrawnText, MeasuresAreNotRoundedToPixels) {
    const std::string_view text = "Quick 漢字 brown";
    const double once = width(text, systemFont(15));
    for (const double factor : {2.0, 3.0, 7.0}) {
        EXPECT_NEAR(once * factor, width(text, systemFont(15 * factor)),
                    test::widthTolerance() * factor);
    }
    EXPECT_NE(std::round(once), once);
}

TEST(DrawnText, DrawnRunIsAsWideAsItsAdvances) {
    for (const double size : {12.0, 40.0}) {
        // A block of full width at the end shows where the run before it ends.
        const Font font = systemFont(size);
        for (const int scale : {1, 2, 3}) {
            Canvas whole(300, 60, scale);
            whole.context().drawText("Wi. H", {0, 45}, font);
            Canvas last(300, 60, scale);
            last.context().drawText("H", {width("Wi. ", font), 45}, font);
            EXPECT_NEAR(inkBox(*last.pixels()).maxX(), inkBox(*whole.pixels()).maxX(), 1);
        }
    }
}

// Arabic, of which a letter's shape depends on its neighbours.
TEST(DrawnText, JoinedLettersAreAsWideAsTheyAreDrawn) {
    const Font font = systemFont(40, true);
    const std::string word = "مرحبا";
    for (const double advance : testDevice().advances(word, font))
        EXPECT_GT(advance, 4);
    Canvas whole(300, 60);
    whole.context().drawText("\u202EH" + word + "\u202C", {0, 45}, font);
    Canvas last(300, 60);
    last.context().drawText("H", {width(word, font), 45}, font);
    EXPECT_NEAR(inkBox(*last.pixels()).maxX(), inkBox(*whole.pixels()).maxX(), 1);
}

TEST(DrawnText, StandsOnItsBaseline) {
    // Drawn as glyphs, small as outlines, and turned.
    for (const double size : {10.0, 40.0}) {
        for (const int scale : {1, 2, 3}) {
            SCOPED_TRACE(testing::Message() << size << " at " << scale);
            Canvas canvas(60, 60, scale);
            canvas.context().drawText("HHH", {5, 50}, systemFont(size));
            const Rect ink = inkBox(*canvas.pixels(), 128);
            EXPECT_NEAR(50.0 * scale, ink.maxY(), 1);
            // Capitals are about 0.7 em high.
            EXPECT_NEAR(size * scale * 0.7, ink.size.height, size * scale * 0.06 + 1);

            Canvas turned(60, 60, scale);
            turned.context().translate(20, 5);
            turned.context().rotate(std::numbers::pi / 2);
            turned.context().drawText("HHH", {0, 0}, systemFont(size));
            EXPECT_NEAR(20.0 * scale, inkBox(*turned.pixels(), 128).minX(), 1);
        }
    }
}

TEST(DrawnText, OutlineLeavesTheInsideEmpty) {
    // The stem of a large bold letter: 100 points high, some 15 wide.
    const Font font = systemFont(140, true);
    const auto middleOfStem = [&](TextMode mode) {
        Canvas canvas(80, 140);
        canvas.context().setTextMode(mode);
        canvas.context().setLineWidth(2);
        canvas.context().setLineJoin(LineJoin::Round);
        canvas.context().setStrokeColor({1, 0, 0, 1});
        canvas.context().setFillColor({0, 0, 1, 1});
        canvas.context().drawText("l", {20, 120}, font);
        const Rect ink = inkBox(*canvas.pixels());
        EXPECT_GT(ink.size.width, 10);
        return canvas.at(static_cast<int>(ink.midX()), static_cast<int>(ink.midY())) + " " +
               canvas.at(static_cast<int>(ink.minX()) + 1, static_cast<int>(ink.midY()));
    };
    EXPECT_EQ("#0000FFFF #0000FFFF", middleOfStem(TextMode::Fill));
    EXPECT_EQ("#00000000 #FF0000FF", middleOfStem(TextMode::Stroke));
}

TEST(DrawnText, TakesAlphaPatternAndBlendMode) {
    Bitmap dot(1, 1);
    dot.setColorAt(0, 0, {0, 1, 0, 1});
    const ImageRef image = testDevice().makeImage(dot, 1, ImageOrientation::Up);
    Canvas canvas(40, 80, 2);
    Context& context = canvas.context();
    context.setFillColor({0, 0, 1, 1});
    context.fillRect({0, 0, 40, 40});
    context.setAlpha(0.5);
    context.setFillPattern({image, {}});
    context.setBlendMode(BlendMode::SourceIn);
    context.drawText("■", {0, 35}, systemFont(40));
    EXPECT_EQ("#00FF00", canvas.at(40, 40).substr(0, 7));
    EXPECT_NEAR(128, alphaAt(*canvas.pixels(), 40, 40), 1);
    EXPECT_EQ("#0000FFFF", canvas.at(1, 1));
    context.setBlendMode(BlendMode::Normal);
    context.drawText("■", {0, 75}, systemFont(40));
    EXPECT_EQ("#00FF00", canvas.at(40, 120).substr(0, 7));
    EXPECT_NEAR(128, alphaAt(*canvas.pixels(), 40, 120), 1);
}

TEST(DrawnText, BytesThatAreNoTextShowAsReplacement) {
    const auto draw = [](std::string_view text) {
        Canvas canvas(90, 30);
        canvas.context().drawText(text, {0, 25}, systemFont(24));
        return canvas.pixels();
    };
    EXPECT_EQ(*draw("a\uFFFDb"), *draw("a\xFF"
                                       "b"));
    EXPECT_EQ(*draw("a\uFFFD"), *draw("a\xE6\xBC"));
    EXPECT_EQ(*draw("a\uFFFDb"), *draw(std::string_view("a\0b", 3)));
    EXPECT_NE(*draw("ab"), *draw("a\xFF"
                                 "b"));
    EXPECT_EQ(3U, testDevice()
                      .advances("a\xFF"
                                "b",
                                systemFont(24))
                      .size());
}

TEST(DrawnText, BoundariesAreOffsetsInTheTextAsGiven) {
    const struct {
        std::string_view text;
        TextBoundary kind;
        Offsets expected;
    } cases[] = {
        {"", TextBoundary::Grapheme, {0}},
        {"e\u0301x漢", TextBoundary::Grapheme, {0, 3, 4, 7}},
        {"a\xFF\xE6\xBC"
         "b",
         TextBoundary::Grapheme,
         {0, 1, 2, 4, 5}},
        {"a\r\nb", TextBoundary::Grapheme, {0, 1, 3, 4}},
        {"hello, world", TextBoundary::Word, {0, 5, 7, 12}},
        {" a", TextBoundary::Word, {0, 1, 2}},
        {"ab cd-e", TextBoundary::Line, {0, 3, 6, 7}},
        // No line begins with a closing mark.
        {"汉字。字", TextBoundary::Line, {0, 3, 9, 12}},
        {"a\nb", TextBoundary::Line, {0, 2, 3}},
        {"e-mail (a/b)", TextBoundary::Line, {0, 2, 7, 10, 12}},
        {"x\u00A0y z", TextBoundary::Line, {0, 5, 6}},
        {"「あっ」", TextBoundary::Line, {0, 12}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(c.expected, testDevice().boundaries(c.text, c.kind));
    }
}

TEST(DrawnText, DirectionsAreThoseOfTheUnicodeAlgorithm) {
    using Levels = std::vector<int>;
    constexpr auto byLetters = BaseDirection::FirstLetter;
    // A level; 100 more where it is blank.
    const struct {
        std::string_view text;
        BaseDirection base;
        int baseLevel;
        Levels expected;
    } cases[] = {
        {"", byLetters, 0, {}},
        {"漢 a", byLetters, 0, {}},
        {"ab", BaseDirection::RightToLeft, 1, {2, 2}},
        {"1 \u05D0", byLetters, 1, {2, 101, 1}},
        {"1 \u05D0", BaseDirection::LeftToRight, 0, {0, 100, 1}},
        // A pair of brackets goes with what is around it, whatever is in it.
        {"\u05D0(b)\u05D1", byLetters, 1, {1, 1, 2, 1, 1}},
        {"a\u05D0(b)", byLetters, 0, {0, 1, 0, 0, 0}},
        // An isolate counts as a sign between two words.
        {"a\u2067b\u2069c", byLetters, 0, {0, 100, 2, 100, 0}},
        {"\u0661.\u0662", byLetters, 0, {2, 2, 2}},
        // Of a grapheme the first character counts.
        {"e\u0301\u05D0\u05B0", byLetters, 0, {0, 1}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        const TextDirections found = testDevice().directions(c.text, c.base);
        Levels levels;
        for (const TextDirections::Grapheme& grapheme : found.graphemes)
            levels.push_back(grapheme.level + (grapheme.isBlank ? 100 : 0));
        EXPECT_EQ(c.baseLevel, found.baseLevel);
        EXPECT_EQ(c.expected, levels);
    }
}

TEST(DrawnText, LineMetricsHoldTheGlyphsAndGrowWithTheSize) {
    const LineMetrics small = testDevice().lineMetrics(systemFont(10));
    const LineMetrics large = testDevice().lineMetrics(systemFont(40));
    EXPECT_NEAR(4 * small.ascent, large.ascent, 0.02);
    EXPECT_NEAR(4 * small.descent, large.descent, 0.02);
    EXPECT_GE(large.leading, 0);
    Canvas canvas(160, 120);
    canvas.context().drawText("Ågjp漢", {0, 60}, systemFont(40));
    const Rect ink = inkBox(*canvas.pixels());
    EXPECT_LE(60 - large.ascent, ink.minY() + 1);
    EXPECT_GE(60 + large.descent, ink.maxY() - 1);
}

TEST(DrawnText, BoldAndItalicAreAskedFor) {
    const auto draw = [](const Font& font) {
        Canvas canvas(60, 60);
        canvas.context().drawText("漢", {5, 50}, font);
        return canvas.pixels();
    };
    const BitmapRef regular = draw(systemFont(40));
    EXPECT_GT(coverage(*draw(systemFont(40, true))), 1.1 * coverage(*regular));
    EXPECT_NE(*regular, *draw({.family = "", .size = 40, .bold = false, .italic = true}));
    EXPECT_EQ(*regular, *draw({.family = "WenQuanYi Micro Hei", .size = 40}));
}

}  // namespace
}  // namespace kalim::gfx
