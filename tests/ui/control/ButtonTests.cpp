#include "kalimkit/ui/control/Button.h"

#include <gtest/gtest.h>

#include "kalimkit/ui/control/ImageView.h"
#include "kalimkit/ui/control/Label.h"
#include "tests/ui/Stage.h"

namespace kalim::ui {

namespace {

using test::Lines;

// At size 10 a letter is 5 wide, an ellipsis too; a line is 10 high, its baseline at 8, and the
// next one starts 11 below it.
struct ButtonTest : testing::Test, test::Stage {
    static Lines drawn(View& view) {
        test::RecordingContext context;
        view.renderIn(context);
        return context.takeLines();
    }
    gfx::ImageRef image(gfx::Size size) {
        return environment().device().makeImage(
            gfx::Bitmap(static_cast<int>(size.width), static_cast<int>(size.height)), 1,
            gfx::ImageOrientation::Up);
    }
};

TEST_F(ButtonTest, PutsThePictureLeftOfTheTitleInTheMiddle) {
    // In the 100 x 40 of the button less the insets: (10, 0) to (100, 30).
    const struct {
        const char* title;
        gfx::Size image;
        gfx::Rect imageRect;
        gfx::Rect titleRect;
    } cases[] = {
        {"abcd", {}, {}, {45, 10, 20, 10}},
        {"", {20, 10}, {45, 10, 20, 10}, {}},
        {"abcd", {20, 10}, {31, 10, 20, 10}, {59, 10, 20, 10}},
        // Shrunk to the height.
        {"", {60, 60}, {40, 0, 30, 30}, {}},
        // The title gives way.
        {"abcdefghijklmnopqrst", {20, 10}, {10, 10, 20, 10}, {38, 10, 62, 10}},
    };
    for (const auto& each : cases) {
        const auto button = Button::initWithFrame({5, 5, 100, 40});
        button->setContentEdgeInsets({0, 10, 10, 0});
        button->setTitleFont({"", 10});
        button->setTitle(each.title);
        if (!each.image.isEmpty()) button->setImage(image(each.image));
        EXPECT_EQ(button->imageRect(), each.imageRect) << each.title;
        EXPECT_EQ(button->titleRect(), each.titleRect) << each.title;
    }
}

TEST_F(ButtonTest, FallsBackToTheNormalLooksAndFadesThePicture) {
    const auto button = Button::initWithFrame({0, 0, 48, 20});
    button->setTitleFont({"", 10});
    button->setTitle("a");
    button->setImage(image({10, 10}));
    button->setTitle("s", ControlState::Selected);
    button->setTitleColor(gfx::makeColor(1, 0, 0), ControlState::Highlighted);
    button->setBackgroundImage(image({2, 2}), ControlState::Disabled);
    const std::string icon = "raster 10x10@1 rect=(12.5,5,10,10)";
    const std::string place = "\" at=(30.5,13) size=10 ";
    EXPECT_EQ(drawn(*button), (Lines{icon, "text \"a" + place + "#FFFFFFFF"}));
    button->setSelected(true);
    EXPECT_EQ(drawn(*button), (Lines{icon, "text \"s" + place + "#FFFFFFFF"}));
    button->setHighlighted(true);
    EXPECT_EQ(drawn(*button), (Lines{icon + " alpha=0.6", "text \"a" + place + "#FF0000FF"}));
    button->setEnabled(false);
    EXPECT_EQ(drawn(*button), (Lines{"raster 2x2@1 rect=(0,0,48,20)", icon + " alpha=0.5",
                                     "text \"a" + place + "#FFFFFFFF"}));
    button->setImage(image({10, 10}), ControlState::Disabled);
    EXPECT_EQ(drawn(*button)[1], icon);
    EXPECT_EQ(button->intrinsicContentSize(), (gfx::Size{23, 10}));

    EXPECT_EQ(button->accessibilityLabel(), "a") << "its title unless it is named";
    EXPECT_EQ(button->accessibilityRole(), AccessibilityRole::Button);
    button->setAccessibilityLabel("Close");
    button->setAccessibilityRole(AccessibilityRole::RadioButton);
    EXPECT_EQ(button->accessibilityLabel(), "Close");
    EXPECT_EQ(button->accessibilityRole(), AccessibilityRole::RadioButton);
}

TEST_F(ButtonTest, LabelsAlignBreakAndCutTheirText) {
    const struct {
        const char* text;
        TextAlignment alignment;
        std::size_t mostLines;
        gfx::Size size;
        Lines lines;
    } cases[] = {
        {"abcd", TextAlignment::Center, 1, {40, 20}, {"\"abcd\" at=(10,13)"}},
        {"abcd", TextAlignment::Left, 1, {40, 20}, {"\"abcd\" at=(0,13)"}},
        {"abcd", TextAlignment::Right, 1, {40, 20}, {"\"abcd\" at=(20,13)"}},
        {"abcdefghij", TextAlignment::Left, 1, {40, 20}, {"\"abcdefg…\" at=(0,13)"}},
        // The blank before the ellipsis is not shown.
        {"ab cdefgh", TextAlignment::Left, 1, {20, 20}, {"\"ab…\" at=(0,13)"}},
        {"ab\ncd", TextAlignment::Left, 1, {40, 20}, {"\"ab…\" at=(0,13)"}},
        {"ab\ncd", TextAlignment::Center, 0, {40, 31}, {"\"ab\" at=(15,13)", "\"cd\" at=(15,24)"}},
        // Two lines fit the height.
        {"ab cd ef", TextAlignment::Left, 0, {20, 31}, {"\"ab \" at=(0,13)", "\"cd…\" at=(0,24)"}},
        {"abcd", TextAlignment::Center, 1, {2, 20}, {"\"…\" at=(0,13)"}},
        // Whatever a backend takes a paragraph of Hebrew for.
        {"אב. ab",
         TextAlignment::Left,
         0,
         {15, 31},
         {"\"\u2067אב. \" at=(0,13)", "\"\u2067ab\" at=(0,24)"}},
    };
    for (const auto& each : cases) {
        const auto label = Label::initWithFrame({{}, each.size});
        label->setFont({"", 10});
        label->setText(each.text);
        label->setTextAlignment(each.alignment);
        label->setNumberOfLines(each.mostLines);
        Lines lines = drawn(*label);
        std::erase_if(lines, [](const auto& line) { return !line.starts_with("text "); });
        for (std::string& line : lines)
            line = line.substr(5, line.find(" size=") - 5);
        EXPECT_EQ(lines, each.lines) << each.text;
    }

    const auto label = Label::initWithFrame({7, 9, 1, 1});
    label->setFont({"", 11});
    label->setText("abc de");
    EXPECT_EQ(label->sizeThatFits({}), (gfx::Size{33, 11}));
    label->setNumberOfLines(0);
    // Lines are 12.1 apart.
    EXPECT_EQ(label->sizeThatFits({20, 0}), (gfx::Size{17, 24}));
    label->sizeToFit();
    EXPECT_EQ(label->frame(), gfx::Rect(7, 9, 33, 11));
    EXPECT_EQ(drawn(*label).size(), 1u);
}

TEST_F(ButtonTest, PicturesFillTheirViewByTheMode) {
    const auto view = ImageView::initWithImage(image({40, 20}));
    EXPECT_EQ(view->frame(), gfx::Rect(0, 0, 40, 20));
    view->setFrame({0, 0, 20, 30});
    const std::pair<ContentMode, gfx::Rect> cases[] = {{ContentMode::ScaleToFill, {0, 0, 20, 30}},
                                                       {ContentMode::AspectFit, {0, 10, 20, 10}},
                                                       {ContentMode::AspectFill, {-20, 0, 60, 30}},
                                                       {ContentMode::Center, {-10, 5, 40, 20}}};
    for (const auto& [mode, rect] : cases) {
        view->setContentMode(mode);
        EXPECT_EQ(view->imageRect(), rect);
    }
    EXPECT_EQ(drawn(*view), (Lines{"clip [M 0,0 L 20,0 L 20,30 L 0,30 Z]",
                                   "raster 40x20@1 rect=(-10,5,40,20)", "unclip"}));
    view->setImage(nullptr);
    EXPECT_EQ(drawn(*view), Lines{});
}

}  // namespace

}  // namespace kalim::ui
