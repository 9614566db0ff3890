#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kalimkit/canvas/ToolType.h"
#include "kalimkit/shapes/MDrawText.h"
#include "kalimkit/theme/ColorName.h"
#include "tests/canvas/CanvasHost.h"

namespace kalim {
namespace {

// A picture in the middle of the view, with a line, a patch and a text on it.
struct MDrawViewAccessibilityTest : testing::Test {
    MDrawViewAccessibilityTest() {
        canvas.setSnipImage(host.plainPicture(300, 400, {1, 1, 1}));
        canvas.setDrawColorIsTranslucent(gfx::makeColor(1, 0, 0), false);
        line = host.draw(ToolType::Line, {60, 400}, {60, 500});
        host.draw(ToolType::Mosaic, {280, 560}, {330, 610});
        canvas.setDrawColorIsTranslucent(gfx::makeColor(0, 0, 0.5), false);
        host.pick(ToolType::Text);
        host.tap({150, 400});
        canvas.curEdittingTextTool()->textView()->insertText("你好");
        canvas.finishEditText();
        text = canvas.tools().back();
        canvas.selectNone();
        host.events->take();
    }
    ui::AccessibilityElement element(std::size_t index) {
        return canvas.accessibilityElements().at(index);
    }

    test::CanvasHost host;
    MDrawView& canvas = *host.canvas;
    ToolRef line, text;
};

TEST_F(MDrawViewAccessibilityTest, SaysOfEachToolWhatItIsAndWhereItIsSeen) {
    std::string labels;
    for (const ui::AccessibilityElement& each : canvas.accessibilityElements())
        labels += each.label + (each.isEnabled ? " " : " (disabled) ");
    EXPECT_EQ(labels, "红色直线，左侧 马赛克，右下 (disabled) 蓝色文字：你好，中间 ");
    EXPECT_EQ(element(0).role, ui::AccessibilityRole::Image);
    EXPECT_EQ(element(2).role, ui::AccessibilityRole::Text);
    EXPECT_EQ(element(0).frame, gfx::Rect(59, 399, 2, 102));
    EXPECT_EQ(element(1).frame, gfx::Rect(280, 560, 50, 50));
    for (const auto state : {ui::GestureState::Began, ui::GestureState::Ended})
        canvas.handlePinchGesture(state, 2, {0, 0});
    host.wait(1);
    // The picture's left side is that of the view now, and its middle is still on the view's.
    EXPECT_EQ(element(0).frame, gfx::Rect(28, 376, 4, 204));
}

TEST_F(MDrawViewAccessibilityTest, KeysOutliveUndo) {
    const auto key = element(2).key;
    canvas.undo();
    EXPECT_EQ(canvas.accessibilityElements().size(), 2u);
    EXPECT_FALSE(canvas.activateAccessibilityElement(key));
    canvas.redo();
    EXPECT_EQ(element(2).key, key);
}

TEST_F(MDrawViewAccessibilityTest, ActivatesAsATap) {
    const auto lineKey = element(0).key;
    const auto textKey = element(2).key;
    EXPECT_TRUE(canvas.activateAccessibilityElement(lineKey));
    EXPECT_EQ(host.events->take(),
              (std::vector<std::string>{"started", "selected", "type 6 #FF0000FF 2"}));
    EXPECT_TRUE(element(0).isSelected);
    EXPECT_TRUE(canvas.activateAccessibilityElement(textKey));
    EXPECT_TRUE(!host.isSelected(line) && host.isSelected(text)) << "instead of the other";
    EXPECT_FALSE(canvas.activateAccessibilityElement(element(1).key)) << "a patch";
    EXPECT_FALSE(canvas.activateAccessibilityElement(99));
    EXPECT_TRUE(canvas.activateAccessibilityElement(textKey));
    EXPECT_EQ(canvas.curEdittingTextTool(), text) << "the second time";
    EXPECT_EQ(canvas.accessibilityElements().size(), 2u) << "it is a field now";
    EXPECT_FALSE(canvas.activateAccessibilityElement(textKey));
    EXPECT_TRUE(canvas.activateAccessibilityElement(lineKey));
    EXPECT_TRUE(!canvas.curEdittingTextTool() && host.isSelected(line));
    EXPECT_TRUE(canvas.activateAccessibilityElement(lineKey));
    EXPECT_FALSE(canvas.hasSelectedTools()) << "a second tap lets go";
}

TEST(ColorName, IsThatOfTheNearestColour) {
    test::CanvasHost host;
    struct Case {
        const char* hex;
        const char* name;
    };
    const Case cases[] = {{"#F63434", "红色"}, {"#FFF700", "黄色"}, {"#1AA9FF", "蓝色"},
                          {"#FFFFFF", "白色"}, {"#000000", "黑色"}, {"#FF9500", "橙色"},
                          {"#34C759", "绿色"}, {"#7A1FE0", "紫色"}, {"#FF2D92", "粉色"},
                          {"#808080", "灰色"}, {"#000080", "蓝色"}, {"#FF0010", "红色"}};
    for (const Case& each : cases)
        EXPECT_EQ(colorName(gfx::makeColor(*gfx::Color::fromHex(each.hex))), each.name) << each.hex;
    EXPECT_EQ(colorName(nullptr), "");
}

}  // namespace
}  // namespace kalim
