#include "kalimkit/ui/control/TextEditor.h"

#include <gtest/gtest.h>

#include "tests/ui/Stage.h"

namespace kalim::ui {

namespace {

struct TextEditorTest : testing::Test, test::Stage {
    // The text with "[" at the anchor and "|" at the head, or "|" alone at the caret.
    std::string shown() const {
        std::string text = editor.text();
        const TextSelection s = editor.selection();
        text.insert(s.end(), s.head == s.end() ? "|" : "[");
        if (!s.isEmpty()) text.insert(s.begin(), s.head == s.begin() ? "|" : "[");
        return text;
    }
    void start(const std::string& text, std::size_t anchor, std::size_t head) {
        editor.setText(text);
        editor.select({anchor, head});
    }

    TextEditor editor{environment().device()};
};

TEST_F(TextEditorTest, InsertsInPlaceOfTheSelection) {
    start("hello", 4, 1);
    editor.insert("字\r\n\x01!\xff");
    EXPECT_EQ(shown(), "h字\n!\uFFFD|o");
    editor.setText("ab");
    EXPECT_EQ(shown(), "ab|");
    EXPECT_FALSE(editor.canUndo());
}

TEST_F(TextEditorTest, DeletesGraphemesAndWords) {
    start("one two e\u0301字", 0, 11);
    editor.deleteBackward(TextUnit::Grapheme);
    EXPECT_EQ(shown(), "|字");
    start("one e\u0301字", 7, 7);
    editor.deleteBackward(TextUnit::Grapheme);
    EXPECT_EQ(shown(), "one |字");
    editor.deleteForward(TextUnit::Grapheme);
    editor.deleteForward(TextUnit::Grapheme);
    EXPECT_EQ(shown(), "one |");
    editor.deleteBackward(TextUnit::Word);
    editor.deleteBackward(TextUnit::Word);
    EXPECT_EQ(shown(), "|");
    start("one two\nx", 0, 0);
    editor.deleteForward(TextUnit::Word);
    EXPECT_EQ(shown(), "| two\nx");
    start("a\r\nb", 3, 3);
    editor.deleteBackward(TextUnit::Grapheme);
    EXPECT_EQ(shown(), "a|b");
}

TEST_F(TextEditorTest, MovesAndExtends) {
    start("one two\nthree", 4, 4);
    const struct {
        TextMove move;
        bool extends;
        std::string shown;
    } steps[] = {{TextMove::Right, false, "one t|wo\nthree"},
                 {TextMove::WordRight, true, "one t[wo|\nthree"},
                 {TextMove::Left, false, "one t|wo\nthree"},
                 {TextMove::LineStart, true, "|one t[wo\nthree"},
                 {TextMove::Right, false, "one t|wo\nthree"},
                 {TextMove::LineEnd, false, "one two|\nthree"},
                 {TextMove::LineDown, false, "one two\nthree|"},
                 // It still wants to be where it came from.
                 {TextMove::LineUp, false, "one two|\nthree"},
                 {TextMove::LineUp, true, "|one two[\nthree"},
                 {TextMove::TextEnd, false, "one two\nthree|"},
                 {TextMove::WordLeft, true, "one two\n|three["},
                 {TextMove::TextStart, false, "|one two\nthree"}};
    for (const auto& step : steps) {
        editor.move(step.move, step.extends);
        EXPECT_EQ(shown(), step.shown);
    }
    editor.selectWordAt(5);
    EXPECT_EQ(shown(), "one [two|\nthree");
    editor.selectAll();
    EXPECT_EQ(shown(), "[one two\nthree|");
}

TEST_F(TextEditorTest, KeepsAnInputMethodsTextApartUntilItIsDone) {
    start("abcd", 1, 3);
    editor.setMarkedText("ni", {1, 2});
    EXPECT_EQ(shown(), "an[i|d");
    editor.setMarkedText("nihao", {5, 5});
    EXPECT_EQ(shown(), "anihao|d");
    EXPECT_EQ(editor.markedRange(), gfx::TextRange(1, 6));
    editor.insert("你好");
    EXPECT_EQ(shown(), "a你好|d");
    EXPECT_FALSE(editor.markedRange());
    editor.undo();
    EXPECT_EQ(shown(), "a[bc|d");
    editor.redo();
    EXPECT_EQ(shown(), "a你好|d");

    editor.setMarkedText("x", {1, 1});
    editor.setMarkedText("", {0, 0});
    EXPECT_EQ(shown(), "a你好|d");
    editor.setMarkedText("xy", {2, 2});
    editor.move(TextMove::Left, false);
    EXPECT_EQ(shown(), "a你好x|yd");
    EXPECT_FALSE(editor.markedRange());
    editor.undo();
    EXPECT_EQ(shown(), "a你好|d");
}

TEST_F(TextEditorTest, TakesBackWhatWasTypedAsAWhole) {
    for (const char* letter : {"a", "b", "\n", "c", "d"})
        editor.insert(letter);
    editor.deleteBackward(TextUnit::Grapheme);
    editor.deleteBackward(TextUnit::Grapheme);
    editor.insert("e");
    editor.move(TextMove::Left, false);
    editor.insert("f");
    const std::string all[] = {"ab\n|e", "ab\n|", "ab\ncd|", "ab\n|", "|", "|"};
    for (const std::string& expected : all) {
        editor.undo();
        EXPECT_EQ(shown(), expected);
    }
    EXPECT_FALSE(editor.canUndo());
    for (int i = 0; i < 4; ++i)
        editor.redo();
    EXPECT_EQ(shown(), "ab\ne|");
    editor.insert("g");
    EXPECT_FALSE(editor.canRedo());
}

TEST_F(TextEditorTest, CutsAndPastesThroughTheEnvironment) {
    start("one two", 0, 4);
    editor.cut();
    EXPECT_EQ(environment().clipboardText(), "one ");
    EXPECT_EQ(shown(), "|two");
    editor.copy();
    EXPECT_EQ(environment().clipboardText(), "one ");
    environment().setClipboardText("1\r\n2");
    editor.selectAll();
    editor.paste();
    EXPECT_EQ(shown(), "1\n2|");
    editor.undo();
    editor.undo();
    EXPECT_EQ(shown(), "[one |two");
}

}  // namespace

}  // namespace kalim::ui
