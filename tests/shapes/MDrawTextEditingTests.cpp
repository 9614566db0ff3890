#include <gtest/gtest.h>

#include "kalimkit/shapes/MDrawText.h"
#include "tests/support/RecordingContext.h"
#include "tests/support/RecordingDevice.h"
#include "tests/support/TestHost.h"

namespace kalim {
namespace {

using Lines = std::vector<std::string>;

// The canvas: answers for its scale, notes what it is told.
struct Canvas : MDrawTextDelegate {
    void drawTextBeginEdittingText(MDrawText&) override { told.emplace_back("begin"); }
    void drawTextDidEndEditText(MDrawText& text) override {
        told.emplace_back(text.isDrawVaild() ? "end" : "end, invalid");
        if (onEnd) onEnd();
    }
    void drawTextAskForSaveState(MDrawText&) override { told.emplace_back("save"); }
    void drawTextDidChangeTextViewHeight(MDrawText&) override { told.emplace_back("height"); }
    void drawTextKeyboardWillShow(MDrawText& text) override {
        told.push_back("keyboard " + std::to_string(static_cast<int>(text.curKeyboardHeight())));
    }
    void drawTextKeyboardWillHidden(MDrawText&) override { told.emplace_back("no keyboard"); }
    std::optional<gfx::Rect> drawTextAskForCurrentCtxRect(const MDrawText&) override {
        return area;
    }
    std::optional<double> drawTextAskForCurrentCtxScale(const MDrawText&) override { return scale; }
    std::optional<gfx::AffineTransform> drawTextAskForCurrentCtxTransform(
        const MDrawText&) override {
        return gfx::AffineTransform::scaling(scale, scale);
    }
    Lines take() { return std::exchange(told, {}); }

    double scale = 1;
    gfx::Rect area{0, 0, 390, 844};
    Lines told;
    std::function<void()> onEnd;
};

struct MDrawTextEditing : testing::Test {
    std::shared_ptr<MDrawText> textAt(gfx::Point start, double fontSize = 16) {
        const auto text = MDrawText::initWithViewStartPoint(host.window().rootView(), start);
        text->setDelegate(canvas);
        text->setColor(gfx::makeColor(1, 0, 0));
        text->setFontSize(fontSize);
        return text;
    }
    // What of the text each line shows, as drawn.
    static Lines drawn(const Lines& calls) {
        Lines lines;
        for (const std::string& call : calls) {
            if (call.starts_with("text ")) lines.push_back(call.substr(0, call.find("\" at=")));
        }
        return lines;
    }

    test::TestHost host{{.device = std::make_shared<test::RecordingDevice>()}};
    std::shared_ptr<Canvas> canvas = std::make_shared<Canvas>();
};

TEST_F(MDrawTextEditing, TypesIntoAFieldThatGrowsAndLeavesABoxAroundTheText) {
    const struct {
        double scale;
        gfx::Size empty, typed, box;
    } cases[] = {
        // Font 16: "hello" is 40 by 17.6 points, one line measures ceil(17.6) * 1.2.
        {1, {100, 33}, {100, 34}, {50, 34}},
        {2, {100, 66}, {100, 52}, {50, 26}},
        // 8.8 and the margins of 16 fit into 33 points, so the height is the measured one.
        {0.5, {50, 8.25}, {50, 25}, {50, 22}},
    };
    for (const auto& step : cases) {
        canvas->scale = step.scale;
        const auto text = textAt({50, 60});
        text->drawUp({50, 60});
        ASSERT_TRUE(text->isEdittingText());
        const gfx::Point origin{50 * step.scale, 60 * step.scale};
        EXPECT_EQ(text->textView()->frame(), gfx::Rect(origin, step.empty));
        text->textView()->insertText("hello");
        EXPECT_EQ(text->textView()->frame(), gfx::Rect(origin, step.typed));
        EXPECT_EQ(text->text(), "hello");
        text->finalize();
        EXPECT_EQ(text->frame(), gfx::Rect({50, 60}, step.box)) << step.scale;
        EXPECT_EQ(text->textView()->superview(), nullptr);
        EXPECT_EQ(canvas->take(), (Lines{"begin", "height", "end", "save"}));
        text->startEdittingText();
        EXPECT_EQ(text->textView()->frame(), gfx::Rect(origin, step.box * step.scale));
        text->stopEdittingText();
        EXPECT_EQ(text->frame(), gfx::Rect({50, 60}, step.box));
        EXPECT_EQ(canvas->take(), (Lines{"begin", "end"})) << "nothing has changed";
    }
}

TEST_F(MDrawTextEditing, BreaksTheFinishedTextAsItWasSeen) {
    const Lines texts = {"one two three four five six seven eight nine ten eleven twelve",
                         "\u4e2d\u6587\u6587\u5b57\u4e2d\u6587\u6587\u5b57\u4e2d\u6587 and latin "
                         "words, mixed \u4e2d\u6587\u6587\u5b57\u4e2d\u6587\u6587\u5b57\u4e2d",
                         "short", "a\n\nb", "iiiiiiiiiiiiiiiiiiiiiiiiiiiiiiiiiiiiiiiiiiiiiiiiiiii"};
    for (const double scale : {0.5, 0.86, 1.0, 1.37, 2.0}) {
        for (const std::string& string : texts) {
            canvas->scale = scale;
            const auto text = textAt({30, 40}, 18);
            text->startEdittingText();
            text->textView()->insertText(string);
            for (const char* const round : {"first", "again"}) {
                host.window().rootView()->setNeedsDisplay();
                host.window().display();
                auto& seen = test::RecordingDevice::recording(*host.window().surface());
                const Lines lines = drawn(seen.takeLines());
                text->stopEdittingText();
                EXPECT_EQ(text->fontSize(), 18);
                EXPECT_EQ(text->lineWidth(), 7);
                test::RecordingContext context;
                text->draw(context);
                EXPECT_EQ(drawn(context.lines()), lines) << scale << string << round;
                host.window().rootView()->setNeedsDisplay();
                host.window().display();
                seen.takeLines();
                text->startEdittingText();
            }
            text->stopEdittingText();
        }
    }
}

TEST_F(MDrawTextEditing, StartsOnlyWhereItMayBeAndThereIsAView) {
    const auto outside = textAt({400, 10});
    outside->startEdittingText();
    EXPECT_FALSE(outside->isEdittingText());
    const auto orphan = textAt({10, 10});
    orphan->setDelegate({});
    orphan->startEdittingText();
    EXPECT_FALSE(orphan->isEdittingText());
    const auto viewless = MDrawText::initWithStartPoint({10, 10});
    viewless->setDelegate(canvas);
    viewless->drawUp({10, 10});
    EXPECT_FALSE(viewless->isEdittingText());
    EXPECT_EQ(canvas->take(), Lines());
}

TEST_F(MDrawTextEditing, MovesLeftWhereThereIsNoRoom) {
    const auto text = textAt({350, 60});
    text->drawUp({350, 60});
    // 20 graphemes of 8 points and the insets; the field ends 10 points before the edge.
    text->textView()->insertText("aaaaaaaaaaaaaaaaaaaa");
    EXPECT_EQ(text->textView()->frame().maxX(), 380);
    text->stopEdittingText();
    EXPECT_EQ(text->startPoint(), (gfx::Point{210, 60}));
}

// The side at which lines stand stays in its place while they are typed and when they are done.
TEST_F(MDrawTextEditing, WidensAwayFromTheSideAtWhichLinesStand) {
    const std::string letters(20, 'a');
    const struct {
        const char* align;
        gfx::Point start;
        // The field of twenty letters, as far as there is room; of no more than it has room for at
        // first; and the box of what is typed then.
        double left, right, few, box;
    } cases[] = {{"start", {100, 60}, 100, 270, 100, 100},
                 {"center", {100, 60}, 65, 235, 100, 125},
                 {"end", {100, 60}, 30, 200, 100, 150},
                 {"end", {40, 60}, 10, 180, 80, 130}};
    for (const auto& step : cases) {
        const auto text = textAt(step.start);
        text->setProperty("align", std::string(step.align));
        text->drawUp(step.start);
        text->textView()->insertText(letters);
        EXPECT_EQ(text->textView()->frame().minX(), step.left) << step.align;
        EXPECT_EQ(text->textView()->frame().maxX(), step.right) << step.align;
        text->textView()->handleKey("ctrl+a");
        text->textView()->insertText("hello");
        EXPECT_EQ(text->textView()->frame().minX(), step.few) << step.align;
        text->finalize();
        EXPECT_EQ(text->frame(), gfx::Rect(step.box, 60, 50, 34)) << step.align;
    }
}

TEST_F(MDrawTextEditing, DrawsNothingItselfMeanwhile) {
    const auto text = textAt({50, 60});
    text->setText("abc");
    text->startEdittingText();
    text->setSelected(true);
    test::RecordingContext context;
    text->draw(context);
    EXPECT_EQ(context.takeLines(), Lines());
    host.window().display();
    const Lines field = test::RecordingDevice::recording(*host.window().surface()).takeLines();
    const auto bars = std::ranges::count_if(field, [](const std::string& line) {
        return line.starts_with("stroke ") && line.find("#FF0000FF width=2") != line.npos;
    });
    EXPECT_EQ(bars, 2);
    text->stopEdittingText();
    text->draw(context);
    EXPECT_FALSE(context.takeLines().empty());
}

TEST_F(MDrawTextEditing, TellsOfTheKeyboardWhileItIsEdited) {
    ui::Keyboard& keyboard = host.environment().keyboard();
    const auto text = textAt({50, 60});
    text->startEdittingText();
    keyboard.setHeight(300, {390, 844});
    keyboard.hide();
    text->textView()->insertText("a");
    text->stopEdittingText();
    canvas->take();
    keyboard.setHeight(300, {390, 844});
    EXPECT_EQ(canvas->take(), Lines());
    keyboard.hide();
    text->startEdittingText();
    keyboard.setHeight(250, {390, 844});
    EXPECT_EQ(canvas->take(), (Lines{"begin", "keyboard 250"}));
}

TEST_F(MDrawTextEditing, ATextMayBeDroppedAtAnyMoment) {
    auto text = textAt({50, 60});
    text->startEdittingText();
    const std::shared_ptr<ui::View> field = text->textView();
    canvas->onEnd = [&] { text = nullptr; };
    text->finalize();
    EXPECT_EQ(text, nullptr);
    EXPECT_EQ(canvas->take(), (Lines{"begin", "end, invalid"}));
    text = textAt({50, 60});
    text->startEdittingText();
    text = nullptr;
    EXPECT_TRUE(host.window().rootView()->subviews().empty());
    host.environment().keyboard().setHeight(300, {390, 844});
    EXPECT_EQ(canvas->take(), Lines{"begin"});
}

TEST_F(MDrawTextEditing, AHugePasteEndsThirtyPointsBeforeTheCanvas) {
    const auto text = textAt({50, 60});
    text->startEdittingText();
    std::string paste;
    while (paste.size() < 100000)
        paste += "lorem ipsum ";
    text->textView()->insertText(paste);
    EXPECT_EQ(text->textView()->frame().size.height, 814);
    text->stopEdittingText();
    EXPECT_EQ(text->frame().size.height, 814);
}

}  // namespace
}  // namespace kalim
