#include <gtest/gtest.h>

#include "kalimkit/canvas/ToolType.h"
#include "kalimkit/ui/control/TextView.h"
#include "tests/editor/screen/EditorScreen.h"

namespace kalim {
namespace {

using test::EditorScreen;
using test::Finger;

// An editor whose canvas belongs to the picture and lies between the bars, in a window of a size.
struct BasisScreen : EditorScreen {
    explicit BasisScreen(gfx::Size size, double scale = 1)
        : EditorScreen({.scale = scale, .size = size}) {
        editor = TesselViewController::initWithSourceImageWithDelegate(stripes(1601, 1203), owner);
        editor->setExportsAtPictureScale(true);
        editor->setCanvasBasis(MDrawView::usualBasis);
        editor->setLaysPictureBetweenBars(true);
        editor->setClipsToPicture(true);
        editor->setForgiving(true);
        present();
    }

    gfx::ImageRef stripes(int width, int height) {
        gfx::Bitmap bitmap(width, height);
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x)
                bitmap.setColorAt(x, y, {x % 7 / 7.0, y % 11 / 11.0, x * 1.0 / width, 1});
        }
        return environment().device().makeImage(std::move(bitmap), 1, gfx::ImageOrientation::Up);
    }
    MDrawView& canvas() const { return *editor->drawView(); }
    // In the window, where a part of the picture's width and height is shown.
    gfx::Point at(double x, double y) const {
        const gfx::Size size = canvas().bgImgRect().size;
        return canvas().convertPointTo(
            canvas().mViewTransform().apply(gfx::Point{x * size.width, y * size.height}), nullptr);
    }
    gfx::Rect shownPicture() const {
        return canvas().convertRectTo(canvas().mViewTransform().apply(canvas().bgImgRect()),
                                      nullptr);
    }
    void draw(ToolType::Number type, gfx::Point from, gfx::Point to) {
        canvas().beginDrawingForTypeWithDrawType(type, 0);
        Finger(window()).down(at(from.x, from.y)).moveTo(at(to.x, to.y), 5).up();
    }
    void type(const char* text, gfx::Point place) {
        canvas().beginDrawingForTypeWithDrawType(ToolType::Text, 0);
        Finger(window()).tap(at(place.x, place.y));
        if (const auto field = ui::TextView::focusedIn(window())) field->insertText(text);
        canvas().finishEditText();
        canvas().selectNone();
    }
    void resize(gfx::Size size) {
        window().setSize(size);
        wait(0.1);
    }
    gfx::Bitmap sent() {
        editor->clickToolConfirm();
        return *owner->images.back()->pixels();
    }
    void drawEverything() {
        draw(ToolType::Mosaic, {0.1, 0.1}, {0.33, 0.3});
        canvas().setDrawLineWidth(12);
        draw(ToolType::Arrow, {0.2, 0.8}, {0.437, 0.611});
        draw(ToolType::Ellipse, {0.5, 0.2}, {0.713, 0.417});
        canvas().setDrawLineWidth(7);
        draw(ToolType::Rectangle, {0.8, 0.7}, {1.01, 0.9});
        canvas().beginDrawingForTypeWithDrawType(ToolType::Freehand, 0);
        Finger finger(window());
        finger.down(at(0.1, 0.5));
        for (int i = 1; i < 40; ++i)
            finger.moveTo(at(0.1 + 0.01 * i, 0.5 + (i % 5) * 0.013));
        finger.up();
        wait(2);
        type("Lines break where they did, however large the window is. 文字", {0.55, 0.52});
        // Moves the arrow, and takes the rectangle by a corner.
        Finger(window()).tap(at(0.32, 0.7));
        Finger(window()).down(at(0.32, 0.7)).moveTo(at(0.36, 0.65), 4).up();
        canvas().selectTools({canvas().tools()[3]});
        Finger(window()).down(at(0.8, 0.7)).moveTo(at(0.75, 0.6), 4).up();
        wait(1);
    }
};

TEST(PictureBasis, WindowsOfEverySizeSendTheSameBytesForTheSameStrokes) {
    BasisScreen large({3840, 2160});
    large.drawEverything();
    ASSERT_EQ(large.canvas().tools().size(), 6U);
    const gfx::Bitmap expected = large.sent();
    ASSERT_EQ(expected.size(), (gfx::PixelSize{1601, 1203}));
    const struct {
        gfx::Size size;
        double scale;
    } windows[] = {{{1280, 800}, 1}, {{390, 844}, 3}, {{844, 390}, 2}};
    for (const auto& [size, scale] : windows) {
        BasisScreen screen(size, scale);
        screen.drawEverything();
        EXPECT_EQ(screen.sent(), expected) << size.width;
    }
    // Also one that changes while a finger is down.
    BasisScreen screen({1280, 800});
    Finger(screen.window()).down(screen.at(0.2, 0.8));
    screen.resize({480, 720});
    screen.window().fingersCancelled({{1, screen.at(0.2, 0.8)}});
    screen.drawEverything();
    screen.resize({1000, 500});
    EXPECT_EQ(screen.sent(), expected);
}

TEST(PictureBasis, ThePictureLiesBetweenTheBarsInEveryWindow) {
    BasisScreen screen({480, 720});
    const auto& editor = screen.editor;
    const auto expectBetweenBars = [&](const char* when) {
        const gfx::Rect shown = screen.shownPicture();
        const double top = screen.shown(editor->toolView()).maxY();
        const double bottom = screen.shown(editor->penView()).minY();
        EXPECT_GE(shown.minY(), top - 1e-6) << when << screen.window().size().height;
        EXPECT_LE(shown.maxY(), bottom + 1e-6) << when << screen.window().size().height;
        const double width = screen.window().size().width;
        EXPECT_NEAR(shown.midX(), width / 2, 0.01);
        const bool isFitted = shown.size.width > width - 1 || shown.size.height > bottom - top - 10;
        EXPECT_TRUE(isFitted) << when << screen.window().size().height;
    };
    for (const gfx::Size size : {gfx::Size{480, 720}, gfx::Size{1280, 800}, gfx::Size{390, 844},
                                 gfx::Size{844, 390}, gfx::Size{240, 240}}) {
        screen.resize(size);
        expectBetweenBars("resized ");
        screen.canvas().setSnipImage(screen.stripes(3000, 1000));
        screen.wait(0.1);
        expectBetweenBars("wide ");
        screen.editor->onCropImageDone(screen.stripes(900, 2700));
        screen.wait(0.1);
        expectBetweenBars("cropped ");
    }
    editor->setLaysPictureBetweenBars(false);
    screen.resize({400, 800});
    EXPECT_LT(screen.shownPicture().minY(), 60);
}

TEST(PictureBasis, HandlesAndReachesKeepTheirSizeOnTheScreen) {
    for (const gfx::Size size : {gfx::Size{3840, 2160}, gfx::Size{390, 844}}) {
        BasisScreen screen(size);
        screen.draw(ToolType::Rectangle, {0.3, 0.3}, {0.7, 0.7});
        const ToolRef box = screen.canvas().tools().back();
        screen.canvas().selectTools({box});
        screen.wait(0.1);
        const gfx::Point corner = screen.at(0.7, 0.7);
        const auto isGrabbed = [&](double distance) {
            const gfx::Point p = screen.canvas().invertViewPoint(
                screen.canvas().convertPointFrom(corner + gfx::Point{distance, 0}, nullptr));
            return box->isPointOnHandle(p, box->endPoint());
        };
        EXPECT_TRUE(isGrabbed(20)) << size.width;
        EXPECT_FALSE(isGrabbed(30)) << size.width;
        const auto seen = screen.canvas().exportImageForScale()->pixels();
        const auto isHandle = [&](double distance) {
            return seen->colorAt(static_cast<int>(corner.x + distance),
                                 static_cast<int>(corner.y + distance))
                       .hex() == "#24A9E9FF";
        };
        EXPECT_TRUE(isHandle(3)) << size.width;
        EXPECT_FALSE(isHandle(8)) << size.width;
    }
}

}  // namespace
}  // namespace kalim
