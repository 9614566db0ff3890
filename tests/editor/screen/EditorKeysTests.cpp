#include "kalimkit/editor/screen/EditorKeys.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "kalimkit/canvas/MDrawMutableSelect.h"
#include "kalimkit/canvas/ToolClasses.h"
#include "kalimkit/editor/screen/EditorPointer.h"
#include "kalimkit/editor/screen/EditorRemote.h"
#include "kalimkit/editor/screen/EditorTables.h"
#include "kalimkit/host/seat/BareShell.h"
#include "kalimkit/ui/control/AlertView.h"
#include "kalimkit/ui/control/TextView.h"
#include "kalimkit/ui/window/Window.h"
#include "tests/editor/screen/EditorScreen.h"

namespace kalim::test {

namespace {

class EditorKeysTest : public testing::Test {
protected:
    EditorKeysTest() { screen.present(); }

    MDrawView& canvas() { return *screen.editor->drawView(); }
    std::size_t toolCount() { return canvas().tools().size(); }
    // The canvas point under a point of the window.
    gfx::Point under(gfx::Point place) { return canvas().invertViewPoint(place); }

    EditorScreen screen;
    EditorPointer pointer{screen.editor};
    EditorRemote remote{screen.editor};
    EditorKeys keys{screen.editor, pointer, remote};
};

}  // namespace

TEST_F(EditorKeysTest, LettersChooseThePensAndDeselect) {
    struct Case {
        const char* key;
        unsigned pen;
        std::int64_t toolType;
    };
    for (const Case& c : {Case{"p", 2, 4},
                          {"l", 4, 6},
                          {"a", 6, 7},
                          {"r", 3, 0},
                          {"e", 5, 2},
                          {"t", 1, 3},
                          {"m", 0, 5}}) {
        EXPECT_TRUE(keys.press(c.key)) << c.key;
        EXPECT_EQ(screen.editor->currentPen(), c.pen) << c.key;
        EXPECT_EQ(canvas().drawToolClass(), getClassForToolType(c.toolType)) << c.key;
        EXPECT_EQ(screen.editor->penView()->pen(), c.pen) << c.key;
    }
    // The row has no dot for a line or a stroke: the first stands in for them.
    const TesselDot& first = *screen.editor->penViews()[0];
    for (const auto& [key, index, pen] : {std::tuple{"r", 2, 6U},
                                          {"l", 0, 4U},
                                          {"p", 0, 2U},
                                          {"e", 1, 6U},
                                          {"p", 0, 2U},
                                          {"a", 0, 6U}}) {
        keys.press(key);
        EXPECT_EQ(screen.editor->penPopView()->selectIndex(), index) << key;
        EXPECT_EQ(first.config()->pen(), pen) << key;
    }
    screen.drawAndSelect();
    keys.press("e");
    EXPECT_FALSE(canvas().hasSelectedTools());
}

TEST_F(EditorKeysTest, PensThatAreRememberedKeepTheirColours) {
    const auto colorWith = [&](const char* key) {
        keys.press(key);
        return canvas().color()->hex();
    };
    const std::string common = canvas().color()->hex();
    EXPECT_EQ(colorWith("h"), common) << "nothing is remembered";
    keys.press("a");
    screen.editor->setRemembersTools(true);
    EXPECT_EQ(colorWith("h"), "#FFF700FF");
    EXPECT_EQ(colorWith("b"), "#FFF700FF");
    EXPECT_EQ(colorWith("e"), common) << "what the one before began with is its own";
    keys.press("h");
    keys.press("3");
    EXPECT_EQ(colorWith("a"), common);
    EXPECT_EQ(colorWith("h"), "#1AA9FFFF");
    EXPECT_EQ(colorWith("b"), "#FFF700FF");
}

TEST_F(EditorKeysTest, DigitsAndBracketsStyleWhatIsSelectedToo) {
    screen.drawAndSelect();
    keys.press("3");
    keys.press("]");
    EXPECT_EQ(canvas().tools()[0]->color()->hex(), "#1AA9FFFF");
    EXPECT_EQ(canvas().tools()[0]->lineWidth(), 12);
    EXPECT_EQ(screen.editor->sizePopView()->selectIndex(), 2);
    for (int i = 0; i < 6; ++i)
        keys.press("[", i > 0);
    EXPECT_EQ(canvas().lineWidth(), 2);
}

TEST_F(EditorKeysTest, BracketsStepFromTheRealWidth) {
    struct Case {
        double before;
        double thicker;
        double thinner;
    };
    for (const Case& c : {Case{9.5, 12, 7}, {18, 28, 12}, {7, 12, 2}, {1, 2, 1}, {40, 40, 28}}) {
        for (const bool isSelected : {false, true}) {
            screen.draw();
            remote.chooseLineWidth(c.before);
            EXPECT_EQ(canvas().lineWidth(), c.before);
            if (isSelected) canvas().selectTools({canvas().tools().back()});
            if (isSelected) remote.chooseLineWidth(c.before);
            keys.press("]");
            EXPECT_EQ(canvas().lineWidth(), c.thicker) << c.before;
            remote.chooseLineWidth(c.before);
            keys.press("[");
            EXPECT_EQ(canvas().lineWidth(), c.thinner) << c.before;
            canvas().selectNone();
        }
    }
    // A selection's own width counts, not that of what is drawn next.
    screen.drawAndSelect();
    remote.chooseLineWidth(18);
    canvas().selectNone();
    remote.chooseLineWidth(2);
    canvas().selectTools({canvas().tools().back()});
    keys.press("]");
    EXPECT_EQ(canvas().tools().back()->lineWidth(), 28);
    EXPECT_EQ(screen.editor->penView()->size(), 4U);
}

TEST_F(EditorKeysTest, UndoesRedoesAndDeletes) {
    screen.draw();
    EXPECT_TRUE(keys.press("ctrl+z", true));
    EXPECT_EQ(toolCount(), 0U);
    EXPECT_FALSE(keys.press("ctrl+z"));
    EXPECT_TRUE(keys.press("ctrl+shift+z"));
    keys.press("ctrl+z");
    EXPECT_TRUE(keys.press("ctrl+y"));
    EXPECT_EQ(toolCount(), 1U);
    EXPECT_FALSE(keys.press("delete")) << "nothing is selected";
    screen.tap(screen.editor->drawView());
    keys.press("ctrl+z");
    screen.drawAndSelect();
    EXPECT_TRUE(keys.press("backspace"));
    EXPECT_EQ(toolCount(), 0U);
}

TEST_F(EditorKeysTest, EscapeLeavesOneThingAtATime) {
    keys.press("t");
    Finger(screen.window()).tap({150, 300});
    ASSERT_TRUE(canvas().curEdittingTextTool());
    // What types belongs to the text.
    EXPECT_TRUE(keys.press("r"));
    EXPECT_EQ(screen.editor->currentPen(), 1U);
    ui::TextView::focusedIn(screen.window())->insertText("文字");
    keys.press("escape");
    EXPECT_FALSE(canvas().curEdittingTextTool());
    canvas().selectTools(canvas().tools());
    keys.press("escape");
    EXPECT_FALSE(canvas().hasSelectedTools());
    screen.wait(1);
    screen.use(screen.editor->penView());
    ASSERT_TRUE(screen.editor->showPanel());
    keys.press("escape");
    screen.wait(1);
    EXPECT_FALSE(screen.editor->showPanel());
    keys.press("escape");
    screen.wait(1);
    ASSERT_TRUE(screen.editor->actionSheet());
    // The question takes the keys, and Escape is the answer that loses nothing.
    EXPECT_TRUE(keys.press("ctrl+z"));
    EXPECT_TRUE(keys.press("escape"));
    screen.wait(1);
    EXPECT_FALSE(screen.editor->actionSheet());
    EXPECT_EQ(screen.owner->closed, 0);
    EXPECT_EQ(toolCount(), 1U);
}

TEST_F(EditorKeysTest, TheCropEditorTakesTheKeysWhileItIsOpen) {
    const auto open = [this] {
        remote.choosePen(EditorPenCrop);
        screen.wait(2);
        ASSERT_TRUE(screen.editor->editImageInitialView());
    };
    open();
    keys.press("r");
    EXPECT_EQ(screen.editor->currentPen(), 6U);
    EXPECT_FALSE(pointer.pointerPressed(PointerButton::Main, {200, 400}));
    EXPECT_TRUE(keys.press("escape"));
    screen.wait(2);
    EXPECT_FALSE(screen.editor->editImageInitialView());
    EXPECT_TRUE(keys.press("x")) << "opens it as its pen does";
    screen.wait(2);
    ASSERT_TRUE(screen.editor->editImageInitialView());
    EXPECT_TRUE(keys.press("enter"));
    screen.wait(2);
    EXPECT_FALSE(screen.editor->editImageInitialView());
    EXPECT_TRUE(screen.owner->images.empty()) << "the crop was confirmed, not the picture";
    open();
    screen.editor->setReadOnly(true);
    screen.wait(2);
    remote.choosePen(EditorPenCrop);
    screen.wait(2);
    EXPECT_FALSE(screen.editor->editImageInitialView()) << "nothing can be changed any more";
}

TEST_F(EditorKeysTest, EnterAndCtrlSConfirmOncePerStroke) {
    EXPECT_TRUE(keys.press("enter"));
    EXPECT_TRUE(keys.press("ctrl+s"));
    EXPECT_FALSE(keys.press("enter", true));
    EXPECT_EQ(screen.owner->images.size(), 2U);
    keys.press("escape");
    EXPECT_EQ(screen.owner->closed, 1) << "nothing was drawn";
}

TEST_F(EditorKeysTest, TheWheelZoomsAboutThePointerAndStopsAtTheBounds) {
    const gfx::Point place{120, 350};
    const gfx::Point fixed = under(place);
    const double before = canvas().getScale();
    pointer.pointerZoomed(place, 1.5);
    EXPECT_NEAR(canvas().getScale(), before * 1.5, 1e-9);
    EXPECT_NEAR(under(place).x, fixed.x, 1e-6);
    EXPECT_NEAR(under(place).y, fixed.y, 1e-6);
    for (int i = 0; i < 9; ++i)
        pointer.pointerZoomed(place, 1.5);
    screen.wait(1);
    EXPECT_NEAR(canvas().contextScale(), 2, 1e-9);
    for (int i = 0; i < 20; ++i)
        pointer.pointerZoomed(place, 1 / 1.5);
    screen.wait(1);
    EXPECT_NEAR(canvas().contextScale(), canvas().defaultMinScale(), 1e-9);
}

TEST_F(EditorKeysTest, KeysZoomInStepsToThePhotosPixelsAndBack) {
    screen.editor->setLargestMagnification(8);
    const double fitting = canvas().getScale();
    const double pixels = canvas().sourceImage()->pixelSize().width /
                          (canvas().bgImgRect().size.width * screen.environment().screen().scale);
    struct Case {
        const char* key;
        double scale;
    };
    for (const Case& c : {Case{"ctrl+1", pixels},
                          {"plus", pixels * 1.25},
                          {"ctrl+shift+=", pixels * 1.25 * 1.25},
                          {"ctrl+-", pixels * 1.25},
                          {"-", pixels},
                          {"ctrl+0", fitting}}) {
        EXPECT_TRUE(keys.press(c.key)) << c.key;
        EXPECT_NEAR(canvas().getScale(), c.scale, 1e-3) << c.key;
        screen.wait(0.1);
    }
    for (int i = 0; i < 40; ++i)
        keys.press("plus", true);
    EXPECT_NEAR(canvas().getScale(), pixels * 8, 1e-6);
    // A text that is typed gets them, and fingers have the canvas for themselves.
    keys.press("t");
    Finger(screen.window()).tap({195, 422});
    ASSERT_TRUE(canvas().curEdittingTextTool());
    for (const char* const key : {"plus", "shift+plus", "-", "ctrl+0"})
        keys.press(key);
    EXPECT_NEAR(canvas().getScale(), pixels * 8, 1e-6);
    EXPECT_TRUE(canvas().curEdittingTextTool());
}

TEST_F(EditorKeysTest, TheMiddleButtonAndTheSpaceBarPan) {
    pointer.pointerZoomed({195, 422}, 2);
    screen.wait(1);
    for (const auto button : {PointerButton::Middle, PointerButton::Main}) {
        if (button == PointerButton::Main) keys.press("space");
        const gfx::Point held = under({200, 400});
        EXPECT_TRUE(pointer.pointerPressed(button, {200, 400}));
        EXPECT_TRUE(pointer.pointerMoved({220, 390}));
        EXPECT_NEAR(under({220, 390}).x, held.x, 1e-6);
        EXPECT_NEAR(under({220, 390}).y, held.y, 1e-6);
        EXPECT_TRUE(pointer.pointerReleased(button));
        screen.wait(1);
    }
    keys.release("space");
    EXPECT_FALSE(pointer.pointerPressed(PointerButton::Main, {200, 400})) << "a finger again";
    EXPECT_FALSE(pointer.pointerMoved({210, 400}));
    EXPECT_EQ(toolCount(), 0U);
}

TEST_F(EditorKeysTest, AnotherPictureIsOpenedOnceTheUserAgreesToLoseTheDrawing) {
    screen.environment().setShowsAlerts(true);
    const auto size = [this] { return canvas().bgImg()->size(); };
    remote.openPicture(screen.picture(30, 20));
    EXPECT_EQ(size(), (gfx::Size{30, 20})) << "nothing was drawn";
    remote.openPicture(screen.picture(300, 400));
    screen.draw();
    remote.openPicture(screen.picture(30, 20));
    remote.askToClose();
    EXPECT_FALSE(screen.editor->actionSheet()) << "one question at a time";
    keys.press("escape");
    screen.wait(1);
    EXPECT_EQ(toolCount(), 1U);
    // Every picture has its answer; the last one wins, and Enter loses nothing.
    std::string answers;
    const auto offer = [&](int width) {
        const std::string name = std::to_string(width);
        remote.openPicture(screen.picture(width, 20), [&answers, name](bool isOpened) {
            answers += name + (isOpened ? "+ " : "- ");
        });
    };
    offer(30);
    offer(31);
    keys.press("enter");
    EXPECT_EQ(answers, "30- 31- ");
    EXPECT_EQ(toolCount(), 1U);
    screen.wait(1);
    offer(32);
    offer(33);
    keys.press("tab");
    keys.press("enter");
    EXPECT_EQ(answers, "30- 31- 32- 33+ ");
    EXPECT_EQ(size(), (gfx::Size{33, 20}));
    EXPECT_EQ(toolCount(), 0U);
    screen.wait(1);
    remote.openPicture(nullptr);
    ASSERT_TRUE(ui::AlertView::topmostIn(screen.window()));
    EXPECT_EQ(ui::AlertView::topmostIn(screen.window())->alert().title, "无法载入图片");
}

TEST_F(EditorKeysTest, ACropIsWorkThatAnotherPictureAsksAbout) {
    screen.environment().setShowsAlerts(true);
    const auto isAsking = [this] { return ui::AlertView::topmostIn(screen.window()) != nullptr; };
    screen.editor->onCropImageDone(screen.picture(100, 80));
    remote.openPicture(screen.picture(30, 20));
    EXPECT_TRUE(isAsking());
    keys.press("right");
    keys.press("enter");
    screen.wait(1);
    EXPECT_EQ(canvas().bgImg()->size(), (gfx::Size{30, 20}));
    remote.openPicture(screen.picture(31, 20));
    EXPECT_FALSE(isAsking()) << "a picture that was only opened is no work";
    EXPECT_EQ(canvas().bgImg()->size(), (gfx::Size{31, 20}));
}

TEST_F(EditorKeysTest, WhereNothingWasDrawnAShellAsksNothingAndEscapeClosesNothing) {
    screen.editor->setForgiving(true);
    remote.openPicture(screen.picture(30, 20));
    EXPECT_TRUE(screen.editor->asksBeforeClosing());
    screen.editor->setShell(std::make_shared<BareShell>());
    EXPECT_FALSE(screen.editor->asksBeforeClosing());
    for (const bool isReadOnly : {false, true}) {
        screen.editor->setReadOnly(isReadOnly);
        EXPECT_EQ(keys.press("escape"), !isReadOnly) << "takes the pen that selects";
        EXPECT_FALSE(keys.press("escape"));
    }
    EXPECT_EQ(screen.owner->closed, 0);
}

TEST_F(EditorKeysTest, APictureThatIsNotOpenedSaysWhy) {
    screen.environment().setShowsAlerts(true);
    screen.draw();
    remote.choosePen(EditorPenCrop);
    screen.wait(1);
    const auto titleOnceAnswered = [this] {
        const auto alert = ui::AlertView::topmostIn(screen.window());
        const std::string title = alert ? alert->alert().title + alert->alert().message : "";
        keys.press("enter");
        screen.wait(1);
        return title;
    };
    std::optional<bool> answer;
    remote.openPicture(screen.picture(30, 20), [&](bool isOpened) { answer = isOpened; });
    EXPECT_EQ(answer, false);
    EXPECT_EQ(titleOnceAnswered(), "请先完成裁剪离开裁剪后才能打开新图片");
    keys.press("ctrl+v");
    EXPECT_EQ(titleOnceAnswered(), "请先完成裁剪离开裁剪后才能打开新图片");
    EXPECT_TRUE(screen.editor->editImageInitialView()) << "enter answered the alerts only";
    remote.refusePicture("photo.gif: no picture");
    EXPECT_EQ(titleOnceAnswered(), "无法载入图片photo.gif: no picture");
    EXPECT_EQ(toolCount(), 1U);
}

// On the question before closing: what keys press before Enter, and what comes of it.
TEST_F(EditorKeysTest, KeysChooseAmongTheAnswersOfASheet) {
    struct Case {
        std::vector<const char*> keys;
        int closed;
        std::size_t sent;
    };
    const Case cases[] = {{{"enter"}, 0, 0},
                          {{"up", "enter"}, 0, 1},
                          {{"shift+tab", "space"}, 0, 1},
                          {{"up", "up", "escape"}, 0, 0},
                          {{"down", "up", "enter"}, 0, 0},
                          {{"tab", "enter"}, 1, 0}};
    screen.editor->setForgiving(true);
    screen.draw();
    for (const Case& c : cases) {
        screen.owner->closed = 0;
        screen.owner->images.clear();
        remote.askToClose();
        screen.wait(1);
        for (const char* key : c.keys)
            EXPECT_TRUE(keys.press(key));
        screen.wait(1);
        EXPECT_FALSE(screen.editor->actionSheet()) << c.keys[0];
        EXPECT_EQ(screen.owner->closed, c.closed) << c.keys[0];
        EXPECT_EQ(screen.owner->images.size(), c.sent) << c.keys[0];
    }
    // A host may have emptied the button that sends.
    for (const char* title : {"完成了", ""}) {
        screen.editor->setTopNavigationItemTitle(false, title);
        remote.askToClose();
        const auto send = screen.editor->actionSheet()->buttonWithTag(2);
        EXPECT_EQ(send->title(ui::ControlState::Normal), *title ? title : "发送");
        keys.press("escape");
        screen.wait(1);
    }
}

// What a host does on Enter it does where Enter would send, and not before.
TEST_F(EditorKeysTest, EnterEndsWhatIsDrawnBeforeTheHostHears) {
    struct Host : EditorKeysDelegate {
        bool editorKeysEnter() override { return ++heard > 0; }
        int heard = 0;
    };
    const auto host = std::make_shared<Host>();
    keys.setDelegate(host);
    canvas().setForgiving(true);
    canvas().setPlacesPoints(true);
    ASSERT_TRUE(canvas().beginDrawingWithClassNamed("MDrawPolyline"));
    for (const gfx::Point p : {gfx::Point(150, 300), {220, 300}, {220, 380}})
        Finger(screen.window()).tap(p);
    ASSERT_TRUE(canvas().isPlacingPoints());
    EXPECT_TRUE(keys.press("enter"));
    EXPECT_FALSE(canvas().isPlacingPoints());
    EXPECT_EQ(toolCount(), 1U);
    EXPECT_EQ(host->heard, 0);
    EXPECT_TRUE(keys.press("enter"));
    EXPECT_EQ(host->heard, 1);
}

TEST_F(EditorKeysTest, PanningShowsInTheCursor) {
    ui::Window& window = *screen.editor->window();
    window.pointerHovered({200, 300});
    const auto cursor = [&] { return window.hover().cursor(); };
    const ui::Cursor before = cursor();
    keys.press("space");
    EXPECT_EQ(cursor(), ui::Cursor::Grab);
    pointer.pointerPressed(PointerButton::Main, {200, 300});
    EXPECT_EQ(cursor(), ui::Cursor::Grabbing);
    keys.release("space");
    EXPECT_EQ(cursor(), ui::Cursor::Grabbing);
    pointer.pointerReleased(PointerButton::Main);
    EXPECT_EQ(cursor(), before);
}

// Shapes go to the clipboard and back as a text; other texts are left to the host.
TEST_F(EditorKeysTest, ArrangeWhatIsSelected) {
    screen.editor->setForgiving(true);
    screen.draw();
    keys.press("ctrl+a");
    const gfx::Point start = canvas().tools().front()->startPoint();
    EXPECT_TRUE(keys.press("shift+right"));
    EXPECT_TRUE(keys.press("up", true));
    EXPECT_EQ(canvas().tools().front()->startPoint(), (start + gfx::Point{10, -1}));
    EXPECT_TRUE(keys.press("ctrl+c"));
    EXPECT_TRUE(keys.press("ctrl+v"));
    EXPECT_TRUE(keys.press("ctrl+d"));
    EXPECT_EQ(toolCount(), 3U);
    EXPECT_TRUE(keys.press("ctrl+x"));
    EXPECT_EQ(toolCount(), 2U);
    keys.press("ctrl+z");
    keys.press("ctrl+a");
    EXPECT_TRUE(keys.press("ctrl+g"));
    EXPECT_TRUE(keys.press("ctrl+l"));
    EXPECT_FALSE(canvas().hasSelectedTools());
    EXPECT_TRUE(keys.press("ctrl+shift+l"));
    EXPECT_EQ(canvas().handingTools()->subTools().size(), 3U);
    screen.environment().setClipboardText("{\"format\":\"other\"}");
    EXPECT_FALSE(keys.press("ctrl+v"));
    EXPECT_EQ(toolCount(), 3U);
    keys.press("escape");
    EXPECT_TRUE(keys.press("v"));
    EXPECT_EQ(canvas().drawToolClass(), nullptr);
}

TEST_F(EditorKeysTest, AWheelSidewaysMovesTheCanvasAndComesToAnEnd) {
    const gfx::Point before = under({200, 300});
    for (int notch = 0; notch < 3; ++notch)
        pointer.pointerScrolled({20, -10});
    EXPECT_NE(under({200, 300}), before);
    EXPECT_EQ(canvas().invertViewPoint({260, 270}), before);
    // A zoom in the middle of it has the way to itself.
    pointer.pointerZoomed({200, 300}, 1.2);
    screen.wait(1);
    EXPECT_GT(canvas().contextScale(), 1);
}

// The command table, the pens and the texts of both make the list, so a key without a text shows
// here.
TEST_F(EditorKeysTest, AreListedWithTheirTexts) {
    std::vector<std::string> listed;
    screen.environment().setLanguage("en");
    for (const ui::KeyGroup& group : EditorKeys::list()) {
        EXPECT_FALSE(group.title.empty());
        for (const ui::KeyRow& row : group.rows) {
            for (const std::string& key : row.keys) {
                EXPECT_FALSE(row.text.empty()) << key;
                EXPECT_LT(static_cast<unsigned char>(row.text.front()), 0x80) << row.text;
                listed.push_back(key);
            }
        }
    }
    for (const char* key : {"ctrl+z", "1", "5", "a", "x", "?", "f11", "shift", "shift+left"})
        EXPECT_EQ(std::ranges::count(listed, key), 1) << key;
    EXPECT_EQ(std::ranges::count(listed, "right"), 4) << "what is held stands in a row once";
    int shown = 0;
    EXPECT_FALSE(keys.press("f1"));
    keys.setOverviewHandler([&] { ++shown; });
    for (const char* key : {"f1", "?", "shift+?", "shift+/"})
        EXPECT_TRUE(keys.press(key)) << key;
    EXPECT_EQ(shown, 4);
}

}  // namespace kalim::test
