#include <gtest/gtest.h>

#include <algorithm>

#include "kalimkit/canvas/PictureCutStep.h"
#include "kalimkit/shapes/Kinds.h"
#include "kalimkit/shapes/MDrawMosiac.h"
#include "kalimkit/shapes/MDrawText.h"
#include "kalimkit/tool/MUndoManager.h"
#include "tests/canvas/CanvasHost.h"

namespace kalim {
namespace {

using test::CanvasHost;

// A picture in which no two pixels nearby are alike, with a tool of every kind over it.
struct CutHost : CanvasHost {
    explicit CutHost(double basis = 1000, bool clips = true) : CanvasHost({.scale = 2}) {
        gfx::Bitmap noise(600, 400);
        for (int y = 0; y < 400; ++y) {
            for (int x = 0; x < 600; ++x)
                noise.setColorAt(x, y, {x % 7 / 6.0, y % 5 / 4.0, (x * 3 + y) % 256 / 255.0, 1});
        }
        picture = environment().device().makeImage(noise, 1, gfx::ImageOrientation::Up);
        canvas->setForgiving(true);
        canvas->setClipsToPicture(clips);
        canvas->setCanvasBasis(basis);
        canvas->setSnipImage(picture);
        canvas->setCalibration(1);
        canvas->setShowMeasurement(true);
        double x = -40;
        for (const ToolClass* kind : kinds()) {
            const auto tool = kind->makeWithStartPoint({x, 20});
            if (!tool) continue;
            tool->setWords("Ag");
            tool->drawThrough(std::vector<gfx::Point>{{x + 40, 200}, {x + 80, 90}, {x + 160, 240}});
            canvas->addTool(tool);
            x += 60;
        }
    }
    bool cut(std::optional<gfx::Rect> crop, int turns) {
        return canvas->setPictureCut({crop, turns});
    }

    gfx::ImageRef picture;
};

TEST(MDrawViewCut, WhatIsExportedIsThatPartOfTheWholeExportTurned) {
    for (const auto& [basis, clips] : {std::pair{1000.0, true}, {1000.0, false}, {0.0, true}}) {
        CutHost host(basis, clips);
        ASSERT_GE(host.canvas->tools().size(), 10U);
        const gfx::Bitmap whole = *host.canvas->exportImageAtPictureScale()->pixels();
        const gfx::Bitmap uncut = *host.canvas->exportUncutImage()->pixels();
        for (int turns = 0; turns < 4; ++turns) {
            const gfx::Rect crop(100 + turns, 60, 301, 222);
            ASSERT_TRUE(host.cut(crop, turns));
            const auto cut = host.canvas->exportImageAtPictureScale()->pixels();
            int differing = 0;
            for (int y = 0; y < 222; ++y) {
                for (int x = 0; x < 301; ++x) {
                    const gfx::Point at[] = {{x * 1.0, y * 1.0},
                                             {y * 1.0, 300.0 - x},
                                             {300.0 - x, 221.0 - y},
                                             {221.0 - y, x * 1.0}};
                    const auto seen =
                        cut->colorAt(static_cast<int>(at[turns].x), static_cast<int>(at[turns].y));
                    differing += seen != uncut.colorAt(x + 100 + turns, y + 60);
                }
            }
            EXPECT_EQ(differing, 0) << basis << ", turned " << turns;
            EXPECT_EQ(cut->width(), turns % 2 == 0 ? 301 : 222);
            // The whole stays what it was, whatever is shown of it.
            EXPECT_EQ(*host.canvas->exportUncutImage()->pixels(), uncut);
        }
        for (int step = 0; step < 4; ++step)
            EXPECT_TRUE(host.canvas->undo());
        EXPECT_EQ(*host.canvas->exportImageAtPictureScale()->pixels(), whole);
    }
}

TEST(MDrawViewCut, IsAStepLikeAnyOther) {
    CutHost host;
    MDrawView& canvas = *host.canvas;
    const auto steps = canvas.undoManager().undoTools().size();
    // No cuts of this picture, and none that change anything.
    for (const auto& [crop, turns] : std::vector<std::pair<gfx::Rect, int>>{{{0, 0, 0, 10}, 0},
                                                                            {{0.5, 0, 10, 10}, 0},
                                                                            {{500, 0, 101, 10}, 0},
                                                                            {{-1, 0, 10, 10}, 0},
                                                                            {{0, 0, 10, 10}, 4},
                                                                            {{0, 0, 600, 400}, 0}})
        EXPECT_FALSE(host.cut(crop, turns));
    EXPECT_FALSE(host.cut(std::nullopt, 0));
    EXPECT_EQ(canvas.undoManager().undoTools().size(), steps);

    const PictureCut first{gfx::Rect(100, 50, 200, 100), 1};
    const PictureCut second{std::nullopt, 2};
    const gfx::Rect whole = canvas.ctxRect();
    const ToolRef tool = canvas.tools().front();
    const gfx::Point start = tool->startPoint();
    ASSERT_TRUE(canvas.setPictureCut(first));
    const gfx::Rect part = canvas.ctxRect();
    EXPECT_NEAR(part.minX(), 100 * 1000 / 600.0, 1e-9);
    // The part lies in the middle of the view, turned, and what is touched there is in it.
    EXPECT_NEAR(canvas.invertViewPoint({195, 422}).x, part.midX(), 0.01);
    const gfx::Rect seen = canvas.mViewTransform().apply(part);
    EXPECT_NEAR(seen.size.height / seen.size.width, 2, 1e-9);
    ASSERT_TRUE(canvas.setPictureCut(second));
    const auto& last = static_cast<PictureCutStep&>(*canvas.undoManager().undoTools().back());
    EXPECT_EQ(last.before(), first);
    EXPECT_EQ(last.after(), second);
    EXPECT_TRUE(canvas.undo());
    EXPECT_EQ(canvas.pictureCut(), first);
    EXPECT_EQ(canvas.ctxRect(), part);
    // In the middle of the way; nothing waits for its end.
    host.wait(0.1);
    EXPECT_TRUE(canvas.undo());
    host.wait(0.1);
    EXPECT_EQ(canvas.pictureCut(), PictureCut{});
    EXPECT_EQ(canvas.ctxRect(), whole);
    EXPECT_TRUE(canvas.redo());
    EXPECT_EQ(canvas.pictureCut(), first);
    EXPECT_EQ(tool->startPoint(), start);
    // A step of another kind cuts what could be redone.
    host.draw(ToolType::Rectangle, {180, 400}, {220, 440});
    EXPECT_FALSE(canvas.canRedo());
    EXPECT_TRUE(canvas.undo());
    EXPECT_TRUE(canvas.undo());
    EXPECT_EQ(canvas.pictureCut(), PictureCut{});
    // A document's cut is no step, and another picture has none.
    EXPECT_TRUE(canvas.resetPictureCut(second));
    EXPECT_TRUE(canvas.canRedo());
    canvas.setSnipImage(host.picture);
    EXPECT_EQ(canvas.pictureCut(), PictureCut{});
    canvas.setSnipImage(nullptr);
    EXPECT_FALSE(canvas.setPictureCut(second));
}

TEST(MDrawViewCut, ATurnIsSeenTurningAndIsCutShortByTwoFingers) {
    CutHost host;
    MDrawView& canvas = *host.canvas;
    const auto shown = [&](gfx::Point p) {
        return canvas.exportImageForScale()
            ->pixels()
            ->colorAt(static_cast<int>(p.x * 2), static_cast<int>(p.y * 2))
            .alpha;
    };
    ASSERT_TRUE(host.cut(std::nullopt, 1));
    host.wait(0.125);
    // On its corner half-way: beyond the upright picture above, and not as high as the turned one.
    EXPECT_GT(shown({195, 240}), 0);
    EXPECT_EQ(shown({10, 180}), 0);
    canvas.handlePinchGesture(ui::GestureState::Began, 1, {195, 422});
    EXPECT_GT(shown({10, 180}), 0);
    canvas.handlePinchGesture(ui::GestureState::Ended, 1, {195, 422});
    host.wait(1);
    // A finger that draws sees where, and nothing moves any more when motion is to be reduced.
    ASSERT_TRUE(canvas.undo());
    host.wait(0.125);
    EXPECT_GT(shown({195, 240}), 0);
    host.down({195, 422});
    EXPECT_EQ(shown({195, 240}), 0);
    host.up();
    host.environment().setPrefersReducedMotion(true);
    ASSERT_TRUE(canvas.redo());
    EXPECT_GT(shown({10, 180}), 0);
    // Another size of the view, in the middle of the way.
    host.environment().setPrefersReducedMotion(false);
    ASSERT_TRUE(canvas.undo());
    host.wait(0.1);
    canvas.setFrame({0, 0, 200, 400});
    host.window().display();
    EXPECT_NEAR(canvas.mViewTransform().apply(canvas.ctxRect()).size.width, 200, 1e-9);
    EXPECT_EQ(shown({100, 100}), 0);
}

// How many pixels are seen beside the part that is shown.
int seenOutside(MDrawView& canvas, double scale) {
    const auto seen = canvas.exportImageForScale()->pixels();
    const gfx::Rect part = canvas.mViewTransform().apply(canvas.ctxRect()).inset(-0.5, -0.5);
    int outside = 0;
    for (int y = 0; y < seen->height(); y += 3) {
        for (int x = 0; x < seen->width(); x += 3) {
            const bool isIn = part.contains(gfx::Point{x / scale, y / scale});
            outside += !isIn && seen->colorAt(x, y).alpha > 0;
        }
    }
    return outside;
}

TEST(MDrawViewCut, NothingOutsideIsSeen) {
    for (const bool clips : {true, false}) {
        CutHost host(1000, clips);
        ASSERT_TRUE(host.cut(gfx::Rect(200, 100, 200, 200), 3));
        host.wait(1);
        EXPECT_EQ(seenOutside(*host.canvas, 2), 0);
    }
    // A way back to the part that is shown already needs no other layers in the end, but less of
    // them.
    CanvasHost host({.size = {160, 240}});
    host.canvas->setSnipImage(host.plainPicture(200, 260, {1, 0, 0, 1}));
    ASSERT_TRUE(host.canvas->setPictureCut({gfx::Rect(30, 200, 153, 38), 2}));
    host.wait(1);
    host.canvas->handlePanGesture(ui::GestureState::Began, {});
    host.canvas->handlePanGesture(ui::GestureState::Changed, {10, 12});
    ASSERT_TRUE(host.canvas->setPictureCut({}));
    host.window().display();
    ASSERT_TRUE(host.canvas->undo());
    host.wait(1);
    EXPECT_EQ(seenOutside(*host.canvas, 1), 0);
}

// Of what a picture shows, the most colourful pixel, 0 to 1.
double mostColourful(const gfx::Bitmap& seen) {
    double most = 0;
    for (int y = 0; y < seen.height(); ++y) {
        for (int x = 0; x < seen.width(); ++x) {
            const gfx::Color color = seen.colorAt(x, y);
            const auto [low, high] = std::minmax({color.red, color.green, color.blue});
            most = std::max(most, (high - low) * color.alpha);
        }
    }
    return most;
}

TEST(MDrawViewCut, WhatAPatchHidesStaysHiddenThroughCutsTurnsAndUndos) {
    CanvasHost host;
    MDrawView& canvas = *host.canvas;
    canvas.setClipsToPicture(true);
    // Grey but for what is hidden, the blocks of which are grey as well.
    gfx::Bitmap bitmap(300, 200);
    for (int y = 0; y < 200; ++y) {
        for (int x = 0; x < 300; ++x) {
            const bool isHidden = x >= 100 && x < 160 && y >= 60 && y < 120;
            const gfx::Color red{1, 0, 0, 1};
            const gfx::Color cyan{0, 1, 1, 1};
            const gfx::Color checks = (x + y) % 2 == 0 ? red : cyan;
            bitmap.setColorAt(x, y, isHidden ? checks : gfx::Color{0.5, 0.5, 0.5, 1});
        }
    }
    canvas.setCanvasBasis(300);
    canvas.setSnipImage(
        host.environment().device().makeImage(bitmap, 1, gfx::ImageOrientation::Up));
    EXPECT_GT(mostColourful(*canvas.exportImageForScale()->pixels()), 0.5);
    const auto patch = MDrawMosiac::initWithStartPoint({99.7, 59.6});
    patch->drawThrough(std::vector<gfx::Point>{{160.4, 120.3}});
    ASSERT_TRUE(canvas.addTool(patch));
    const auto expectHidden = [&](const std::string& when) {
        for (const auto& image : {canvas.exportImageForScale(), canvas.exportImage(),
                                  canvas.exportImageAtPictureScale(), canvas.exportUncutImage()}) {
            EXPECT_LT(mostColourful(*image->pixels()), 0.02) << when;
        }
    };
    // Edges that cut the patch, and half pixels of the view.
    const PictureCut cuts[] = {{gfx::Rect(80, 40, 111, 69), 1},
                               {std::nullopt, 2},
                               {gfx::Rect(105, 63, 33, 31), 3},
                               {gfx::Rect(0, 0, 131, 97), 0}};
    for (const PictureCut& cut : cuts) {
        ASSERT_TRUE(canvas.setPictureCut(cut));
        for (const double moment : {0.07, 0.07, 0.07, 1.0}) {
            host.wait(moment);
            expectHidden("turned " + std::to_string(cut.quarterTurns));
        }
    }
    canvas.handlePinchGesture(ui::GestureState::Began, 1, {195, 422});
    canvas.handlePinchGesture(ui::GestureState::Changed, 0.83, {195.3, 400});
    expectHidden("pinched");
    canvas.handlePinchGesture(ui::GestureState::Ended, 0.83, {195.3, 400});
    while (canvas.pictureCut() != PictureCut{}) {
        ASSERT_TRUE(canvas.undo());
        host.wait(0.12);
        expectHidden("undone");
    }
}

// Where a text's box is seen.
gfx::Rect seenBox(const MDrawView& canvas, const MDrawTool& text) {
    const auto turn = gfx::AffineTransform::quarterTurn(-text.quarterTurns());
    const gfx::Rect box = text.frame();
    return canvas.mViewTransform().apply(turn.about(box.center()).apply(box));
}

TEST(MDrawViewCut, ATextStandsUprightWhereItIsTypedAndIsTypedOnAfterFurtherTurns) {
    for (const double basis : {1000.0, 0.0}) {
        for (int turns = 0; turns < 4; ++turns) {
            SCOPED_TRACE(std::to_string(basis) + ", turned " + std::to_string(turns));
            CutHost host(basis);
            MDrawView& canvas = *host.canvas;
            canvas.clearTools();
            ASSERT_EQ(host.cut(gfx::Rect(turns, 0, 600 - turns, 400), turns), turns > 0);
            host.wait(1);
            host.pick(ToolType::Text);
            canvas.setDrawLineWidth(12);
            const gfx::Point place{100, 400};
            host.tap(place);
            ASSERT_TRUE(canvas.curEdittingTextTool());
            canvas.curEdittingTextTool()->textView()->insertText("Some words");
            canvas.finishEditText();
            ASSERT_EQ(canvas.tools().size(), 1U);
            auto& text = static_cast<MDrawText&>(*canvas.tools().front());
            EXPECT_EQ(text.quarterTurns(), turns);
            const gfx::Rect typed = seenBox(canvas, text);
            EXPECT_NEAR(typed.minX(), place.x, 0.3);
            EXPECT_NEAR(typed.minY(), place.y, 0.3);
            EXPECT_GT(typed.size.width, 2 * typed.size.height);

            // Its handle is at the lower right, and the other corner stays.
            const gfx::Point handle{typed.maxX(), typed.maxY()};
            host.drag(handle, handle + gfx::Point{40, 30});
            const gfx::Rect larger = seenBox(canvas, text);
            EXPECT_NEAR(larger.minX(), typed.minX(), 1e-6);
            EXPECT_NEAR(larger.minY(), typed.minY(), 1e-6);
            EXPECT_NEAR(larger.size.width, typed.size.width + 40, 1);
            EXPECT_NEAR(larger.size.height, typed.size.height + 30, 1);
            host.drag(larger.center(), larger.center() + gfx::Point{20, -60});
            EXPECT_NEAR(seenBox(canvas, text).minX(), larger.minX() + 20, 0.3);
            EXPECT_NEAR(seenBox(canvas, text).minY(), larger.minY() - 60, 0.3);

            ASSERT_TRUE(host.cut(std::nullopt, (turns + 1) % 4));
            host.wait(1);
            const gfx::Rect turned = seenBox(canvas, text);
            EXPECT_GT(turned.size.height, turned.size.width);
            canvas.handleDoubleTapGesture(turned.center());
            ASSERT_TRUE(canvas.curEdittingTextTool());
            // The field lies over the box, turned as that.
            const gfx::Rect field =
                text.textView()->convertRectTo(text.textView()->bounds(), &canvas);
            EXPECT_NEAR(field.center().x, turned.center().x, 1);
            EXPECT_NEAR(field.size.height, turned.size.height, 2);
            canvas.finishEditText();
            EXPECT_EQ(seenBox(canvas, text), turned);
        }
    }
}

}  // namespace
}  // namespace kalim
