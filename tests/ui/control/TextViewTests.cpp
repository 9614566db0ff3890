#include "kalimkit/ui/control/TextView.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "tests/ui/Stage.h"

namespace kalim::ui {

namespace {

class Delegate : public TextViewDelegate {
public:
    void textViewDidBeginEditing(TextView& /*view*/) override { heard += "begin "; }
    void textViewDidChange(TextView& view) override { heard += view.text() + " "; }
    void textViewDidEndEditing(TextView& /*view*/) override { heard += "end "; }
    std::string heard;
};

// At size 10 a letter is 5 wide and a line 11 high; the text starts at (15, 18) of the window.
struct TextViewTest : testing::Test, test::Stage {
    TextViewTest() {
        view->setFont({{}, 10});
        view->setDelegate(delegate);
        root->addSubview(view);
        window().display();
    }
    std::vector<gfx::Rect> damageOf(const auto& change) {
        window().display();
        change();
        return window().damage().rects();
    }

    std::shared_ptr<TextView> view = TextView::initWithFrame({10, 10, 110, 60});
    std::shared_ptr<Delegate> delegate = std::make_shared<Delegate>();
};

TEST_F(TextViewTest, ReportsWhatTheUserDoesAndNotWhatTheProgramDoes) {
    view->setText("set");
    EXPECT_TRUE(view->becomeFirstResponder());
    view->insertText("!");
    view->setMarkedText("x", {1, 1});
    EXPECT_TRUE(view->handleKey("shift+left"));
    EXPECT_TRUE(view->handleKey("ctrl+z"));
    EXPECT_FALSE(view->handleKey("ctrl+q"));
    EXPECT_FALSE(view->handleKey("hyper+a"));
    EXPECT_TRUE(view->resignFirstResponder());
    EXPECT_FALSE(view->resignFirstResponder());
    EXPECT_EQ(delegate->heard, "begin set! set!x set end ");
}

TEST_F(TextViewTest, LosesTheFocusWhenItCanNoLongerBeSeen) {
    const auto other = TextView::initWithFrame({0, 100, 50, 50});
    EXPECT_FALSE(other->becomeFirstResponder());
    const auto panel = View::initWithFrame({0, 0, 300, 300});
    root->addSubview(panel);
    panel->addSubview(other);
    const std::function<void()> ends[] = {
        [&] { panel->setHidden(true); },
        [&] { panel->removeFromSuperview(); },
        [&] { view->becomeFirstResponder(); },
    };
    for (const auto& end : ends) {
        panel->setHidden(false);
        root->addSubview(panel);
        ASSERT_TRUE(other->becomeFirstResponder());
        EXPECT_EQ(TextView::focusedIn(window()), other);
        environment().keyboard().setHeight(300, window().size());
        end();
        EXPECT_FALSE(other->isFirstResponder());
        EXPECT_EQ(environment().keyboard().isShown(), view->isFirstResponder());
    }
    panel->setHidden(true);
    EXPECT_FALSE(other->becomeFirstResponder());
}

TEST_F(TextViewTest, TapsPlaceTheCaretDragsSelectAndDoubleTapsSelectAWord) {
    view->setText("one two\nthree");
    one.tap({26, 20});
    EXPECT_TRUE(view->isFirstResponder());
    EXPECT_EQ(view->selection(), TextSelection(2, 2));
    EXPECT_EQ(view->caretRectInWindow(), gfx::Rect(25, 18, 2, 10));
    wait(1);
    one.down({26, 20}).moveTo({28, 21});
    EXPECT_TRUE(view->selection().isEmpty());
    one.moveTo({26, 35}).up();
    EXPECT_EQ(view->selection(), TextSelection(2, 10));
    one.tap({41, 20});
    wait(0.2);
    one.down({42, 20}).moveTo({43, 20}).up();
    EXPECT_EQ(view->selection(), TextSelection(4, 7));
    // Too late, and too far away.
    wait(1);
    one.tap({41, 20}).tap({80, 31});
    wait(0.5);
    one.tap({80, 31});
    EXPECT_EQ(view->selection(), TextSelection(13, 13));
}

TEST_F(TextViewTest, BlinksAndDrawsAgainOnlyWhatChanged) {
    view->setText("one\ntwo\nthree");
    view->becomeFirstResponder();
    using Rects = std::vector<gfx::Rect>;
    const gfx::Rect caret(40, 40, 2, 10);
    EXPECT_EQ(damageOf([&] { loop().advanceTo(0.49); }), Rects());
    loop().setFrameHandler({});
    EXPECT_EQ(damageOf([&] { wait(0.01); }), Rects({caret}));
    EXPECT_EQ(damageOf([&] { wait(0.49); }), Rects());
    EXPECT_EQ(damageOf([&] { wait(0.01); }), Rects({caret}));
    // The second line alone, a quarter of a line more above and below for what reaches out of it.
    view->setSelection({5, 5});
    EXPECT_EQ(damageOf([&] { view->insertText("x"); }), Rects({{10, 26, 110, 17}}));
    view->resignFirstResponder();
    EXPECT_EQ(damageOf([&] { wait(2); }), Rects());
}

// A first letter from right to left turns a paragraph around, the lines that keep their letters as
// well.
TEST_F(TextViewTest, DrawsAllLinesAgainThatATypedLetterTurnsAround) {
    view->setAlignment(gfx::LineAlignment::Start);
    view->setText("(aaa) bbb ccc ddd eee. fff");
    ASSERT_EQ(view->layout().lines().size(), 2u);
    view->setSelection({0, 0});
    gfx::Rect damage;
    for (const gfx::Rect& rect : damageOf([&] { view->insertText("א"); }))
        damage = damage.unionWith(rect);
    ASSERT_EQ(view->layout().lines().size(), 2u);
    EXPECT_TRUE(view->layout().isRightToLeft(0));
    EXPECT_GE(damage.maxY(), view->frame().minY() + 8 + 2 * 11);
}

TEST_F(TextViewTest, DrawsSelectionTextCompositionAndCaret) {
    view->setFrame({0, 0, 110, 60});
    view->becomeFirstResponder();
    view->insertText("ab");
    view->setMarkedText("c", {0, 1});
    view->setNeedsDisplay();
    takeDrawing();
    window().display();
    const test::Lines drawn = takeDrawing();
    const auto holds = [](const test::Lines& lines, const std::string& line) {
        return std::ranges::find(lines, line) != lines.end();
    };
    EXPECT_TRUE(holds(drawn, "fill [M 15,8 L 20,8 L 20,19 L 15,19 Z] #007AFF4D"));
    EXPECT_TRUE(holds(drawn, "text \"abc\" at=(5,16) size=10 #000000FF"));
    EXPECT_TRUE(holds(drawn, "fill [M 15,17 L 20,17 L 20,18 L 15,18 Z] #000000FF"));
    view->setTextColor(nullptr);
    view->insertText("c");
    window().display();
    const test::Lines clear = takeDrawing();
    EXPECT_TRUE(holds(clear, "fill [M 20,8 L 22,8 L 22,18 L 20,18 Z] #007AFFFF"));
    for (const std::string& line : clear)
        EXPECT_FALSE(line.starts_with("text")) << line;
}

TEST_F(TextViewTest, TellsTheSizeThatFitsAndScrollsToKeepTheCaretInSight) {
    EXPECT_EQ(view->sizeThatFits({100, 500}), gfx::Size(10, 27));
    view->setText("aaa bbb c");
    EXPECT_EQ(view->sizeThatFits({300, 500}), gfx::Size(55, 27));
    EXPECT_EQ(view->sizeThatFits({45, 500}), gfx::Size(45, 38));
    EXPECT_EQ(view->sizeThatFits({44, 500}), gfx::Size(35, 38));
    EXPECT_EQ(view->sizeThatFits({44, 30}), gfx::Size(35, 30));
    view->setText("1\n2\n3\n4\n5\n6");
    // The caret ends at 73, the inset below it at 81; the view is 60 high.
    EXPECT_EQ(view->bounds().minY(), 21);
    EXPECT_EQ(view->caretRectInWindow().maxY(), 62);
    view->handleKey("ctrl+home");
    EXPECT_EQ(view->bounds().minY(), 0);
    view->handleKey("ctrl+end");
    view->setScrollEnabled(false);
    EXPECT_EQ(view->bounds().minY(), 0);
}

struct Observer : KeyboardObserver {
    void keyboardWillShow(const gfx::Rect& frame) override { frames.push_back(frame); }
    void keyboardWillHide(const gfx::Rect& frame) override { frames.push_back(frame); }
    std::vector<gfx::Rect> frames;
};

TEST(Keyboard, TellsItsObserversWhereItWillBe) {
    Keyboard keyboard;
    const auto observer = std::make_shared<Observer>();
    keyboard.addObserver(std::make_shared<Observer>());  // it is gone at once
    keyboard.addObserver(observer);
    keyboard.addObserver(observer);
    keyboard.hide();
    keyboard.setHeight(-1, {390, 844});
    keyboard.setHeight(300, {390, 844});
    keyboard.setHeight(300, {390, 844});
    EXPECT_EQ(keyboard.frame(), gfx::Rect(0, 544, 390, 300));
    EXPECT_EQ(observer->frames, std::vector<gfx::Rect>({{0, 544, 390, 300}}));
    keyboard.hide();
    EXPECT_EQ(observer->frames.back(), gfx::Rect(0, 844, 390, 300));
    keyboard.removeObserver(*observer);
    keyboard.setHeight(200, {390, 844});
    EXPECT_EQ(observer->frames.size(), 2u);
}

}  // namespace

}  // namespace kalim::ui
