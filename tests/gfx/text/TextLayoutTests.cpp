#include "kalimkit/gfx/text/TextLayout.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "kalimkit/gfx/text/Graphemes.h"
#include "kalimkit/gfx/text/PlainText.h"
#include "kalimkit/gfx/text/VisualOrder.h"
#include "tests/support/RecordingDevice.h"
#include "tests/support/TestHost.h"

namespace kalim::gfx {

namespace {

using Strings = std::vector<std::string>;

// At size 10 a Latin letter is 5 wide, a hanzi 10; a line is 8 + 2 + 1 high.
const Font ten{{}, 10};

// Counts what is shaped.
class CountingDevice : public test::RecordingDevice {
public:
    std::vector<double> advances(std::string_view text, const Font& font) override {
        measured += text;
        pieces.emplace(text);
        return RecordingDevice::advances(text, font);
    }
    std::string measured;
    std::set<std::string> pieces;
};

class TextLayoutTest : public testing::Test {
protected:
    TextLayout layoutOf(const std::string& text, double width = TextLayout::unlimited) {
        return {device, text, ten, {width, TextLayout::unlimited}};
    }
    static Strings linesOf(const TextLayout& layout) {
        Strings lines;
        for (const TextLine& line : layout.lines())
            lines.push_back(layout.text().substr(line.begin, line.end - line.begin));
        return lines;
    }

    CountingDevice device;
};

TEST_F(TextLayoutTest, MeasuresAnewWhereTheDeviceHasOtherAnswers) {
    TextLayout layout = layoutOf("ab\ncd");
    device.measured.clear();
    layout.setFont(ten);
    EXPECT_EQ("", device.measured);
    device.textsChanged();
    layout.setFont(ten);
    layout.setLimit(layout.limit());
    EXPECT_EQ("abcd", device.measured);
}

TEST_F(TextLayoutTest, BreaksGreedilyAndLetsSpacesHang) {
    const struct {
        const char* what;
        std::string text;
        double limit;
        Strings lines;
        double width;
    } cases[] = {
        {"nothing", "", 100, {""}, 0},
        {"words", "aaa bbb ccc", 40, {"aaa bbb ", "ccc"}, 35},
        {"as wide as the limit", "aaa bbb", 35, {"aaa bbb"}, 35},
        {"hanging spaces", "aaaa     b", 20, {"aaaa     ", "b"}, 20},
        {"spaces at the end", "ab    ", 15, {"ab    "}, 15},
        {"spaces within the limit", "ab ", 99, {"ab "}, 15},
        {"a long word", "aaaaaaaaaa", 22, {"aaaa", "aaaa", "aa"}, 20},
        {"a long word after another", "a bbbbbb", 20, {"a ", "bbbb", "bb"}, 20},
        {"hanzi", "字字字", 25, {"字字", "字"}, 20},
        {"line feeds", "a\n\nb\n", 99, {"a", "", "b", ""}, 5},
        {"other line ends", "a\r\nb\rc", 99, {"a", "b", "c"}, 5},
        {"a combining mark", "e\u0301e", 5, {"e\u0301", "e"}, 5},
        {"no UTF-8", "\xff\xfe", 10, {"\xff", "\xfe"}, 10},
        {"no room", "ab", 0, {"a", "b"}, 5},
        {"a tab", "a\tb", 99, {"a\tb"}, 25},
    };
    for (const auto& item : cases) {
        const TextLayout layout = layoutOf(item.text, item.limit);
        EXPECT_EQ(linesOf(layout), item.lines) << item.what;
        EXPECT_EQ(layout.size(), Size(item.width, 11.0 * double(item.lines.size()))) << item.what;
    }
}

TEST_F(TextLayoutTest, PlacesBaselinesAndLeavesOutLinesBelowTheHeight) {
    const TextLayout layout(device, "a\nb\nc", ten, {99, 21});
    ASSERT_EQ(layout.lines().size(), 2u);
    EXPECT_EQ(layout.lines()[1].origin, Point(0, 19));
    EXPECT_EQ(layout.lines()[1].leading, 1);
    // Where there is no line at all nothing can be found, and nothing goes wrong.
    const TextLayout none(device, "a", ten, {99, 5});
    EXPECT_EQ(none.positionAt({3, 3}), TextPosition());
    EXPECT_EQ(none.caretRect({1}), Rect());
}

TEST_F(TextLayoutTest, FindsTheNearestGraphemeEdge) {
    const TextLayout layout = layoutOf("ab字\nxyz");
    EXPECT_EQ(layout.positionAt({2, 5}).offset, 0u);
    EXPECT_EQ(layout.positionAt({3, 5}).offset, 1u);
    EXPECT_EQ(layout.positionAt({14, 5}).offset, 2u);
    EXPECT_EQ(layout.positionAt({16, 5}).offset, 5u);
    EXPECT_EQ(layout.positionAt({-9, 12}).offset, 6u);
    EXPECT_EQ(layout.positionAt({99, -99}).offset, 5u);
    EXPECT_EQ(layout.positionAt({99, 999}).offset, 9u);
    EXPECT_EQ(layout.caretRect({8}), Rect(10, 11, 0, 10));
    // Inside a grapheme, and beyond the end.
    EXPECT_EQ(layout.caretRect({3}), Rect(10, 0, 0, 10));
    EXPECT_EQ(layout.caretRect({99}), Rect(15, 11, 0, 10));
}

TEST_F(TextLayoutTest, TellsTheEndOfABrokenLineFromTheStartOfTheNext) {
    const TextLayout layout = layoutOf("aaa bbb", 25);
    EXPECT_EQ(layout.caretRect({4}), Rect(0, 11, 0, 10));
    EXPECT_EQ(layout.caretRect({4, true}), Rect(20, 0, 0, 10));
    EXPECT_EQ(layout.lineEnd({1}), TextPosition(4, true));
    EXPECT_EQ(layout.lineStart({4, true}), TextPosition(0, false));
    EXPECT_EQ(layout.lineEnd({4}), TextPosition(7, false));
    EXPECT_EQ(layout.positionAt({99, 5}), TextPosition(4, true));
    // A line feed is no such place.
    EXPECT_EQ(layoutOf("a\nb").caretRect({2, true}), Rect(0, 11, 0, 10));
    // Hanging spaces are all at the limit.
    EXPECT_EQ(layoutOf("aaaaa   b", 25).caretRect({7}).minX(), 25);
}

TEST_F(TextLayoutTest, MovesByGraphemesWordsAndLines) {
    const TextLayout layout = layoutOf("the e\u0301,  字\r\nend");
    EXPECT_EQ(layout.graphemeAfter(4), 7u);
    EXPECT_EQ(layout.graphemeBefore(7), 4u);
    EXPECT_EQ(layout.graphemeAfter(13), 15u);
    EXPECT_EQ(layout.graphemeBefore(15), 13u);
    EXPECT_EQ(layout.graphemeAfter(18), 18u);
    EXPECT_EQ(layout.graphemeBefore(0), 0u);
    EXPECT_EQ(layout.wordAfter(1), 3u);
    EXPECT_EQ(layout.wordAfter(3), 7u);
    EXPECT_EQ(layout.wordBefore(7), 4u);
    EXPECT_EQ(layout.wordBefore(4), 0u);
    EXPECT_EQ(layout.wordBefore(10), 7u);
    EXPECT_EQ(layout.wordAt(1), TextRange(0, 3));
    EXPECT_EQ(layout.wordAt(3), TextRange(0, 3));
    // At the end of a word, even before a comma, it is the word.
    EXPECT_EQ(layout.wordAt(7), TextRange(4, 7));
    EXPECT_EQ(layout.wordAt(8), TextRange(7, 10));
    EXPECT_EQ(layout.wordAt(16), TextRange(15, 18));
    EXPECT_EQ(layout.movedByLines({2}, 1, 11), TextPosition(17));
    EXPECT_EQ(layout.movedByLines({2}, -1, 10), TextPosition(0));
    EXPECT_EQ(layout.movedByLines({16}, 1, 0), TextPosition(18));
}

TEST_F(TextLayoutTest, CoversASelectionLineByLine) {
    const TextLayout layout = layoutOf("aaa bbb\ncc\n\nd", 25);
    const std::vector<Rect> expected = {
        {5, 0, 15, 11}, {0, 11, 17.75, 11}, {0, 22, 12.75, 11}, {0, 33, 2.75, 11}, {0, 44, 5, 11}};
    EXPECT_EQ(layout.selectionRects({1, 13}), expected);
    EXPECT_EQ(layout.selectionRects({4, 6}), std::vector<Rect>({{0, 11, 10, 11}}));
    EXPECT_TRUE(layout.selectionRects({4, 4}).empty());
}

TEST_F(TextLayoutTest, MeasuresOnlyTheParagraphsThatChanged) {
    TextLayout layout = layoutOf("one\ntwo\nthree\nfour", 20);
    const struct {
        std::string text;
        std::string measured;
    } steps[] = {{"one\ntwo!\nthree\nfour", "two!"},
                 {"one\ntwo\n!\nthree\nfour", "two!"},
                 {"one\nthree\nfour", ""},
                 {"one\nthree\nthree\nfour", "three"},
                 {"", ""}};
    for (const auto& step : steps) {
        device.measured.clear();
        layout.setText(step.text);
        EXPECT_EQ(device.measured, step.measured) << step.text;
        EXPECT_EQ(layout.lines(), layoutOf(step.text, 20).lines()) << step.text;
    }
}

TEST_F(TextLayoutTest, DrawsARunForEachLineThatShows) {
    // A line that does not show reaches at most its height into what does.
    const TextLayout layout = layoutOf("aa \n\tx\ty \n\nz");
    test::RecordingContext context;
    layout.draw(context, {100, 50}, {100, 50, 10, 10});
    const Strings expected = {"text \"aa\" at=(100,58) size=10 #000000FF",
                              "text \"x\" at=(120,69) size=10 #000000FF",
                              "text \"y\" at=(140,69) size=10 #000000FF"};
    EXPECT_EQ(context.takeLines(), expected);
    layout.draw(context, {0, 0}, {0, 500, 10, 10});
    EXPECT_TRUE(context.takeLines().empty());
}

// Whatever the bytes: lines cover the text, steps forward reach its end and steps back its start,
// and each caret is found again where it stands.
TEST_F(TextLayoutTest, StaysInOrderOnAnyBytes) {
    test::TestHost cairo;
    constexpr std::string_view alphabet =
        "ab \t\n\r\xcc\x81\xe5\xad\x97\xf0\x9f\x98\x80\xff\xd7\x90\xd7\x91";
    unsigned noise = 7;
    for (int round = 0; round < 60; ++round) {
        std::string text;
        for (int i = 0; i < 24; ++i) {
            noise = noise * 1664525U + 1013904223U;
            text += alphabet[(noise >> 8U) % alphabet.size()];
        }
        Device& used = round % 2 == 0 ? static_cast<Device&>(device) : cairo.environment().device();
        const TextLayout layout(used, text, ten, {30, TextLayout::unlimited});
        std::size_t reached = 0;
        for (const TextLine& line : layout.lines()) {
            EXPECT_LE(line.begin - reached, 2u);
            EXPECT_LE(line.begin, line.end);
            reached = line.end;
        }
        EXPECT_EQ(reached, text.size());
        std::vector<std::size_t> forwards{0};
        while (forwards.back() < text.size() && forwards.size() <= text.size()) {
            EXPECT_GT(layout.graphemeAfter(forwards.back()), forwards.back());
            EXPECT_EQ(layout.graphemeBefore(layout.graphemeAfter(forwards.back())),
                      forwards.back());
            forwards.push_back(layout.graphemeAfter(forwards.back()));
            const Rect caret = layout.caretRect({forwards.back()});
            const TextPosition found = layout.positionAt({caret.minX(), caret.midY()});
            EXPECT_EQ(layout.caretRect(found).minX(), caret.minX());
        }
        EXPECT_EQ(forwards.back(), text.size());
    }
}

// א, ב and ג are three letters from right to left.
TEST(Directions, LettersAndNumbersAreSeenInTheirOrder) {
    const std::pair<const char*, const char*> cases[] = {
        {"abc 12", "abc 12"},       {"ab אבג c", "ab גבא c"},   {"אבג ab", "ab גבא"},
        {"אב 12.5 ג", "ג 12.5 בא"}, {"אב 50% a!", "!a 50% בא"}, {"(אב) a", "a )בא("},
        {"12 אב", "בא 12"},         {"a 12 ב 34", "a 12 34 ב"}, {"ا٣٤", "٣٤ا"},
    };
    test::TestHost cairo;
    Device& device = cairo.environment().device();
    for (const auto& [text, seen] : cases) {
        const std::string_view whole = text;
        const std::vector<std::size_t> edges = device.boundaries(whole, TextBoundary::Grapheme);
        std::vector<std::uint8_t> levels(edges.size() - 1, 0);
        const TextDirections directions = device.directions(whole, BaseDirection::FirstLetter);
        for (std::size_t i = 0; i < directions.graphemes.size(); ++i)
            levels[i] = directions.graphemes[i].level;
        std::string order;
        for (const std::size_t i : visualOrder(levels))
            order += whole.substr(edges[i], edges[i + 1] - edges[i]);
        EXPECT_EQ(order, seen) << text;
    }
}

TEST_F(TextLayoutTest, CaretAndSelectionLieWhereTheLettersAre) {
    const TextLayout mixed = layoutOf("ab אבג c\nאב 12  ", 99);
    const std::pair<TextPosition, double> cases[] = {
        {{0}, 0},   {{3}, 30},  {{3, true}, 15}, {{5}, 25},  {{9, true}, 15}, {{9}, 30},
        {{11}, 40}, {{12}, 35}, {{14}, 30},      {{17}, 10}, {{19}, 10},      {{21}, 0}};
    for (const auto& [position, x] : cases)
        EXPECT_EQ(mixed.caretRect(position).minX(), x) << position.offset;
    EXPECT_EQ(mixed.positionAt({16, 5}), (TextPosition{9, true}));
    EXPECT_EQ(mixed.positionAt({29, 5}), (TextPosition{3, false}));
    EXPECT_EQ(mixed.positionAt({90, 15}), (TextPosition{12, false}));
    const std::vector<Rect> selected{{0, 0, 15, 11}, {25, 0, 5, 11}};
    EXPECT_EQ(mixed.selectionRects({0, 5}), selected);
    // Each piece is drawn in its own direction, and where the layout has it.
    test::RecordingContext context;
    layoutOf("ab אב 12").draw(context, {});
    EXPECT_EQ(context.takeLines(),
              (Strings{"text \"\u202Dab\u202C\" at=(0,8) size=10 #000000FF",
                       "text \"\u202D12\u202C\" at=(15,8) size=10 #000000FF",
                       "text \"\u202Eאב\u202C\" at=(30,8) size=10 #000000FF"}));
}

// From the left end of a line to its right end and on: by places, not by offsets.
TEST_F(TextLayoutTest, MovesGoFromEdgeToEdgeOfWhatIsSeen) {
    const TextLayout mixed = layoutOf("ab אב\n\nגד c", 99);
    std::vector<Rect> carets;
    for (TextPosition at{}; carets.size() < 8; at = mixed.rightOf(at))
        carets.push_back(mixed.caretRect(at));
    EXPECT_EQ(carets, (std::vector<Rect>{{0, 0, 0, 10},
                                         {5, 0, 0, 10},
                                         {10, 0, 0, 10},
                                         {15, 0, 0, 10},
                                         {20, 0, 0, 10},
                                         {25, 0, 0, 10},
                                         {0, 11, 0, 10},
                                         {20, 22, 0, 10}}));
    // Between two directions there are two places, at a line's end and at its start as well.
    EXPECT_EQ(mixed.otherCaretRect({3}), Rect(15, 0, 0, 10));
    EXPECT_EQ(mixed.otherCaretRect({3, true}), Rect(25, 0, 0, 10));
    EXPECT_EQ(mixed.otherCaretRect({7}), Rect(25, 0, 0, 10));
    EXPECT_EQ(mixed.otherCaretRect({1}), std::nullopt);
    EXPECT_EQ(mixed.behind(3), TextPosition(3, true));
    EXPECT_EQ(mixed.behind(1), TextPosition(1, false));
    // In a paragraph that runs to the left, left goes on.
    EXPECT_EQ(mixed.leftOf({9}).offset, 11u);
}

TEST_F(TextLayoutTest, LinesStandWhereTheyAreAligned) {
    TextLayout layout = layoutOf("ab\n\nאב\n", 50);
    const auto begins = [&](LineAlignment alignment) {
        layout.setAlignment(alignment);
        std::vector<double> places;
        for (const TextLine& line : layout.lines())
            places.push_back(line.origin.x);
        return places;
    };
    EXPECT_EQ(begins(LineAlignment::Start), (std::vector<double>{0, 0, 40, 50}));
    EXPECT_EQ(begins(LineAlignment::End), (std::vector<double>{40, 50, 0, 0}));
    EXPECT_EQ(begins(LineAlignment::Center), (std::vector<double>{20, 25, 20, 25}));
    EXPECT_EQ(layout.caretRect({1}), Rect(25, 0, 0, 10));
    EXPECT_EQ(layout.positionAt({26, 5}), TextPosition(1));
    EXPECT_EQ(layout.selectionRects({0, 2}), (std::vector<Rect>{{20, 0, 10, 11}}));
    EXPECT_EQ(layout.selectionRects({4, 6}), (std::vector<Rect>{{25, 22, 5, 11}}));
    layout.setBaseDirection(BaseDirection::RightToLeft);
    EXPECT_EQ(begins(LineAlignment::Start), (std::vector<double>{40, 50, 40, 50}));
    EXPECT_EQ(begins(LineAlignment::Left), (std::vector<double>{0, 0, 0, 0}));
    EXPECT_EQ(layout.selectionRects({3, 4}), (std::vector<Rect>{{-2.75, 11, 2.75, 11}}));
}

// Of a text that takes long to shape another size costs nothing, nor does what cannot be read.
TEST_F(TextLayoutTest, LongTextsAreShapedOnce) {
    CountingDevice counting;
    std::string text;
    for (int i = 0; i < 1000; ++i)
        text += "ab cde字 \n";
    TextLayout layout(counting, text, ten, {60, TextLayout::unlimited});
    counting.measured.clear();
    layout.setFont({{}, 5});
    EXPECT_EQ(counting.measured, "");
    EXPECT_EQ(layout.lines().size(), 1001u);
    EXPECT_EQ(layout.caretRect({7}), TextLayout(counting, "ab cde字", {{}, 5}).caretRect({7}));
    test::RecordingContext context;
    layout.draw(context, {}, {0, 0, 60, 1});
    // Bars for the two lines that reach into the rectangle, and no text.
    const Strings drawn = context.takeLines();
    EXPECT_EQ(
        std::ranges::count_if(drawn, [](const auto& line) { return line.starts_with("fill"); }), 2);
    EXPECT_TRUE(
        std::ranges::none_of(drawn, [](const auto& line) { return line.starts_with("text"); }));
}

// A device knows what it has measured before.
TEST_F(TextLayoutTest, OfALongParagraphOnlyThePiecesThatChangeAreOthers) {
    std::string text;
    for (int i = 10'000; i < 12'000; ++i)
        text += std::to_string(i) + " and a next one ";
    TextLayout layout = layoutOf(text, 200);
    for (std::size_t at = 100; at < text.size(); at += 1771) {
        const std::size_t before = device.pieces.size();
        text.insert(at, "x");
        layout.setText(text);
        EXPECT_LE(device.pieces.size() - before, 3u) << at;
    }
    EXPECT_GT(device.pieces.size(), 15u);
}

TEST(Graphemes, AreCountedAsAReaderDoes) {
    test::RecordingDevice device;
    EXPECT_EQ(graphemeCount(device, ""), 0u);
    EXPECT_EQ(graphemeCount(device, "e\u0301字\xff\n"), 4u);
}

TEST(PlainText, IsValidUtf8WithLineFeedsAndTabsAlone) {
    EXPECT_EQ(plainText("a\r\nb\rc\n\td"), "a\nb\nc\n\td");
    EXPECT_EQ(plainText("\r\n\r\n"), "\n\n");
    EXPECT_EQ(plainText("a\u2028b\u2029\n"), "a\nb\n\n");
    EXPECT_EQ(plainText(std::string_view("a\0\x1b\x7f\xc2\x85z", 7)), "az");
    EXPECT_EQ(plainText("\xff字\xed\xa0\x80"), "\uFFFD字\uFFFD\uFFFD\uFFFD");
}

}  // namespace

}  // namespace kalim::gfx
