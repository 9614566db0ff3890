#include "kalimkit/shapes/MDrawText.h"

#include <gtest/gtest.h>

#include "tests/support/RecordingContext.h"
#include "tests/support/RecordingDevice.h"
#include "tests/support/TestHost.h"

namespace kalim {
namespace {

// Counts how often text is measured. Graphemes are half the font size wide, lines 1.1 times high.
struct CountingDevice : test::RecordingDevice {
    std::vector<double> advances(std::string_view text, const gfx::Font& font) override {
        ++count;
        return RecordingDevice::advances(text, font);
    }
    int count = 0;
};

struct MDrawTextTest : testing::Test {
    static std::shared_ptr<MDrawText> textIn(const gfx::Rect& box, const std::string& string,
                                             double fontSize) {
        const auto text = MDrawText::initWithStartPoint(box.origin);
        text->setEndPoint({box.maxX(), box.maxY()});
        text->setFontSize(fontSize);
        text->setText(string);
        text->setColor(gfx::makeColor(1, 0, 0));
        return text;
    }

    std::shared_ptr<CountingDevice> device = std::make_shared<CountingDevice>();
    test::TestHost host{{.device = device}};
};

TEST_F(MDrawTextTest, AFontSizeIsOneOfFivePens) {
    const auto text = MDrawText::initWithStartPoint({0, 0});
    EXPECT_EQ(text->fontSize(), 16);
    const struct {
        double fontSize, lineWidth, adjust;
    } cases[] = {{12, 2, 1},  {12.5, 7, 2}, {18, 7, 2}, {19, 12, 3},
                 {30, 18, 4}, {31, 28, 5},  {90, 28, 5}};
    for (const auto& pen : cases) {
        text->setFontSize(pen.fontSize);
        EXPECT_EQ(text->lineWidth(), pen.lineWidth) << pen.fontSize;
        EXPECT_EQ(text->getRectAdjustForLineWidth(), pen.adjust) << pen.fontSize;
    }
}

TEST_F(MDrawTextTest, AnotherPenResizesTheBoxAndKeepsItsLines) {
    // 5 graphemes of 6 points and the margins; one line of ceil(13.2) * 1.2.
    const auto text = textIn({10, 20, 40, 17}, "hello", 12);
    text->setLineWidth(28);
    EXPECT_EQ(text->frame(), gfx::Rect(10, 20, 110, 53));
    text->setLineWidth(2);
    EXPECT_EQ(text->frame(), gfx::Rect(10, 20, 40, 17));
}

TEST_F(MDrawTextTest, MeasuresWholePoints) {
    const auto text = textIn({0, 0, 200, 100}, "x", 10);
    EXPECT_EQ(text->measureCoreTextSize(""), gfx::Size());
    EXPECT_EQ(text->measureCoreTextSize("abc"), (gfx::Size{15, 14})) << "11 * 1.2";
    EXPECT_EQ(text->measureCoreTextSize("ab\nabcd"), (gfx::Size{20, 26})) << "11 + ceil(11 * 1.3)";
    text->setEndPoint({31, 100});
    // Room for four graphemes, so for one word a line.
    EXPECT_EQ(text->measureCoreTextSize("abc abc abc"), (gfx::Size{15, 37}));
}

TEST_F(MDrawTextTest, TheHandleFitsTheFontToTheArea) {
    // Ten graphemes, eleven code points.
    const auto text = textIn({0, 0, 60, 40}, "caf\u0065\u0301 12345", 12);
    EXPECT_TRUE(text->hitOnHandle({60, 40}));
    EXPECT_EQ(text->moveDirection(), MoveDirection::BottomRight);
    text->moveByOffsetEndPoint({40, 0}, {100, 40});
    // sqrt(4000 / 20); counting code points it would be 13.
    EXPECT_EQ(text->fontSize(), 14);
    text->moveByOffsetEndPoint({-500, -500}, {});
    EXPECT_EQ(text->frame(), gfx::Rect(0, 0, 30, 20));
    EXPECT_EQ(text->fontSize(), 5);
}

TEST_F(MDrawTextTest, ShrinksTheFontUntilTheTextFitsItsBox) {
    const struct {
        double height, expected;
    } cases[] = {
        {53, 40},  // fits: ceil(44) * 1.2
        {8, 4},    // 45 over, 24; 25 over, 18; 16, 14; 12, 10; 6, 8; 3, 6; 1, 4
        {20, 14},  // 33 over, 30; 20, 26; 15, 22; 10, 20; 7, 18; 4, 16; 2, 14
    };
    for (const auto& box : cases) {
        const auto text = textIn({0, 0, 400, box.height}, "x", 40);
        text->reSetFont("x");
        EXPECT_EQ(text->fontSize(), box.expected) << box.height;
    }
    // One grapheme wider than the box less 4, in its height at once.
    const auto narrow = textIn({0, 0, 20, 100}, "\u4e2d", 40);
    EXPECT_EQ(narrow->reSetFont("\u4e2d").origin.x, 2);
    EXPECT_EQ(narrow->fontSize(), 16) << "24 over, 34; 18, 30; 14, 26; 10, 24; 8, 6, 4 and 2 over";
}

TEST_F(MDrawTextTest, IsFilledOverItsOutline) {
    const auto text = textIn({10, 20, 100, 42}, "ab\ncd", 10);
    test::RecordingContext context;
    text->draw(context);
    // 26 of 42 points high: 8 to spare above, 1 for the outline; the baseline 8 below.
    EXPECT_EQ(context.takeLines(),
              (std::vector<std::string>{
                  R"(outline "ab" at=(15,37) size=10 bold #FFFFFFFF width=2 cap=round join=round)",
                  R"(outline "cd" at=(15,48) size=10 bold #FFFFFFFF width=2 cap=round join=round)",
                  R"(text "ab" at=(15,37) size=10 bold #FF0000FF)",
                  R"(text "cd" at=(15,48) size=10 bold #FF0000FF)"}));
    device->count = 0;
    text->draw(context);
    text->setMoveDirection(MoveDirection::Body);
    text->moveByOffsetEndPoint({5, 5}, {});
    text->draw(context);
    EXPECT_EQ(device->count, 0) << "nothing has to be measured again";
}

TEST_F(MDrawTextTest, ASnapshotRestoresTextFontAndBox) {
    const auto text = textIn({0, 0, 100, 40}, "one", 12);
    text->updatefeature();
    text->setText("two");
    text->setFontSize(24.1);
    text->setEndPoint({50, 60});
    text->updatefeature();
    text->undo();
    EXPECT_EQ(text->text(), "one");
    EXPECT_EQ(text->endPoint(), (gfx::Point{100, 40}));
    text->redo();
    EXPECT_EQ(text->fontSize(), static_cast<double>(24.1F));
    text->setFeature(nullptr);
    EXPECT_EQ(text->text(), "two");
}

TEST_F(MDrawTextTest, SurvivesHostileTexts) {
    const auto text = textIn({0, 0, 30, 20}, "a\xff\xc3z", 40);
    EXPECT_EQ(text->text(), "a\uFFFD\uFFFDz");
    std::string endless;
    while (endless.size() < 300000)
        endless += "\u4e2d";
    text->setText(endless);
    test::RecordingContext context;
    text->draw(context);
    EXPECT_EQ(text->fontSize(), 1);
    text->setMoveDirection(MoveDirection::BottomRight);
    text->moveByOffsetEndPoint({1, 1}, {});
    EXPECT_EQ(text->fontSize(), 1);
    EXPECT_FALSE(textIn({0, 0, 30, 20}, "", 40)->isDrawVaild());
}

TEST(MDrawText, MeasuresNothingWithoutAFont) {
    struct Fontless : test::RecordingDevice {
        std::vector<double> advances(std::string_view text, const gfx::Font& font) override {
            return std::vector<double>(RecordingDevice::advances(text, font).size());
        }
        gfx::LineMetrics lineMetrics(const gfx::Font&) override { return {}; }
    };
    const test::TestHost host({.device = std::make_shared<Fontless>()});
    const auto text = MDrawText::initWithStartPoint({0, 0});
    text->setText("abc");
    EXPECT_EQ(text->measureCoreTextSize("abc"), gfx::Size());
    text->setEndPoint({50, 50});
    test::RecordingContext context;
    text->draw(context);
    EXPECT_EQ(text->fontSize(), 16);
}

}  // namespace
}  // namespace kalim
