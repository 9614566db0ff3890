#include <gtest/gtest.h>

#include "kalimkit/shapes/MDrawText.h"
#include "tests/canvas/CanvasHost.h"

namespace kalim {
namespace {

using test::CanvasHost;
using ui::GestureState;

constexpr gfx::Color blue{0, 0, 1, 1};

// A canvas that fills a window whose size, and screen, change.
struct ResizedHost : CanvasHost {
    using CanvasHost::CanvasHost;

    void resize(gfx::Size size) {
        window().setSize(size);
        canvas->setFrame({{}, size});
        window().display();
    }
    void setScale(double scale) {
        ui::Screen screen = environment().screen();
        screen.scale = scale;
        environment().setScreen(screen);
        window().setSize(window().size());
    }
    // Columns of a different colour every four pixels, so that blocks differ from what they hide.
    gfx::ImageRef stripes(int width, int height) {
        gfx::Bitmap bitmap(width, height);
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x)
                bitmap.setColorAt(x, y, {x % 8 < 4 ? 1.0 : 0.0, x * 1.0 / width, 0.5, 1});
        }
        return environment().device().makeImage(std::move(bitmap), 1, gfx::ImageOrientation::Up);
    }
    gfx::Bitmap screen() {
        window().display();
        return *window().surface()->makeImage()->pixels();
    }
    gfx::Rect shownPicture() { return canvas->mViewTransform().apply(canvas->bgImgRect()); }
    void drawSome() {
        draw(ToolType::Rectangle, {150, 400}, {250, 460});
        draw(ToolType::Mosaic, {120, 380}, {170, 440});
        draw(ToolType::Arrow, {100, 420}, {280, 420});
    }
};

void expectNear(const gfx::Rect& actual, const gfx::Rect& expected) {
    EXPECT_NEAR(actual.minX(), expected.minX(), 0.01);
    EXPECT_NEAR(actual.minY(), expected.minY(), 0.01);
    EXPECT_NEAR(actual.size.width, expected.size.width, 0.01);
    EXPECT_NEAR(actual.size.height, expected.size.height, 0.01);
}

TEST(MDrawViewResize, ThePictureIsShownFittedAndCentredAsIfItHadJustCome) {
    const struct {
        gfx::Size picture;
        gfx::Size view;
        gfx::Rect shown;
    } cases[] = {
        // 780 x 600 lies on the canvas as 390 x 300.
        {{780, 600}, {844, 390}, {168.5, 0, 507, 390}},
        // Never larger than it is.
        {{780, 600}, {1600, 900}, {410, 150, 780, 600}},
        // Small pictures keep their size, and shrink where they must.
        {{200, 100}, {844, 390}, {322, 145, 200, 100}},
        {{200, 100}, {100, 300}, {0, 125, 100, 50}},
        // Fills the first view, at 0.86 there, and only its height afterwards.
        {{390, 844}, {844, 390}, {422 - 90.107, 0, 180.213, 390}},
    };
    for (const auto& [picture, view, shown] : cases) {
        ResizedHost host;
        host.canvas->setSnipImage(host.plainPicture(static_cast<int>(picture.width),
                                                    static_cast<int>(picture.height), blue));
        host.resize({390, 844});
        const gfx::Rect before = host.shownPicture();
        const gfx::Rect place = host.canvas->bgImgRect();
        host.resize(view);
        expectNear(host.shownPicture(), shown);
        EXPECT_EQ(host.canvas->bgImgRect(), place);
        EXPECT_EQ(host.canvas->contextScale(), 1);
        host.resize({390, 844});
        EXPECT_EQ(host.shownPicture(), before);
    }
}

TEST(MDrawViewResize, TurningTheDeviceAndBackShowsAndExportsTheSame) {
    ResizedHost host({.scale = 2});
    host.canvas->setSnipImage(host.stripes(780, 600));
    host.drawSome();
    const gfx::Bitmap screen = host.screen();
    const gfx::Point start = host.canvas->tools()[0]->startPoint();
    const gfx::Bitmap exported = *host.canvas->exportImage()->pixels();
    const gfx::Bitmap atPictureScale = *host.canvas->exportImageAtPictureScale()->pixels();

    host.resize({844, 390});
    EXPECT_EQ(host.canvas->tools()[0]->startPoint(), start);
    EXPECT_EQ(*host.canvas->exportImage()->pixels(), exported);
    EXPECT_EQ(*host.canvas->exportImageAtPictureScale()->pixels(), atPictureScale);
    // A finger draws where it is seen: the shown picture's corner is the canvas's.
    const ToolRef line = host.draw(ToolType::Line, {168.5, 0}, {600, 300});
    EXPECT_NEAR(line->startPoint().x, 0, 1e-9);
    EXPECT_NEAR(line->startPoint().y, 272, 1e-9);
    EXPECT_TRUE(host.canvas->undo());
    EXPECT_EQ(host.canvas->tools().size(), 3U);

    host.resize({390, 844});
    EXPECT_EQ(host.screen(), screen);
    while (host.canvas->undo()) {
    }
    EXPECT_TRUE(host.canvas->tools().empty());
}

TEST(MDrawViewResize, AMosaicPatchShowsTheSameBlocksOfThePictureAtEverySize) {
    ResizedHost host;
    host.canvas->setSnipImage(host.stripes(390, 300));
    host.draw(ToolType::Mosaic, {95, 322}, {255, 502});
    const gfx::Bitmap before = host.screen();
    host.resize({844, 390});
    ASSERT_EQ(host.shownPicture(), gfx::Rect(227, 45, 390, 300));
    const gfx::Bitmap after = host.screen();
    for (int x = 0; x < 390; x += 3) {
        // 45 - 272 and 227 - 0 is how far the picture has moved.
        EXPECT_EQ(after.colorAt(x + 227, 200 - 27).hex(), before.colorAt(x, 400).hex()) << x;
    }
}

TEST(MDrawViewResize, AZoomEndsAndContentBeyondThePictureIsFittedToo) {
    ResizedHost host;
    host.canvas->setSnipImage(host.plainPicture(200, 100, blue));
    host.draw(ToolType::Line, {195, 422}, {195, 40});
    host.canvas->handlePinchGesture(GestureState::Began, 1, {195, 422});
    host.canvas->handlePinchGesture(GestureState::Changed, 2, {195, 422});
    host.resize({844, 390});
    host.canvas->handlePinchGesture(GestureState::Ended, 2, {195, 422});
    const gfx::Rect shown = host.canvas->mViewTransform().apply(host.canvas->ctxRect());
    EXPECT_NEAR(shown.minY(), 0, 1e-9);
    EXPECT_NEAR(shown.maxY(), 390, 1e-9);
    EXPECT_NEAR(shown.midX(), 422, 1e-9);
}

TEST(MDrawViewResize, DrawingsWithoutAPictureComeIntoSightAndGoBackToTheirPlace) {
    ResizedHost host;
    const ToolRef line = host.draw(ToolType::Line, {100, 700}, {300, 800});
    const gfx::Bitmap screen = host.screen();
    host.resize({844, 390});
    EXPECT_TRUE(gfx::Rect(0, 0, 844, 390)
                    .contains(host.canvas->mViewTransform().apply(host.canvas->ctxRect())));
    host.resize({390, 844});
    EXPECT_EQ(host.screen(), screen);
    EXPECT_EQ(line->startPoint(), (gfx::Point{100, 700}));
}

TEST(MDrawViewResize, APictureThatCameBeforeTheViewHadASizeIsFittedWhenItGetsOne) {
    ResizedHost host;
    const gfx::ImageRef picture = host.stripes(780, 600);
    host.canvas->setSnipImage(picture);
    host.draw(ToolType::Mosaic, {95, 322}, {255, 502});
    const gfx::Bitmap expected = host.screen();

    ResizedHost late;
    late.canvas->setFrame({});
    late.canvas->setSnipImage(late.stripes(780, 600));
    late.wait(0.1);
    // Only one side so far.
    late.canvas->setFrame({0, 0, 390, 0});
    late.window().display();
    late.resize({390, 844});
    EXPECT_EQ(late.canvas->bgImgRect(), gfx::Rect(0, 272, 390, 300));
    EXPECT_EQ(late.canvas->ctxRect(), late.canvas->bgImgRect());
    late.draw(ToolType::Mosaic, {95, 322}, {255, 502});
    EXPECT_EQ(late.screen(), expected);
}

TEST(MDrawViewResize, ATextThatIsTypedGoesWithThePictureAndKeepsItsSize) {
    ResizedHost host;
    host.canvas->setSnipImage(host.plainPicture(780, 600, blue));
    host.pick(ToolType::Text);
    host.tap({100, 400});
    const std::shared_ptr<MDrawText> text = host.canvas->curEdittingTextTool();
    ASSERT_TRUE(text);
    text->textView()->insertText("字");
    const double size = text->fontSize();
    host.resize({844, 390});
    ASSERT_TRUE(text->isEdittingText());
    // 1.3 times as large, from the picture's corner at (168.5, 0).
    EXPECT_NEAR(text->textView()->frame().minX(), 168.5 + 100 * 1.3, 0.01);
    EXPECT_NEAR(text->textView()->frame().minY(), (400 - 272) * 1.3, 0.01);
    EXPECT_NEAR(text->textView()->font().size, size * 1.3, 1e-9);
    host.canvas->finishEditText();
    EXPECT_EQ(text->startPoint(), (gfx::Point{100, 400}));
    EXPECT_EQ(text->fontSize(), size);
    // The owner has placed the canvas; nothing moves it back.
    EXPECT_EQ(host.canvas->frame(), gfx::Rect(0, 0, 844, 390));
}

TEST(MDrawViewResize, ANewScaleOfTheScreenSharpensThePictureAndKeepsItsPlace) {
    ResizedHost host;
    host.canvas->setSnipImage(host.stripes(780, 600));
    host.drawSome();
    const gfx::Bitmap screen = host.screen();
    const gfx::Bitmap exported = *host.canvas->exportImage()->pixels();
    const gfx::AffineTransform transform = host.canvas->mViewTransform();
    host.setScale(2);
    host.window().display();
    EXPECT_EQ(host.canvas->mViewTransform(), transform);
    EXPECT_EQ(host.canvas->bgImg()->pixelSize(), (gfx::PixelSize{780, 600}));
    // Pixel for pixel: columns of four, not blurred.
    EXPECT_EQ(host.screen().colorAt(2, 560).hex().substr(0, 3), "#FF");
    EXPECT_EQ(host.screen().colorAt(6, 560).hex().substr(0, 3), "#00");
    host.setScale(1);
    EXPECT_EQ(host.screen(), screen);
    EXPECT_EQ(*host.canvas->exportImage()->pixels(), exported);
}

}  // namespace
}  // namespace kalim
