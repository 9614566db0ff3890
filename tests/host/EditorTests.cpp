#include "kalimkit/Editor.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "kalimkit/backend/cairo/CairoDevice.h"
#include "kalimkit/host/seat/EditorSeat.h"

namespace kalim::test {

namespace {

Editor::Picture grey() {
    const std::vector<std::uint8_t> pixels(std::size_t{300} * 200 * 4, 0x80);
    return Editor::Picture::copy(pixels.data(), 300, 200, 1200, Editor::Pixels::Bgra);
}

// An editor as a host drives it, with the time that a user takes.
class EditorTest : public testing::Test {
protected:
    static Editor::Settings english() {
        Editor::Settings settings;
        settings.language = "en";
        return settings;
    }
    void turn(double seconds = 1) {
        now += seconds;
        editor->tick(now);
        editor->draw();
    }
    void drag(double x, double y, double toX, double toY) {
        editor->pointerPressed(x, y);
        editor->pointerMoved((x + toX) / 2, (y + toY) / 2);
        editor->pointerMoved(toX, toY);
        editor->pointerReleased(toX, toY);
        turn();
    }
    static void TearDownTestSuite() { gfx::CairoDevice::releaseFontCaches(); }

    double now = 1000;
    std::unique_ptr<Editor> editor = std::make_unique<Editor>(grey(), 300, 600, english());
};

}  // namespace

TEST_F(EditorTest, HandsOverWhatWasDrawnAndMayBeDestroyedByWhoeverGetsIt) {
    turn();
    EXPECT_FALSE(editor->hasWork());
    EXPECT_TRUE(editor->keyPressed("r"));
    drag(50, 250, 250, 350);
    EXPECT_TRUE(editor->hasWork());
    Editor::Picture sent;
    editor->onFinish([&](const Editor::Picture& picture) {
        sent = picture;
        editor = nullptr;
    });
    editor->keyPressed("ctrl+s");
    EXPECT_EQ(editor, nullptr);
    ASSERT_TRUE(sent);
    EXPECT_EQ(sent.width(), 300);
    EXPECT_EQ(sent.height(), 200);
    // The editor shows the picture pixel for pixel from y 200 on, and the rectangle's left side
    // lies at x 50.
    const auto pixel = [&](int x, int y) {
        return sent.pixels() + std::ptrdiff_t{4} * (y * 300 + x);
    };
    EXPECT_EQ(*pixel(150, 20), 0x80) << "beside the rectangle";
    EXPECT_NE(*pixel(50, 100), 0x80) << "on it";
    EXPECT_EQ(Editor::Picture::decode(sent.png().data(), sent.png().size()).width(), 300);
}

TEST_F(EditorTest, AFrameTellsWhatHasChangedUntilNothingIsDueAnyMore) {
    EXPECT_EQ(editor->nextTick(), 0.0);
    editor->tick(now);
    Editor::Frame frame = editor->draw();
    ASSERT_NE(frame.pixels, nullptr);
    EXPECT_EQ(frame.width, 300);
    ASSERT_EQ(frame.changed.size(), 1U);
    EXPECT_EQ(frame.changed[0].height, 600);
    for (std::size_t y = 0; y < 600; y += 7)
        EXPECT_EQ(frame.pixels[y * frame.stride + 3], 0xFF) << "opaque, row " << y;
    while (const auto next = editor->nextTick()) {
        ASSERT_LT(*next, 1020);
        editor->tick(*next);
        editor->draw();
    }
    editor->keyPressed("l");
    editor->draw();
    editor->pointerPressed(100, 250);
    editor->pointerMoved(120, 260);
    frame = editor->draw();
    ASSERT_FALSE(frame.changed.empty());
    EXPECT_LT(frame.changed[0].height, 300) << "the line's surroundings";
    EXPECT_TRUE(editor->nextTick());
    editor->resize(200, 400, 2);
    frame = editor->draw();
    EXPECT_EQ(frame.width, 400);
    EXPECT_EQ(frame.changed[0].height, 800);
}

TEST_F(EditorTest, TextIsTypedAtTheCaretAndCopiedToTheHostsClipboard) {
    std::string clipboard;
    editor->setClipboard([&](const std::string& text) { clipboard = text; },
                         [&] { return clipboard; });
    turn();
    EXPECT_EQ(editor->caret(), std::nullopt);
    editor->textTyped("nowhere");
    editor->keyPressed("t");
    editor->pointerPressed(150, 300);
    editor->pointerReleased(150, 300);
    turn();
    const auto before = editor->caret();
    ASSERT_TRUE(before);
    editor->textComposed("ni", 2);
    editor->textComposed("", 0);
    editor->textTyped("ab\r\x7F");
    EXPECT_GT(editor->caret()->x, before->x);
    editor->keyPressed("ctrl+a");
    editor->keyPressed("ctrl+c");
    EXPECT_EQ(clipboard, "ab");
    editor->keyPressed("ctrl+v");
    editor->keyPressed("ctrl+v");
    editor->keyPressed("ctrl+a");
    editor->keyPressed("ctrl+x");
    EXPECT_EQ(clipboard, "abab");
}

TEST_F(EditorTest, KnowsPalmsAndPensSaysWhatKeysDidAndRefusesWhatIsNoFont) {
    const auto stroke = [this](const Editor::Contact& contact) {
        editor->touchBegan(0, 50, 250, contact);
        for (double x = 60; x < 250; x += 10)
            editor->touchMoved(0, x, 250, contact);
        editor->touchEnded(0, 250, 250, contact);
        turn();
    };
    std::vector<std::string> said;
    editor->onAnnounced([&](const std::string& text) { said.push_back(text); });
    turn();
    editor->keyPressed("f");
    stroke({.size = 60});
    EXPECT_FALSE(editor->hasWork()) << "a palm draws nothing";
    stroke({.isPen = true, .pressure = 1.0});
    ASSERT_TRUE(editor->hasWork());
    editor->keyPressed("tab");
    turn();
    ASSERT_FALSE(said.empty());
    EXPECT_NE(said.back().find("1 of 1"), std::string::npos) << said.back();
    EXPECT_NE(editor->addFont({'n', 'o'}).value_or("").find("font"), std::string::npos);
}

TEST_F(EditorTest, WhatTheHostHasSavedIsWorkOnceItHasChanged) {
    turn();
    editor->keyPressed("r");
    drag(50, 250, 150, 300);
    editor->noteSaved();
    EXPECT_FALSE(editor->hasWork());
    editor->pointerPressed(60, 350);
    editor->pointerMoved(100, 370);
    editor->pointerMoved(140, 390);
    EXPECT_TRUE(editor->hasWork()) << "what is under way has no step yet";
    editor->pointerReleased(140, 390);
    turn();
    editor->noteSaved();
    EXPECT_FALSE(editor->hasWork());
    EXPECT_TRUE(editor->keyPressed("t"));
    drag(200, 260, 200, 260);
    EXPECT_TRUE(editor->hasWork()) << "a text is being typed";
}

TEST_F(EditorTest, SeveralTakeTurnsAndAsksBeforeItLosesWork) {
    auto other = std::make_unique<Editor>(grey(), 400, 400, english());
    int closed = 0;
    editor->onClose([&] { ++closed; });
    other->onClose([&] { ++closed; });
    turn();
    editor->keyPressed("a");
    drag(50, 250, 250, 350);
    other->tick(5);
    other->draw();
    EXPECT_FALSE(other->hasWork());
    other->close();
    EXPECT_EQ(closed, 1);
    other = nullptr;
    editor->close();
    turn();
    EXPECT_EQ(closed, 1) << "the user is asked";
    editor->keyPressed("escape");
    turn();
    editor->keyPressed("ctrl+z");
    EXPECT_FALSE(editor->hasWork());
    editor->close();
    EXPECT_EQ(closed, 2);
    EXPECT_FALSE(ui::Environment::hasCurrent());
}

TEST_F(EditorTest, TakesPicturesThatAreNoneForWhatTheyAre) {
    std::string error;
    EXPECT_FALSE(Editor::Picture::read("lost.png", &error));
    EXPECT_NE(error.find("lost.png"), std::string::npos);
    EXPECT_FALSE(Editor::Picture::decode("nonsense", 8, &error));
    EXPECT_NE(error.find("the picture"), std::string::npos);
    EXPECT_FALSE(Editor::Picture::copy(nullptr, 0, 5, 0, Editor::Pixels::Rgba));
    EXPECT_TRUE(Editor::Picture().png().empty());
    const std::uint8_t half[] = {255, 0, 0, 128};
    EXPECT_EQ(Editor::Picture::copy(half, 1, 1, 4, Editor::Pixels::Rgba).pixels()[2], 128)
        << "premultiplied";
    editor = std::make_unique<Editor>(Editor::Picture(), 300, 600, english());
    editor->tick(NAN);  // No time either.
    turn();
    EXPECT_TRUE(editor->keyPressed("r"));
    editor->openPicture(grey());
    EXPECT_EQ(editor->picture().width(), 300);
}

}  // namespace kalim::test
