#include "kalimkit/shell/editor/TesselViewController.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "kalimkit/canvas/view/ToolClasses.h"
#include "kalimkit/canvas/view/ToolType.h"
#include "kalimkit/shapes/MDrawText.h"
#include "kalimkit/shell/config/HexColor.h"
#include "kalimkit/shell/editor/EditorTables.h"
#include "tests/shell/editor/EditorScreen.h"

namespace kalim {
namespace {

using test::EditorScreen;
using test::Finger;

bool isShown(const ui::View& view) {
    return !view.isHidden() && view.alpha() == 1;
}

TEST(TesselViewController, AppearsInTheOrderOfItsSetUp) {
    EditorScreen host;
    host.window().setRootViewController(host.editor);
    EXPECT_FALSE(host.editor->penPopView());
    EXPECT_EQ(host.editor->penView()->alpha(), 0);
    host.wait(0);
    ASSERT_TRUE(host.editor->penPopView());
    EXPECT_EQ(host.editor->drawView()->lineWidth(), 7);
    EXPECT_EQ(host.editor->drawView()->color()->hex(), "#F63434FF");
    EXPECT_EQ(host.editor->currentPen(), 6u);
    EXPECT_EQ(host.editor->sizePopView()->selectIndex(), 1);
    EXPECT_EQ(host.editor->drawView()->frame(), gfx::Rect(0, 0, 390, 844));
    EXPECT_EQ(host.editor->drawView()->bgImgRect(), gfx::Rect(45, 222, 300, 400));
    host.wait(0.2);
    EXPECT_TRUE(host.logs.empty());
    EXPECT_FALSE(host.editor->penView()->isRinging());
    host.wait(0.2);
    EXPECT_EQ(host.logs.back(), "draw canUseRingAnimation 1");
    EXPECT_TRUE(host.editor->penView()->isRinging());
    EXPECT_TRUE(isShown(*host.editor->penView()));
    EXPECT_TRUE(host.editor->penView()->transform().isIdentity());
    host.window().setRootViewController(nullptr);
    EXPECT_EQ(host.logs.back(), "draw viewWillDisappear ");
}

TEST(TesselViewController, TellsItsSurroundingsWhatItNeeds) {
    EditorScreen host;
    const auto& editor = host.present().editor;
    EXPECT_TRUE(host.environment().hidesStatusBar());
    EXPECT_EQ(host.environment().statusBarStyle(), 1);
    EXPECT_EQ(editor->isToolbarPlaceBottom(), true);
    EXPECT_EQ(editor->toolbarHeight(), 0.0);
    EXPECT_EQ(editor->confirmButton()->tag(), 100001);
    host.draw();
    host.use(editor->toolView()->closeButton());
    ASSERT_TRUE(editor->actionSheet());
    EXPECT_EQ(editor->actionSheet()->tag(), 0x636C6174);

    host.logs.clear();
    editor->setLogTranferBlock({});
    host.window().setRootViewController(nullptr);
    EXPECT_TRUE(host.logs.empty());
    EXPECT_FALSE(host.environment().hidesStatusBar());
}

TEST(TesselViewController, WhiteAndYellowTextStandsOnBlack) {
    EditorScreen host;
    MDrawView& canvas = *host.present().editor->drawView();
    const auto text = MDrawText::initWithStartPoint({0, 0});
    for (const char* color : {"FFFFFF", "FFF700"}) {
        text->setColor(colorWithHexString(color));
        const auto backing = canvas.drawTextAskForMaskColor(*text);
        ASSERT_TRUE(backing.has_value()) << color;
        EXPECT_EQ((*backing)->hex(), "#000000FF") << color;
    }
    text->setColor(colorWithHexString("F63434"));
    EXPECT_EQ(canvas.drawTextAskForMaskColor(*text), std::nullopt);
}

TEST(TesselViewController, TheFirstTapOnThePenButtonEndsTheRingHintForGood) {
    EditorScreen host;
    host.present().use(host.editor->penView());
    EXPECT_EQ(host.environment().userDefault("canUseRingAnimation"), false);
    host.use(host.editor->confirmButton());
    EXPECT_FALSE(host.editor->penView()->isRinging());
    host.window().setRootViewController(nullptr);
    host.present();
    EXPECT_EQ(host.logs.back(), "draw canUseRingAnimation 0");
    EXPECT_FALSE(host.editor->penView()->isRinging());
}

TEST(TesselViewController, ThePanelOpensAndClosesInTime) {
    EditorScreen host;
    const auto& editor = host.present().editor;
    EXPECT_TRUE(editor->panelView()->isHidden() && editor->maskView()->isHidden());
    host.tap(editor->penView());
    EXPECT_TRUE(editor->isAnimation());
    EXPECT_EQ(editor->panelView()->shownAlpha(), 0);
    EXPECT_EQ(editor->panelView()->shownTransform().a, 0.5);
    // It takes no second tap on its way.
    host.wait(0.1);
    host.tap(editor->penView());
    EXPECT_FALSE(editor->showPanel());
    host.wait(0.101);
    EXPECT_TRUE(editor->showPanel());
    EXPECT_FALSE(editor->isAnimation());
    host.wait(0.2);
    EXPECT_TRUE(isShown(*editor->panelView()) && isShown(*editor->maskView()));
    EXPECT_TRUE(editor->panelView()->transform().isIdentity());
    EXPECT_EQ(host.shown(editor->panelView()).maxY(), 764);

    host.tap(editor->confirmButton());
    EXPECT_TRUE(editor->isAnimation() && editor->showPanel());
    host.wait(0.21);
    EXPECT_FALSE(editor->isAnimation() || editor->showPanel());
    EXPECT_TRUE(editor->panelView()->isHidden() && editor->maskView()->isHidden());
    host.use(editor->penView());
    EXPECT_TRUE(editor->showPanel());
    // Its pickers leave it open; its background, the mask and the canvas do not, and the canvas
    // draws as well.
    host.use(editor->penViews()[0]);
    host.use(editor->colorViews()[0]);
    EXPECT_TRUE(editor->showPanel());
    for (const double y : {host.shown(editor->panelView()).minY() + 10, 800.0}) {
        Finger(host.window()).tap({20, y});
        host.wait(1);
        EXPECT_FALSE(editor->showPanel());
        host.use(editor->penView());
    }
    host.draw();
    EXPECT_FALSE(editor->showPanel());
    EXPECT_EQ(editor->drawView()->tools().size(), 1u);
}

TEST(TesselViewController, AfterTheFirstTapAnIdleEditorNeitherWakesNorRedraws) {
    EditorScreen host;
    host.present();
    // The hint on the pen button rings until then.
    EXPECT_TRUE(host.environment().runLoop().isBusy());
    const auto expectRest = [&host](const char* state) {
        host.window().display();
        host.window().takeDrawn();
        EXPECT_LT(host.environment().runLoop().nextDue(), 0) << state;
        host.wait(10);
        EXPECT_FALSE(host.window().needsDisplay()) << state;
        EXPECT_TRUE(host.window().takeDrawn().empty()) << state;
    };
    host.use(host.editor->penView());
    expectRest("open panel");
    host.use(host.editor->colorPopView());
    expectRest("unfolded colours");
    host.use(host.editor->confirmButton());
    expectRest("closed panel");
    host.drawAndSelect();
    expectRest("selected shape");
    host.editor->drawView()->selectNone();
    host.use(host.editor->toolView()->closeButton());
    expectRest("question before closing");
}

TEST(TesselViewController, OneOfTheColourAndSizePickersIsOpenAtATime) {
    EditorScreen host;
    const auto& editor = host.present().editor;
    const auto lefts = [&] {
        return std::pair{host.shown(editor->colorPopView()).minX(),
                         host.shown(editor->sizePopView()).maxX()};
    };
    host.use(editor->penView());
    EXPECT_TRUE(editor->colorPopView()->isFold() && editor->sizePopView()->isFold());
    const double left = host.shown(editor->penPopView()).minX();
    const double offset = (390 - 76) / 3.0;
    EXPECT_NEAR(lefts().first, left + offset, 1e-9);
    EXPECT_NEAR(lefts().second, 390 - left - offset, 1e-9);
    host.tap(editor->colorViews()[0]);
    host.wait(0.15);
    const double between = editor->colorPopView()->shownRectInWindow().minX();
    EXPECT_GT(between, left + 10);
    EXPECT_LT(between, left + offset - 10);
    host.wait(1);
    EXPECT_FALSE(editor->colorPopView()->isFold());
    EXPECT_NEAR(lefts().first, left, 1e-9);
    EXPECT_NEAR(lefts().second, 390 - left, 1e-9);
    host.use(editor->sizeViews()[1]);
    EXPECT_TRUE(editor->colorPopView()->isFold());
    EXPECT_FALSE(editor->sizePopView()->isFold());
    EXPECT_EQ(editor->currentType(), 0u);
    // What is chosen folds the row again, and so does any button of the bar.
    host.use(editor->sizeViews()[4]);
    EXPECT_EQ(editor->drawView()->lineWidth(), 28);
    EXPECT_EQ(editor->currentSize(), 4u);
    EXPECT_TRUE(editor->sizePopView()->isFold());
    host.use(editor->colorViews()[0]);
    host.use(editor->colorViews()[2]);
    EXPECT_EQ(editor->drawView()->color(), editor->colorViews()[2]->color());
    EXPECT_EQ(editor->penView()->color(), editor->currentColor());
    host.use(editor->colorViews()[2]);
    editor->toolView()->handleUndo();
    host.wait(1);
    EXPECT_TRUE(editor->colorPopView()->isFold());
    EXPECT_NEAR(lefts().first, left + offset, 1e-9);
}

TEST(TesselViewController, PensChooseWhatIsDrawnExceptTheCropPen) {
    EditorScreen host;
    const auto& editor = host.present().editor;
    const std::int64_t types[] = {ToolType::Arrow, ToolType::Ellipse, ToolType::Rectangle,
                                  ToolType::Text, ToolType::Mosaic};
    const unsigned pens[] = {6, 5, 3, 1, 0};
    host.use(editor->penView());
    for (std::size_t index = 0; index < std::size(pens); ++index) {
        host.use(editor->penViews()[index]);
        EXPECT_EQ(editor->currentPen(), pens[index]);
        EXPECT_EQ(editor->penView()->pen(), pens[index]);
        EXPECT_EQ(editor->drawView()->drawToolClass(), getClassForToolType(types[index]));
    }
    host.use(editor->penViews()[5]);
    EXPECT_EQ(editor->currentPen(), 0u);
    EXPECT_EQ(editor->currentType(), 2u);
}

TEST(TesselViewController, TakesShapesAndSizesThatNoPickerOffers) {
    EditorScreen host;
    const auto& editor = host.present().editor;
    const std::int64_t types[] = {ToolType::Rectangle, ToolType::Ellipse, ToolType::Line};
    for (unsigned shape = 0; shape < 4; ++shape) {
        editor->clickDotWithConfig(TesselDot::initWithShape(shape)->config());
        EXPECT_EQ(editor->currentShape(), shape);
        EXPECT_EQ(editor->drawView()->drawToolClass(),
                  getClassForToolType(types[std::min(shape, 2u)]));
    }
    EXPECT_EQ(editor->currentType(), 3u);
    EXPECT_EQ(editor->currentPen(), 6u);
    editor->clickDotWithConfig(TesselDot::initWithSize(5)->config());
    EXPECT_EQ(editor->currentSize(), 5u);
    EXPECT_EQ(editor->drawView()->lineWidth(), 7);
}

TEST(TesselViewController, ASelectionIsShownByThePenButtonAndThePickers) {
    EditorScreen host;
    const auto& editor = host.present().editor;
    const auto show = [&](std::int64_t type, const gfx::ColorRef& color, double width) {
        editor->currentSelectedToolsPropertyChangedColorLineWidth(type, color, width);
        return std::tuple{editor->penView()->pen(), editor->penView()->size(),
                          editor->penPopView()->selectIndex(), editor->sizePopView()->selectIndex(),
                          editor->colorPopView()->selectIndex()};
    };
    const auto blue = gfx::makeColor(*editor->colorViews()[2]->color());
    EXPECT_EQ(show(ToolType::Ellipse, blue, 28), std::tuple(5u, 4u, 1, 4, 2));
    EXPECT_EQ(show(ToolType::RoundedRectangle, nullptr, 18), std::tuple(6u, 1u, 0, 1, 0));
    // A pen that is in no picker, and a colour that is in none.
    EXPECT_EQ(show(ToolType::Line, gfx::makeColor(0, 1, 0), 24), std::tuple(4u, 3u, 0, 3, 0));
    EXPECT_EQ(editor->currentPen(), 6u);
    EXPECT_EQ(editor->currentColor()->hex(), "#F63434FF");
}

TEST(TesselViewController, TheEditAndDeleteButtonsStandInForThePenButtonWhileSomethingIsSelected) {
    EditorScreen host;
    const auto& editor = host.present().editor;
    host.drawAndSelect();
    ASSERT_TRUE(editor->drawView()->hasSelectedTools());
    EXPECT_TRUE(editor->isConfigViewOut() && editor->elementSelected());
    EXPECT_TRUE(isShown(*editor->configViewEdit()) && isShown(*editor->configViewDelete()));
    EXPECT_EQ(editor->penView()->alpha(), 0);
    EXPECT_EQ(editor->configViewEdit()->frame(), gfx::Rect(220, 769, 50, 50));
    EXPECT_EQ(editor->configViewDelete()->frame(), gfx::Rect(120, 769, 50, 50));

    editor->startAnimateIn();
    host.wait(1);
    EXPECT_EQ(editor->penView()->alpha(), 0);

    host.tap(editor->configViewEdit());
    host.wait(0.1);
    Finger(host.window()).tap({245, 794});
    host.wait(1);
    EXPECT_TRUE(editor->showPanel() && editor->drawView()->hasSelectedTools());
    EXPECT_FALSE(editor->penPopView()->enable());
    EXPECT_EQ(editor->configViewEdit()->alpha(), 0);
    host.use(editor->colorViews()[0]);
    host.use(editor->colorViews()[4]);
    EXPECT_EQ(editor->drawView()->tools().front()->color()->hex(), "#000000FF");
    host.use(editor->confirmButton());
    EXPECT_FALSE(editor->drawView()->hasSelectedTools() || editor->isConfigViewOut());
    EXPECT_TRUE(isShown(*editor->penView()) && editor->penPopView()->enable());

    Finger(host.window()).tap({175, 350});
    host.wait(1);
    host.use(editor->configViewDelete());
    EXPECT_FALSE(editor->drawView()->hasDrawed() || editor->isConfigViewOut());
    EXPECT_EQ(editor->configViewEdit()->frame(), editor->penView()->frame());
}

TEST(TesselViewController, TheButtonsFollowASelectionThatChangesWhileTheyMove) {
    EditorScreen host;
    const auto& editor = host.present().editor;
    const auto states = [&] {
        return std::tuple{editor->lockConfigView(), editor->isConfigViewWillOut(),
                          editor->isConfigViewOut()};
    };
    // A burst of changes is one animation, or none.
    editor->seletedToolsStateChanged(true);
    editor->seletedToolsStateChanged(false);
    EXPECT_EQ(states(), std::tuple(true, false, false));
    host.wait(0.05);
    EXPECT_EQ(states(), std::tuple(false, false, false));
    EXPECT_TRUE(editor->configViewEdit()->isHidden());
    editor->seletedToolsStateChanged(true);
    host.wait(0.1);
    const double half = editor->configViewEdit()->shownAlpha();
    EXPECT_TRUE(half > 0.2 && half < 0.8) << half;
    editor->seletedToolsStateChanged(false);
    host.wait(0.11);
    EXPECT_EQ(states(), std::tuple(false, false, true));
    EXPECT_EQ(editor->penView()->alpha(), 1);
    host.wait(0.2);
    EXPECT_EQ(states(), std::tuple(false, false, false));
    EXPECT_EQ(editor->configViewEdit()->alpha(), 0);
}

TEST(TesselViewController, ClosingAsksOnlyWhenSomethingWasDrawn) {
    EditorScreen host;
    const auto& editor = host.present().editor;
    host.use(editor->toolView()->closeButton());
    EXPECT_EQ(host.owner->closed, 1);
    host.draw();
    // The lower button keeps the drawing, and so does a tap beside the panel.
    for (const int choice : {0, -1}) {
        host.use(editor->toolView()->closeButton());
        ASSERT_TRUE(editor->actionSheet());
        EXPECT_EQ(editor->actionSheet()->buttonWithTag(0)->currentTitle(), "继续标注");
        EXPECT_EQ(editor->actionSheet()->buttonWithTag(1)->currentTitle(), "放弃修改");
        if (choice < 0) {
            Finger(host.window()).tap({195, 100});
        } else {
            host.tap(editor->actionSheet()->buttonWithTag(choice));
        }
        host.wait(1);
        EXPECT_FALSE(editor->actionSheet());
        EXPECT_EQ(host.owner->closed, 1);
        EXPECT_TRUE(editor->drawView()->hasDrawed());
    }
    host.use(editor->toolView()->closeButton());
    host.use(editor->actionSheet()->buttonWithTag(1));
    EXPECT_EQ(host.owner->closed, 2);
}

TEST(TesselViewController, ConfirmingHandsOverThePictureEachTime) {
    EditorScreen host({.scale = 2});
    const auto& editor = host.present().editor;
    host.use(editor->toolView()->confirmButton());
    editor->setExportsAtPictureScale(true);
    host.use(editor->toolView()->confirmButton());
    ASSERT_EQ(host.owner->images.size(), 2u);
    EXPECT_EQ(host.owner->images[0]->pixelSize().width, 600);
    EXPECT_EQ(host.owner->images[1]->pixelSize().width, 300);
    EXPECT_EQ(editor->window(), &host.window());
}

TEST(TesselViewController, TheBarFollowsTheCanvas) {
    EditorScreen host;
    const auto& editor = host.present().editor;
    const auto& bar = editor->toolView();
    host.draw();
    EXPECT_TRUE(bar->undoButton()->isEnabled());
    host.use(bar->undoButton());
    EXPECT_TRUE(editor->drawView()->tools().empty());
    host.use(bar->redoButton());
    EXPECT_EQ(editor->drawView()->tools().size(), 1u);
    editor->drawView()->beginDrawingForTypeWithDrawType(ToolType::Text, 0);
    Finger(host.window()).tap({80, 500});
    host.wait(1);
    ASSERT_TRUE(editor->drawView()->curEdittingTextTool());
    EXPECT_TRUE(bar->undoButton()->isHidden());
    host.use(bar->doneButton());
    EXPECT_FALSE(editor->drawView()->curEdittingTextTool());
    EXPECT_FALSE(bar->undoButton()->isHidden());
    editor->setTopNavigationItemTitle(true, "返回");
    editor->setTopNavigationItemTitle(false, "完成了");
    EXPECT_EQ(bar->closeButton()->currentTitle(), "返回");
    EXPECT_EQ(bar->confirmButton()->currentTitle(), "完成了");
}

TEST(TesselViewController, TwoFingersOnTheCanvasFadeTheButtons) {
    EditorScreen host;
    const auto& editor = host.present().editor;
    const test::TwoFingers apart{.center = {195, 400}, .radius = 60};
    const auto fade = [&](const std::vector<std::shared_ptr<ui::View>>& faded) {
        for (const auto& view : faded)
            EXPECT_TRUE(isShown(*view));
        pinchRotate(host.window(), apart, {.center = {195, 400}, .radius = 120}, 4);
        host.wait(0.3);
        for (const auto& view : faded)
            EXPECT_EQ(view->alpha(), 0);
        host.window().fingersCancelled({});
        host.wait(1);
        for (const auto& view : faded)
            EXPECT_TRUE(isShown(*view));
    };
    fade({editor->penView()});
    host.drawAndSelect();
    fade({editor->configViewEdit(), editor->configViewDelete()});
    EXPECT_EQ(editor->penView()->alpha(), 0);
}

TEST(TesselViewController, ZoomsInFromAThumbnailAndOutAgain) {
    EditorScreen host;
    host.editor =
        TesselViewController::initWithSourceImageScaleNeedInitAnimateFromRectFromScaleWithDelegate(
            host.picture(300, 400), 0, true, {10, 20, 30, 40}, 0.5, host.owner);
    const auto& editor = host.present().editor;
    const auto picture = [&] { return editor->viewAnimateImageView(); };
    EXPECT_TRUE(editor->drawView()->isHidden());
    EXPECT_EQ(editor->toolView()->alpha(), 0);
    EXPECT_EQ(editor->penView()->alpha(), 0);
    EXPECT_EQ(host.shown(picture()), gfx::Rect(17.5, 30, 15, 20));
    bool wasAsked = false;
    editor->startAnimateIn([&] { wasAsked = true; });
    EXPECT_TRUE(wasAsked);
    EXPECT_EQ(picture()->shownRectInWindow(), gfx::Rect(17.5, 30, 15, 20));
    host.wait(0.35);
    EXPECT_FALSE(editor->needInitAnimate());
    EXPECT_EQ(host.shown(picture()), gfx::Rect(45, 222, 300, 400));
    EXPECT_TRUE(editor->drawView()->isHidden());
    host.wait(0.1);
    EXPECT_FALSE(picture() || editor->drawView()->isHidden());
    EXPECT_TRUE(isShown(*editor->toolView()) && isShown(*editor->penView()));

    editor->startAnimateOut({300, 700, 60, 80});
    EXPECT_TRUE(editor->drawView()->isHidden() && editor->needInitAnimate());
    host.wait(0.35);
    EXPECT_EQ(host.shown(picture()), gfx::Rect(300, 700, 60, 80));
    host.wait(0.1);
    EXPECT_FALSE(picture() || editor->drawView()->isHidden() || editor->needInitAnimate());
}

TEST(TesselViewController, AnotherPictureIsPickedOrRefused) {
    EditorScreen host;
    const auto& editor = host.present().editor;
    host.draw();
    editor->clickPickImage();
    host.environment().answerPick(std::nullopt);
    host.wait(1);
    EXPECT_TRUE(isShown(*editor->penView()) && editor->drawView()->hasDrawed());
    // While the edit and delete buttons go.
    host.drawAndSelect();
    editor->drawView()->selectNone();
    host.wait(0.1);
    editor->clickPickImage();
    host.environment().answerPick(host.picture(300, 400));
    host.wait(1);
    EXPECT_TRUE(isShown(*editor->penView()));
    editor->clickPickImage();
    host.environment().answerPick(host.picture(200, 100));
    EXPECT_EQ(editor->drawView()->bgImgRect().size, gfx::Size(200, 100));
    EXPECT_EQ(editor->penView()->alpha(), 0);
    EXPECT_TRUE(host.takeAlerts().empty());
    editor->clickPickImage();
    host.environment().answerPick(gfx::ImageRef());
    host.wait(1);
    EXPECT_TRUE(isShown(*editor->penView()));
    EXPECT_FALSE(editor->drawView()->bgImg());
    const auto alerts = host.takeAlerts();
    ASSERT_EQ(alerts.size(), 1u);
    EXPECT_EQ(alerts[0].title + alerts[0].message + alerts[0].buttons.at(0),
              "无法载入图片载入此图片时出错好");
}

TEST(TesselViewController, AsksForNoPictureWhereThereAreNone) {
    EditorScreen host;
    host.environment().setPhotoLibraryAvailable(false);
    host.present().editor->clickPickImage();
    host.environment().answerPick(host.picture(200, 100));
    EXPECT_EQ(host.editor->drawView()->bgImgRect().size, gfx::Size(300, 400));
}

TEST(TesselViewController, AThumbnailOfNoScaleGrowsFromNothing) {
    EditorScreen host;
    const auto none = gfx::ImageRef();
    host.editor = TesselViewController::initWithSourceImageNeedInitAnimateFromRectWithDelegate(
        none, true, {10, 20, 30, 40}, host.owner);
    host.present();
    EXPECT_TRUE(host.shown(host.editor->viewAnimateImageView()).isEmpty());
    // An editor that was made without a picture takes the first one that is picked.
    const gfx::ImageRef first = host.picture(30, 40);
    for (const gfx::ImageRef& image : {first, host.picture(20, 20)}) {
        host.editor->clickPickImage();
        host.environment().answerPick(image);
        EXPECT_EQ(host.editor->drawView()->bgImgRect().size, image->size());
    }
    EXPECT_EQ(host.editor->snipImage(), first);
}

TEST(TesselViewController, FollowsTheSizeOfItsWindow) {
    EditorScreen host;
    const auto& editor = host.present().editor;
    host.use(editor->penView());
    host.window().setSize({1280, 800});
    host.wait(1);
    EXPECT_EQ(editor->padding(), 36);
    EXPECT_NEAR(editor->offset(), 404 / 3.0, 1e-9);
    EXPECT_EQ(host.shown(editor->penPopView()), gfx::Rect(436, 584, 408, 38));
    EXPECT_NEAR(host.shown(editor->colorPopView()).minX(), 436 + 404 / 3.0, 1e-9);
    EXPECT_EQ(editor->drawView()->frame(), gfx::Rect(0, 0, 1280, 800));
    EXPECT_EQ(editor->maskView()->frame().size.width, 1280);
}

// ---- what lets go of whom

TEST(TesselViewController, MayBeLetGoOfInEveryAnswerOfItsHost) {
    // By confirming, by closing at once, and by closing after the question.
    for (const int way : {0, 1, 2}) {
        EditorScreen host;
        host.present();
        const std::weak_ptr<TesselViewController> editor = host.editor;
        const auto bar = host.editor->toolView();
        host.owner->answer = [&] {
            host.window().setRootViewController(nullptr);
            host.editor.reset();
            host.owner.reset();
        };
        if (way == 2) {
            host.draw();
            host.use(bar->closeButton());
            host.tap(host.editor->actionSheet()->buttonWithTag(1));
        } else {
            host.tap(way == 0 ? std::shared_ptr<ui::View>(bar->confirmButton())
                              : bar->closeButton());
        }
        host.wait(1);
        EXPECT_FALSE(host.owner) << way;
        EXPECT_TRUE(editor.expired()) << way;
    }
}

TEST(TesselViewController, MayBeLetGoOfInEveryTextThatItLogs) {
    for (const std::string last :
         {"draw canUseRingAnimation 1", "###### startScaleAnimate In start",
          "###### startScaleAnimate In end", "###### startScaleAnimate out start",
          "###### startScaleAnimate out end", "draw viewWillDisappear "}) {
        EditorScreen host;
        const std::weak_ptr<TesselViewController> editor = host.editor;
        host.editor->setLogTranferBlock([&host, last](const std::string& text) {
            if (text != last || !host.editor) return;
            host.editor.reset();
            host.window().setRootViewController(nullptr);
        });
        host.present();
        const std::function<void()> steps[] = {
            [&] { host.editor->startAnimateIn(); },
            [&] {
                host.editor->startAnimateOut({0, 0, 9, 9});
            },
            [&] { host.window().setRootViewController(nullptr); }};
        for (const auto& step : steps) {
            if (host.editor) step();
            host.wait(1);
        }
        EXPECT_TRUE(!host.editor && editor.expired()) << last;
    }
}

TEST(TesselViewController, NothingThatWasScheduledKeepsOrMissesIt) {
    // Gone at once, in the middle of its set-up, its panel, its buttons and its transitions.
    const std::function<void(EditorScreen&)> moments[] = {
        [](EditorScreen&) {},
        [](EditorScreen& host) { host.wait(0.05); },
        [](EditorScreen& host) { (host.wait(1), host.tap(host.editor->penView())); },
        [](EditorScreen& host) {
            (host.wait(1), host.use(host.editor->penView()));
            host.tap(host.editor->confirmButton());
        },
        [](EditorScreen& host) { (host.wait(1), host.editor->seletedToolsStateChanged(true)); },
        [](EditorScreen& host) {
            (host.wait(1), host.drawAndSelect(), host.tap(host.editor->configViewEdit()));
        },
        [](EditorScreen& host) { host.editor->startAnimateIn(); },
        [](EditorScreen& host) {
            (host.wait(1), host.editor->startAnimateOut({0, 0, 9, 9}));
        },
        [](EditorScreen& host) { host.editor->clickPickImage(); },
        [](EditorScreen& host) {
            (host.wait(1), host.draw(), host.tap(host.editor->toolView()->closeButton()));
        },
    };
    for (const auto& moment : moments) {
        EditorScreen host;
        host.window().setRootViewController(host.editor);
        moment(host);
        const std::weak_ptr<TesselViewController> editor = host.editor;
        host.window().setRootViewController(nullptr);
        host.editor.reset();
        EXPECT_TRUE(editor.expired()) << &moment - moments;
        host.environment().answerPick(host.picture(20, 20));
        host.wait(1);
        EXPECT_TRUE(host.window().rootView()->subviews().empty()) << &moment - moments;
    }
}

}  // namespace
}  // namespace kalim
