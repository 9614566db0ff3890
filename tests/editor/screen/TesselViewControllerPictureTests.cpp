#include "kalimkit/editor/screen/TesselViewController.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "kalimkit/editor/screen/EditorRemote.h"
#include "kalimkit/editor/screen/EditorTables.h"
#include "kalimkit/ui/control/AlertView.h"
#include "tests/editor/screen/EditorScreen.h"

namespace kalim {
namespace {

using test::EditorScreen;
using test::isShown;

// Enlarges the canvas.
void zoomCanvas(EditorScreen& host) {
    test::pinchRotate(host.window(), {{195, 422}, 50}, {{195, 422}, 150}, 8);
    test::Finger(host.window(), 1).up();
    test::Finger(host.window(), 2).up();
    host.wait(2);
}

TEST(TesselViewController, TheWayOutEndsOnItsTargetAtEveryScaleAndTellsTheHost) {
    for (const bool isForgiving : {false, true}) {
        EditorScreen host;
        const auto& editor = host.present().editor;
        editor->setForgiving(isForgiving);
        zoomCanvas(host);
        ASSERT_GT(editor->drawView()->getScale(), 1.5);
        const gfx::Rect target(300, 700, 60, 80);
        std::string told;
        const auto tell = [&](bool finished) { told += finished ? "there " : "not "; };
        editor->startAnimateOut({0, 0, 5, 5}, tell);
        editor->startAnimateOut(target, tell);
        host.wait(0.29);
        EXPECT_EQ(told, "");
        host.wait(0.03);
        EXPECT_EQ(told, "not there ");
        const gfx::Rect seen = editor->viewAnimateImageView()->shownRectInWindow();
        EXPECT_TRUE(target.inset(-1e-9, -1e-9).contains(seen));
        EXPECT_TRUE(seen.inset(-1e-9, -1e-9).contains(target));
        host.wait(0.2);
        EXPECT_EQ(editor->drawView()->isHidden(), isForgiving);
        // It is there when the editor is shown again.
        host.window().setRootViewController(nullptr);
        EXPECT_FALSE(host.present().editor->drawView()->isHidden());
        editor->onCropImageDone(host.picture(10, 10));
        editor->startAnimateOut(target, tell);
        EXPECT_EQ(told, "not there not ");
    }
}

TEST(TesselViewController, AThumbnailOfNoScaleGrowsFromNothing) {
    EditorScreen host;
    const auto none = gfx::ImageRef();
    host.editor = TesselViewController::initWithSourceImageNeedInitAnimateFromRectWithDelegate(
        none, true, {10, 20, 30, 40}, host.owner);
    host.present();
    EXPECT_TRUE(host.shown(host.editor->viewAnimateImageView()).isEmpty());
    bool wasAsked = false;
    host.editor->startAnimateIn([&] { wasAsked = true; });
    EXPECT_TRUE(wasAsked);
    // An editor that was made without a picture takes the first one that is picked.
    const gfx::ImageRef first = host.picture(30, 40);
    for (const gfx::ImageRef& image : {first, host.picture(20, 20)}) {
        host.editor->clickPickImage();
        host.environment().answerPick(image);
        EXPECT_EQ(host.editor->drawView()->bgImgRect().size, image->size());
    }
    EXPECT_EQ(host.editor->snipImage(), first);
}

TEST(TesselViewController, ThePenButtonIsThereHoweverPickingAPictureEnds) {
    EditorScreen host;
    const auto& editor = host.present().editor;
    host.drawAndSelect();
    // While the edit and delete buttons go.
    editor->drawView()->selectNone();
    host.wait(0.1);
    for (const std::optional<gfx::ImageRef>& picked :
         {std::optional(host.picture(300, 400)), {}, std::optional(gfx::ImageRef())}) {
        editor->clickPickImage();
        host.environment().answerPick(picked);
        host.wait(1);
        EXPECT_TRUE(isShown(*editor->penView()));
    }
    EXPECT_FALSE(editor->drawView()->bgImg());
}

TEST(TesselViewController, APickedPictureAsksBeforeItReplacesWorkWhereItIsForgiving) {
    EditorScreen host;
    host.environment().setShowsAlerts(true);
    const auto& editor = host.present().editor;
    editor->setForgiving(true);
    host.draw();
    struct Case {
        gfx::ImageRef picture;
        bool isCropping;
        std::size_t button;
        const char* title;
        gfx::Size size;
    };
    const gfx::ImageRef picture = host.picture(200, 100);
    const Case cases[] = {{nullptr, false, 0, "无法载入图片", {300, 400}},
                          {picture, true, 0, "请先完成裁剪", {300, 400}},
                          {picture, false, 0, "打开新图片？", {300, 400}},
                          {picture, false, 1, "打开新图片？", {200, 100}}};
    for (const Case& c : cases) {
        if (c.isCropping) EditorRemote(editor).choosePen(EditorPenCrop);
        editor->clickPickImage();
        host.environment().answerPick(c.picture);
        const auto alert = ui::AlertView::topmostIn(host.window());
        ASSERT_TRUE(alert) << c.title;
        EXPECT_EQ(alert->alert().title, c.title);
        EXPECT_EQ(editor->drawView()->hasDrawed(), true) << c.title;
        alert->dismissWithButton(c.button);
        host.wait(1);
        EXPECT_EQ(editor->drawView()->bgImg()->size(), c.size) << c.title;
        EXPECT_TRUE(isShown(*editor->penView())) << c.title;
        if (c.isCropping) editor->editImageInitialView()->onCropToolBarCancelBtnClicked();
        host.wait(1);
    }
    EXPECT_FALSE(editor->drawView()->hasDrawed());
}

TEST(TesselViewController, AsksForNoPictureWhereThereAreNone) {
    EditorScreen host;
    host.environment().setPhotoLibraryAvailable(false);
    host.present().editor->clickPickImage();
    host.environment().answerPick(host.picture(200, 100));
    EXPECT_EQ(host.editor->drawView()->bgImgRect().size, gfx::Size(300, 400));
}

}  // namespace
}  // namespace kalim
