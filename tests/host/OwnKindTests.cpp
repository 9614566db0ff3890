#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "examples/kind/StarPen.h"
#include "kalimkit/document/Document.h"
#include "kalimkit/host/headless/CanvasPrint.h"
#include "kalimkit/shapes/MDrawPolyline.h"
#include "kalimkit/theme/FrameworkImages.h"
#include "kalimkit/tool/MUndoManager.h"
#include "tests/canvas/CanvasHost.h"

namespace kalim {
namespace {

// Stands where a finger has landed, whether that moves or not.
class Stamp : public MDrawRect {
public:
    static const ToolClass& Class() {
        static const ToolClass toolClass{"Stamp",
                                         &MDrawRect::Class(),
                                         &MDrawTool::makeToolAt<Stamp>,
                                         {.beginning = ToolBeginning::TouchDown}};
        return toolClass;
    }
    const ToolClass& toolClass() const override { return Class(); }
    void drawUp(gfx::Point p) override { MDrawRect::drawUp(p + gfx::Point{30, 30}); }

protected:
    Stamp() = default;
};

// What the print of the canvas says of its only tool.
JsonValue printed(const MDrawView& canvas, const char* key) {
    const JsonValue print = describeCanvas(canvas);
    return *print.find("tools")->array()->front().find(key);
}

TEST(OwnKind, IsDrawnPickedCutMovedUndonePrintedAndSpokenOf) {
    test::CanvasHost host;
    MDrawView& canvas = *host.canvas;
    canvas.setDrawColorIsTranslucent(gfx::makeColor(1, 0, 0), false);
    EXPECT_TRUE(canvas.beginDrawingWithClass(Star::Class()));
    host.drag({100, 100}, {300, 300});
    ASSERT_EQ(canvas.tools().size(), 1u);
    const ToolRef star = canvas.tools().front();
    EXPECT_EQ(star->name().substr(0, 5), "Star:");
    EXPECT_EQ(printed(canvas, "class"), JsonValue(std::string("Star")));

    host.tap({200, 200});
    EXPECT_TRUE(host.isSelected(star)) << "where a rectangle is not hit";
    const ui::AccessibilityElement spoken = canvas.accessibilityElements().front();
    EXPECT_EQ(spoken.label, "红色 star，中间");
    EXPECT_EQ(spoken.role, ui::AccessibilityRole::Image);

    // The inner corner is 40 points from the middle at first, at 36 degrees.
    host.drag({223.5, 167.6}, {223.5, 135.3});
    EXPECT_NEAR(*printed(canvas, "depth").number(), 0.8, 0.01);
    host.drag({200, 200}, {220, 230});
    EXPECT_EQ(star->frame(), gfx::Rect(120, 130, 200, 200));
    EXPECT_TRUE(canvas.undo());
    EXPECT_EQ(star->frame(), gfx::Rect(100, 100, 200, 200));
    EXPECT_TRUE(canvas.undo());
    EXPECT_NEAR(*printed(canvas, "depth").number(), 0.4, 0.01);
    EXPECT_TRUE(canvas.undo());
    EXPECT_FALSE(canvas.hasTools());
    EXPECT_TRUE(canvas.redo());
    EXPECT_EQ(canvas.tools(), ToolList{star});
}

TEST(OwnKind, IsPutDownByATapAndByWhatBreaksItOff) {
    test::CanvasHost host;
    MDrawView& canvas = *host.canvas;
    canvas.setEnableGesture(false);
    EXPECT_TRUE(canvas.beginDrawingWithClass(Stamp::Class()));
    const std::function<void()> ends[] = {
        [&] { host.up(); },
        [&] { canvas.finalizeCurrentDrawing(); },
        [&] {
            host.window().fingersBegan({{2, {50, 50}}});
        },
        [&] { host.window().fingersCancelled({}); },
    };
    for (const auto& end : ends) {
        canvas.clearTools();
        host.down({200, 300});
        end();
        host.window().fingersCancelled({});
        ASSERT_EQ(canvas.tools().size(), 1u);
        EXPECT_EQ(canvas.tools().front()->frame(), gfx::Rect(200, 300, 30, 30));
        EXPECT_EQ(canvas.undoManager().undoTools().size(), 1u);
    }
}

TEST(OwnKind, IsAPenThatDocumentsKnowOnceItIsRegistered) {
    test::CanvasHost host;
    EXPECT_EQ(penNamed("star"), nullptr);
    EXPECT_EQ(addStarPen(), std::nullopt);
    EXPECT_EQ(addStarPen(), "there is a kind of tools Star already");
    EXPECT_EQ(ToolRegistry::add(Stamp::Class(),
                                {.name = "stamp", .icon = "star", .text = "s", .english = "s"}),
              "there is a pen stamp already");
    EXPECT_EQ(
        ToolRegistry::add(Stamp::Class(),
                          {.name = "ink", .key = 'a', .icon = "star", .text = "i", .english = "i"}),
        "the key a of the pen ink is another pen's");
    EXPECT_EQ(ToolRegistry::add(Stamp::Class(),
                                {.name = "crop", .icon = "star", .text = "c", .english = "c"}),
              "there is a pen crop already");
    EXPECT_FALSE(ToolRegistry::current().kindNamed("Stamp")) << "nothing was added";

    const Pen& star = *penNamed("star");
    EXPECT_EQ(star.number, firstAddedPen);
    EXPECT_EQ(ToolRegistry::current().kindOf(star), &Star::Class());
    EXPECT_EQ(ToolRegistry::current().penOf(Star::Class()), &star);
    EXPECT_TRUE(imageNamedForFramework("icon_tool_star"));
    MDrawView& canvas = *host.canvas;
    canvas.beginDrawingWithClass(Star::Class());
    host.drag({100, 100}, {300, 300});
    const Document document = canvas.document();
    EXPECT_FALSE(canvas.openDocument(document, nullptr));
    EXPECT_EQ(&canvas.tools().front()->toolClass(), &Star::Class());
}

TEST(OwnKind, IsRefusedWhereNoTouchBeginsIt) {
    test::CanvasHost host;
    EXPECT_FALSE(host.canvas->beginDrawingWithClass(MDrawPolyline::Class())) << "made by taps";
    EXPECT_FALSE(host.canvas->beginDrawingWithClass(MDrawMutableSelect::Class())) << "a group";
    EXPECT_EQ(host.canvas->drawToolClass()->name, "MDrawLine") << "as at first";
}

}  // namespace
}  // namespace kalim
