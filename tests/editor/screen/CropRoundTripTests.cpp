#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "tests/editor/screen/EditorScreen.h"
#include "tests/image/CoordinatePictures.h"

namespace kalim {
namespace {

using test::Finger;

// The editor with a picture whose pixels know their place, exporting at the picture's scale; from
// the crop pen on.
class CropRoundTrip : public test::EditorScreen {
public:
    explicit CropRoundTrip(int width = 240, int height = 180) : EditorScreen({1, {260, 520}}) {
        editor = TesselViewController::initWithSourceImageWithDelegate(
            test::coordinatePicture(*this, width, height), owner);
        editor->setExportsAtPictureScale(true);
        present();
    }
    ~CropRoundTrip() { window().setRootViewController(nullptr); }

    EditImageIntialView& open() {
        use(editor->penView());
        use(editor->penViews()[5]);
        return *editor->editImageInitialView();
    }
    void rotate() { use(editor->editImageInitialView()->cropToolBar()->rotateBtn()); }
    void confirm() { use(editor->editImageInitialView()->cropToolBar()->doneBtn()); }
    void dragEdge(gfx::Point from, gfx::Point by) {
        Finger(window()).down(from).moveTo(from + by, 8).up();
        wait(1);
    }
    gfx::BitmapRef composite() { return editor->drawView()->exportImageAtPictureScale()->pixels(); }
};

// How the cut differs from a part of what it was made of, or empty.
std::string difference(const gfx::Bitmap& cut, const gfx::Bitmap& whole, int left, int top) {
    for (int y = 0; y < cut.size().height; ++y) {
        for (int x = 0; x < cut.size().width; ++x) {
            if (cut.colorAt(x, y) == whole.colorAt(left + x, top + y)) continue;
            return "at " + std::to_string(x) + ", " + std::to_string(y);
        }
    }
    return "";
}

TEST(CropRoundTrip, TwoCropsTakePixelsAsTheyAreAndWhatAMosaicHidStaysHidden) {
    CropRoundTrip screen;
    const gfx::BitmapRef photo = screen.composite();
    screen.editor->drawView()->beginDrawingForTypeWithDrawType(5, 0);
    // The picture is 260 x 195 points, from 162.5 on.
    screen.drag({100, 220}, {220, 320});
    screen.wait(1);
    gfx::BitmapRef before = screen.composite();
    ASSERT_EQ(screen.editor->drawView()->tools().size(), 1U);
    EXPECT_NE(difference(*before, *photo, 0, 0), "");
    for (int round = 0; round < 2; ++round) {
        auto& crop = screen.open();
        screen.dragEdge(crop.cropFrame().origin + gfx::Point{1, 1}, {60, 35});
        const gfx::Rect image = crop.eIScrollView()->imageFrame();
        const gfx::PixelSize size = before->size();
        const int left = static_cast<int>(
            std::floor((crop.cropFrame().minX() - image.minX()) / image.size.width * size.width));
        const int top = static_cast<int>(
            std::floor((crop.cropFrame().minY() - image.minY()) / image.size.height * size.height));
        screen.confirm();
        const gfx::BitmapRef cut = screen.composite();
        EXPECT_GT(left, 20);
        EXPECT_EQ(cut->size(), (gfx::PixelSize{size.width - left, size.height - top})) << round;
        EXPECT_EQ(difference(*cut, *before, left, top), "") << round;
        EXPECT_TRUE(screen.editor->drawView()->tools().empty());
        EXPECT_FALSE(screen.editor->drawView()->canUndo());
        before = cut;
    }
}

TEST(CropRoundTrip, UnchangedItIsTheSamePictureAndNotCropped) {
    for (const gfx::PixelSize size : {gfx::PixelSize{1001, 667}, {240, 180}, {97, 211}}) {
        CropRoundTrip screen(size.width, size.height);
        const gfx::BitmapRef before = screen.composite();
        ASSERT_EQ(before->size(), size);
        screen.open();
        screen.confirm();
        EXPECT_FALSE(screen.editor->isImageCroped());
        EXPECT_EQ(screen.composite()->size(), size);
        EXPECT_EQ(difference(*screen.composite(), *before, 0, 0), "");
    }
}

TEST(CropRoundTrip, OpensWhereTheCanvasShowsThePictureAndFadesOutOverIt) {
    for (const bool isConfirmed : {false, true}) {
        CropRoundTrip screen(200, 300);
        const auto& editor = screen.editor;
        test::pinchRotate(screen.window(), {{130, 260}, 40}, {{160, 240}, 100}, 8);
        Finger(screen.window(), 1).up();
        Finger(screen.window(), 2).up();
        screen.wait(2);
        screen.use(editor->penView());
        const auto& canvas = *editor->drawView();
        const gfx::Rect seen = canvas.mViewTransform().apply(canvas.ctxRect());
        ASSERT_GT(seen.size.width, 350);
        screen.tap(editor->penViews()[5]);
        const auto crop = editor->editImageInitialView();
        const gfx::Rect shown = crop->eIScrollView()->imageView()->shownRectInWindow();
        EXPECT_NEAR(shown.minX(), seen.minX(), 1e-6);
        EXPECT_NEAR(shown.minY(), seen.minY(), 1e-6);
        EXPECT_NEAR(shown.maxX(), seen.maxX(), 1e-6);
        EXPECT_NEAR(shown.maxY(), seen.maxY(), 1e-6);
        screen.wait(1);
        const auto& bar = *crop->cropToolBar();
        screen.tap(isConfirmed ? bar.doneBtn() : bar.cancelBtn());
        EXPECT_FALSE(editor->editImageInitialView());
        screen.wait(0.1);
        EXPECT_NEAR(crop->shownAlpha(), 0.5, 0.06);
        EXPECT_EQ(crop->superview(), editor->view().get());
        EXPECT_EQ(crop->eIScrollView()->superview(), crop.get());
        // The canvas has the fingers already.
        EXPECT_EQ(screen.window().rootView()->hitTest({130, 260}), editor->drawView());
        screen.wait(0.12);
        EXPECT_FALSE(crop->superview());
    }
}

TEST(CropRoundTrip, ForgivingItKeepsTheDrawingsUnlessSomethingIsCutOrTurned) {
    for (const bool isForgiving : {false, true}) {
        CropRoundTrip screen;
        screen.editor->setForgiving(isForgiving);
        screen.drag({100, 220}, {220, 320});
        screen.wait(1);
        const auto& canvas = *screen.editor->drawView();
        ASSERT_EQ(canvas.tools().size(), 1U);
        auto& crop = screen.open();
        screen.dragEdge(crop.cropFrame().origin + gfx::Point{1, 1}, {60, 35});
        screen.use(crop.cropToolBar()->revertBtn());
        for (int turn = 0; turn < 4; ++turn)
            screen.rotate();
        screen.confirm();
        EXPECT_EQ(canvas.tools().size(), isForgiving ? 1U : 0U);
        EXPECT_EQ(canvas.canUndo(), isForgiving);
        screen.open();
        screen.rotate();
        screen.confirm();
        EXPECT_TRUE(canvas.tools().empty() && !canvas.canUndo());
    }
}

// The host lets go of the editor as soon as it hears a log text of the crop editor.
TEST(CropRoundTrip, TheHostMayDropTheEditorWhileItTurnsAPicture) {
    CropRoundTrip screen;
    const auto bar = screen.open().cropToolBar();
    std::weak_ptr<TesselViewController> editor = screen.editor;
    screen.editor->setLogTranferBlock([&](const std::string& text) {
        if (text.find("edit image: rotate") == std::string::npos) return;
        screen.window().setRootViewController(nullptr);
        screen.editor = nullptr;
    });
    screen.tap(bar->rotateBtn());
    EXPECT_TRUE(editor.expired());
    screen.wait(1);
}

}  // namespace
}  // namespace kalim
