#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "kalimkit/ui/control/ScrollView.h"
#include "kalimkit/ui/desk/ColorPicker.h"
#include "kalimkit/ui/desk/Eyedropper.h"
#include "kalimkit/ui/desk/KeysOverview.h"
#include "kalimkit/ui/desk/Menu.h"
#include "kalimkit/ui/desk/Overlay.h"
#include "kalimkit/ui/desk/SegmentedControl.h"
#include "kalimkit/ui/desk/Slider.h"
#include "tests/support/Finger.h"
#include "tests/support/TestHost.h"

namespace kalim::ui {

namespace {

using test::Finger;

// Buttons a and b in a row at the top of a window of 400 x 300.
struct Desk : testing::Test, test::TestHost {
    Desk() : TestHost({.size = {400, 300}}) {
        for (const auto& [button, x] : {std::pair{a, 0}, {b, 100}}) {
            button->setFrame({static_cast<double>(x), 0, 36, 36});
            window().rootView()->addSubview(button);
        }
        a->setTip("First", "ctrl+a");
        b->setTip("Second");
    }
    template <typename T>
    std::shared_ptr<T> put(std::shared_ptr<T> view, const gfx::Rect& frame) {
        view->setFrame(frame);
        window().rootView()->addSubview(view);
        return view;
    }
    void press(const std::vector<const char*>& keys) {
        for (const char* key : keys)
            EXPECT_TRUE(window().takeKey(key, false)) << key;
    }
    // How many plates the overlay shows: popovers, a tip and a note.
    std::size_t plates() { return overlay->subviews().size(); }

    std::shared_ptr<DeskButton> a = DeskButton::make("arrow");
    std::shared_ptr<DeskButton> b = DeskButton::make("line");
    std::shared_ptr<Overlay> overlay = Overlay::in(window());
    Finger finger{window(), 1};
    std::string told;
};

}  // namespace

TEST_F(Desk, SliderFollowsFingersAndKeys) {
    const auto slider = put(Slider::make(0, 100), {0, 100, 118, 32});
    slider->setStep(1);
    slider->setStops({50});
    slider->setHandler([&](double value, bool isFinal) {
        told += std::to_string(static_cast<int>(value)) + (isFinal ? "! " : " ");
    });
    // The track is 100 points long and begins at 9.
    finger.down({29, 116}).moveTo({57, 116}, 1).moveTo({39, 116}, 1).up();
    EXPECT_EQ(std::exchange(told, ""), "20 50 30 30! ");
    finger.down({89, 116}).cancel();
    EXPECT_EQ(std::exchange(told, ""), "80 30! ");
    overlay->setKeyFocus(slider);
    press({"right", "shift+right", "down", "end", "home"});
    EXPECT_EQ(std::exchange(told, ""), "31! 41! 40! 100! 0! ");
    finger.down({59, 116});
    slider->setValue(7);
    EXPECT_EQ(slider->value(), 50);
    slider->setEnabled(false);
    slider->setValue(7);
    EXPECT_EQ(slider->value(), 7);
    finger.up();
    EXPECT_EQ(told, "50 ");
}

TEST_F(Desk, SlidersAreDraggedInWhatScrolls) {
    const auto scroll = put(ScrollView::initWithFrame({}), {0, 100, 100, 40});
    scroll->setContentSize({300, 40});
    const auto slider = Slider::make(0, 100);
    slider->setFrame({0, 0, 118, 32});
    scroll->addSubview(slider);
    finger.down({19, 116}).moveTo({59, 116}, 4).up();
    EXPECT_EQ(slider->value(), 50);
    EXPECT_EQ(scroll->contentOffset(), gfx::Point());
}

TEST_F(Desk, SegmentsChooseOne) {
    const auto control = put(SegmentedControl::make({{"solid"}, {"dashed"}}), {0, 100, 72, 36});
    control->setHandler([&](std::size_t index) { told += std::to_string(index); });
    finger.tap({50, 118});
    EXPECT_EQ(control->chosen(), 1U);
    finger.tap({10, 118});
    EXPECT_EQ(told, "10");
    EXPECT_TRUE(control->buttons()[0]->isSelected());
    EXPECT_FALSE(control->buttons()[1]->isSelected());
}

TEST_F(Desk, TabMovesTheFocusAndAPressTakesIt) {
    a->setHandler([&] { told += "a"; });
    EXPECT_FALSE(window().takeKey("enter", false));
    press({"tab", "enter", "tab"});
    EXPECT_EQ(overlay->keyFocus(), b);
    press({"tab", "shift+tab"});
    EXPECT_EQ(overlay->keyFocus(), b);
    b->setEnabled(false);
    EXPECT_FALSE(window().takeKey("enter", false));
    press({"shift+tab", "space", "escape"});
    EXPECT_FALSE(overlay->keyFocus());
    press({"tab"});
    finger.tap({200, 200});
    EXPECT_FALSE(overlay->keyFocus());
    EXPECT_EQ(told, "aa");
}

TEST_F(Desk, TipsComeAfterAWhileAndGoWithAPress) {
    window().pointerHovered({10, 10});
    wait(0.45);
    EXPECT_EQ(plates(), 0U);
    wait(0.1);
    EXPECT_EQ(plates(), 1U);
    // Beside a tip that has just gone another one comes at once.
    window().pointerHovered({60, 10});
    EXPECT_EQ(plates(), 0U);
    window().pointerHovered({110, 10});
    EXPECT_EQ(plates(), 1U);
    finger.down({110, 10});
    EXPECT_EQ(plates(), 0U);
    finger.up();
    wait(1);
    EXPECT_EQ(plates(), 0U);
    window().pointerHovered({10, 10});
    b->removeFromSuperview();
    a->removeFromSuperview();
    wait(1);
    EXPECT_EQ(plates(), 0U);
    EXPECT_EQ(a->accessibilityLabel(), "First");
}

TEST_F(Desk, NotesGoByThemselves) {
    overlay->tell("Copied", "copy");
    wait(1);
    overlay->tell("Saved");
    EXPECT_EQ(plates(), 1U);
    EXPECT_EQ(overlay->subviews()[0]->accessibilityLabel(), "Saved");
    wait(2.1);
    EXPECT_EQ(plates(), 1U);
    wait(0.4);
    EXPECT_EQ(plates(), 0U);
}

TEST_F(Desk, PopoversCloseByPressKeyAndWithTheirView) {
    a->setHandler([&] { told += "a"; });
    const auto open = [&] {
        const auto popover = Popover::show(*b, View::initWithFrame({0, 0, 100, 50}), {});
        popover->setCloseHandler([&] { told += "x"; });
        return popover;
    };
    auto popover = open();
    EXPECT_EQ(popover->frame(), gfx::Rect(58, 40, 120, 70));
    finger.tap({70, 60});
    EXPECT_TRUE(popover->isOpen());
    finger.tap({10, 10});
    EXPECT_FALSE(popover->isOpen());
    EXPECT_EQ(told, "x");
    open();
    press({"q", "escape"});
    finger.tap({10, 10});
    EXPECT_EQ(std::exchange(told, ""), "xxa");
    // Too high for the window: it is scrolled.
    popover = Popover::show(*b, View::initWithFrame({0, 0, 100, 500}), {});
    EXPECT_EQ(popover->frame().size.height, 288);
    EXPECT_TRUE(window().pointerScrolled({popover->frame().center()}, {0, -1000}));
    EXPECT_EQ(popover->content()->superview()->bounds().minY(), 500 - 268);
    press({"up", "up"});
    EXPECT_EQ(popover->content()->superview()->bounds().minY(), 500 - 268 - 96);
    overlay->closeAll();
    popover = open();
    b->removeFromSuperview();
    wait(0.1);
    EXPECT_FALSE(popover->isOpen());
}

TEST_F(Desk, PlatesGoWhereThereIsRoom) {
    const gfx::Rect room(0, 0, 400, 300);
    struct Case {
        gfx::Rect anchor;
        PopoverEdge edge;
        bool isCentred;
        gfx::Rect place;
    };
    for (const Case& c : {Case{{100, 0, 40, 40}, PopoverEdge::Below, true, {70, 44, 100, 60}},
                          {{0, 0, 40, 40}, PopoverEdge::Below, true, {0, 44, 100, 60}},
                          {{100, 250, 40, 40}, PopoverEdge::Below, false, {100, 186, 100, 60}},
                          {{10, 10, 40, 40}, PopoverEdge::Above, false, {10, 54, 100, 60}},
                          {{350, 280, 40, 20}, PopoverEdge::Right, false, {246, 240, 100, 60}},
                          {{10, 100, 40, 40}, PopoverEdge::Left, true, {54, 90, 100, 60}}}) {
        EXPECT_EQ(placeBeside(c.anchor, {100, 60}, room, c.edge, 4, c.isCentred), c.place);
    }
}

TEST_F(Desk, MenusAreWalkedByKeysAndPointer) {
    const auto items = [&] {
        const auto say = [&](const char* text) { return [this, text] { told += text; }; };
        return std::vector<MenuItem>{
            {.text = "Undo", .run = say("u"), .key = "ctrl+z"},
            {.text = "Redo", .run = say("r"), .isEnabled = false},
            MenuItem::separator(),
            {.text = "Lock", .run = say("l")},
            {.text = "Order",
             .items = {{.text = "Front", .run = say("f")}, {.text = "Back", .run = say("b")}}}};
    };
    struct Case {
        std::vector<const char*> keys;
        const char* told;
    };
    for (const Case& c : {Case{{"down", "enter"}, "u"},
                          {{"down", "down", "enter"}, "l"},
                          {{"up", "right", "down", "enter"}, "b"},
                          {{"end", "enter", "left", "up", "space"}, "l"},
                          {{"o", "right", "escape", "escape"}, ""},
                          {{"r", "enter", "escape"}, ""}}) {
        Menu::showAt(window(), {50, 50}, items());
        press(c.keys);
        EXPECT_EQ(std::exchange(told, ""), c.told) << c.keys[0];
        EXPECT_TRUE(overlay->popovers().empty()) << c.keys[0];
    }
    // Rows are 28 high, the line 9; the plate has an inset of 4 and stands at 50, 54.
    Menu::showAt(window(), {50, 50}, items());
    finger.tap({60, 100});
    EXPECT_EQ(told, "");
    window().pointerHovered({60, 165});
    wait(0.25);
    ASSERT_EQ(overlay->popovers().size(), 2U);
    window().pointerHovered({60, 70});
    wait(0.25);
    EXPECT_EQ(overlay->popovers().size(), 1U);
    finger.tap({60, 70});
    EXPECT_EQ(told, "u");
}

TEST(ColorMath, GoesToHueAndBack) {
    for (const char* text : {"#FF0000FF", "#00FF00FF", "#0000FFFF", "#FFFFFFFF", "#000000FF",
                             "#808080FF", "#C08040FF", "#13579B80", "#FF00FEFF"}) {
        EXPECT_EQ(colorOf(hueColorOf(*gfx::Color::fromHex(text))).hex(), text);
    }
    EXPECT_DOUBLE_EQ(hueColorOf({0, 1, 0}).hue, 1.0 / 3);
    // Black and grey keep what they cannot tell.
    EXPECT_EQ(hueColorOf({0, 0, 0}, {0.7, 0.4, 1, 1}).hue, 0.7);
    EXPECT_EQ(hueColorOf({0, 0, 0}, {0.7, 0.4, 1, 1}).saturation, 0.4);
    for (const auto& [text, color] : {std::pair{"#f80", "#FF8800"},
                                      {" 12ab9F\n", "#12AB9F"},
                                      {"12ab9f80", "#12AB9F80"},
                                      {"#12", ""},
                                      {"#1234", ""},
                                      {"red", ""},
                                      {"", ""}}) {
        const auto read = colorWritten(text);
        EXPECT_EQ(read ? writtenColor(*read) : "", color) << text;
    }
}

TEST_F(Desk, PickerTellsStepsAndRemembers) {
    const auto show = [&](const ColorPicker::Options& options) {
        return ColorPicker::show(*a, options, [&](const auto& color, bool isFinal) {
            told += (color ? writtenColor(*color) : "none") + (isFinal ? "! " : " ");
        });
    };
    auto picker = show({.color = {1, 0, 0}});
    const auto& square = picker->field(ColorPart::SaturationAndValue);
    const gfx::Rect place = square->convertRectTo(square->bounds().inset(4, 4), nullptr);
    finger.down({place.maxX(), place.maxY()}).moveTo({place.minX(), place.minY()}, 1).up();
    EXPECT_EQ(std::exchange(told, ""), "#000000 #FFFFFF #FFFFFF! ");
    finger.down(place.center()).cancel();
    EXPECT_EQ(std::exchange(told, ""), "#804040 #FFFFFF! ");
    picker->hexField()->becomeFirstResponder();
    picker->hexField()->setText("");
    for (const char* digit : {"0", "8", "f", "f"})
        picker->hexField()->insertText(digit);
    picker->hexField()->handleKey("backspace");
    press({"enter"});
    EXPECT_EQ(std::exchange(told, ""), "#0088FF #0088FF #0088FF! ");
    EXPECT_TRUE(overlay->popovers().empty());
    rememberColor({1, 0, 0});
    rememberColor({0, 0x88 / 255.0, 1});
    EXPECT_EQ(recentColors().size(), 2U);
    picker = show({.color = {1, 0, 0}, .offersNone = true, .colors = {{0, 0, 0, 0.5}}});
    ASSERT_EQ(picker->swatches().size(), 3U);
    EXPECT_EQ(picker->swatches()[1]->accessibilityLabel(), "#0088FF");
    picker->swatches()[0]->activate();
    EXPECT_EQ(std::exchange(told, ""), "#000000! ");
    press({"escape"});
    EXPECT_EQ(recentColors().front(), gfx::Color({0, 0, 0, 1}));
}

TEST_F(Desk, EyedropperPicksWhatIsShown) {
    const auto art = put(View::initWithFrame({}), {100, 100, 100, 100});
    art->setBackgroundColor(gfx::makeColor(1, 0, 0));
    const auto cover = View::initWithFrame({0, 0, 50, 100});
    cover->setBackgroundColor(gfx::makeColor(0, 0, 1));
    art->addSubview(cover);
    const auto show = [&] {
        return Eyedropper::show(
            *art, [&](const auto& color) { told += color ? writtenColor(*color) + " " : "none "; });
    };
    auto dropper = show();
    // What is covered is not to be had, nor what lies beside the view.
    EXPECT_EQ(writtenColor(*dropper->colorAt({120, 150})), "#0000FF");
    EXPECT_EQ(writtenColor(*dropper->colorAt({160, 150})), "#FF0000");
    EXPECT_FALSE(dropper->colorAt({99, 150}));
    window().pointerHovered({120, 150});
    EXPECT_EQ(window().hover().cursor(), Cursor::Cross);
    window().pointerHovered({20, 150});
    EXPECT_EQ(window().hover().cursor(), Cursor::NotAllowed);
    finger.tap({20, 150});
    EXPECT_EQ(told, "");
    finger.down({120, 150}).moveTo({160, 150}, 1).up();
    show();
    press({"q", "escape"});
    show();
    finger.down({120, 150}).cancel();
    show();
    window().setSize({300, 300});
    window().display();
    EXPECT_EQ(told, "#FF0000 none none none ");
    finger.tap({10, 10});
    EXPECT_TRUE(a->window());
}

TEST_F(Desk, KeysAreListedUntilTheirKey) {
    const std::vector<KeyGroup> groups{{"Edit", {{"Undo", {"ctrl+z"}}, {"Redo", {"ctrl+y"}}}},
                                       {"View", {{"Zoom in", {"ctrl+plus", "plus"}}}}};
    const auto sheet = KeysOverview::show(window(), groups);
    ASSERT_TRUE(sheet);
    const auto elements = sheet->content()->accessibilityElements();
    ASSERT_EQ(elements.size(), 5U);
    EXPECT_EQ(elements[4].label, "Zoom in");
    EXPECT_EQ(elements[4].value, "Ctrl++  +");
    press({"a", "f1"});
    EXPECT_FALSE(sheet->isOpen());
    EXPECT_TRUE(KeysOverview::show(window(), groups));
    EXPECT_FALSE(KeysOverview::show(window(), groups));
    EXPECT_TRUE(overlay->popovers().empty());
}

}  // namespace kalim::ui
