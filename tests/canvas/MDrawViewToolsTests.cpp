#include <gtest/gtest.h>

#include <cmath>

#include "kalimkit/canvas/ToolClasses.h"
#include "kalimkit/shapes/MDrawFatArrow.h"
#include "kalimkit/tool/MUndoManager.h"
#include "kalimkit/ui/gesture/RotationGestureRecognizer.h"
#include "tests/canvas/CanvasHost.h"
#include "tests/support/RecordingDevice.h"

namespace kalim {
namespace {

using test::CanvasHost;

TEST(ToolClasses, NumbersNameClassesAndClassesNumbers) {
    EXPECT_EQ(getClassForToolType(7)->name, "MDrawArrow");
    EXPECT_FALSE(getClassForToolType(-1) || getClassForToolType(8));
    EXPECT_EQ(getToolTypeForClass(nullptr), -1);
    EXPECT_EQ(getToolTypeForClass(MDrawRect::initWithStartPoint({}).get()), 0);
    EXPECT_EQ(getToolTypeForClass(MDrawFatArrow::initWithStartPoint({}).get()), toolTypeNotFound);
    EXPECT_EQ(toolClassNamed("MDrawFatArrow"), &MDrawFatArrow::Class());
    EXPECT_FALSE(toolClassNamed("MDrawMutableSelect"));
}

TEST(MDrawViewTools, ChangingASettingRestylesTheSelectionAsOneStepIfItDiffers) {
    CanvasHost host;
    const ToolRef box = host.draw(ToolType::Rectangle, {100, 100}, {200, 200});
    host.tap({150, 100});
    const std::size_t steps = host.canvas->undoManager().undoTools().size();
    host.canvas->setDrawColorIsTranslucent(gfx::makeColor(0, 1, 0), false);
    host.canvas->setDrawLineWidth(2);
    host.canvas->setDrawTypeForType(0, 0);
    EXPECT_EQ(host.canvas->undoManager().undoTools().size(), steps)
        << "equal values change nothing";
    host.canvas->setDrawColorIsTranslucent(gfx::makeColor(1, 0, 0), false);
    host.canvas->setDrawLineWidth(18);
    host.canvas->setDrawTypeForType(1, 0);
    EXPECT_EQ(host.canvas->undoManager().undoTools().size(), steps + 3);
    host.canvas->undo();
    EXPECT_EQ(box->drawType(), 0u);
}

TEST(MDrawViewTools, ASelectionOfSeveralIsRestyledDeletedAndBroughtBackTogether) {
    CanvasHost host;
    const ToolRef box = host.draw(ToolType::Rectangle, {100, 100}, {200, 200});
    const ToolRef line = host.draw(ToolType::Line, {100, 300}, {200, 300});
    const ToolRef top = host.draw(ToolType::Line, {100, 400}, {200, 400});
    host.events->take();
    host.canvas->selectTools({line, box, line, nullptr});
    const std::vector<std::string> selected{"selected", "type 6 #00FF00FF 2"};
    EXPECT_EQ(host.events->take(), selected);
    EXPECT_EQ(host.canvas->handingTools()->subTools(), (ToolList{line, box}));
    host.canvas->setDrawLineWidth(7);
    EXPECT_EQ(box->lineWidth(), 7);
    host.canvas->deleteSelectedTools();
    EXPECT_EQ(host.canvas->tools(), ToolList{top});
    host.canvas->undo();
    EXPECT_EQ(host.canvas->tools(), (ToolList{top, line, box}));
    EXPECT_EQ(box->lineWidth(), 7);
    host.canvas->undo();
    EXPECT_EQ(box->lineWidth(), 2);
    EXPECT_EQ(line->lineWidth(), 2);
    host.canvas->selectTools({});
    EXPECT_FALSE(host.canvas->hasSelectedTools());
}

TEST(MDrawViewTools, AToolMadeByTheCallerIsARecordedStep) {
    CanvasHost host;
    const auto arrow = MDrawFatArrow::initWithStartPoint({100, 100});
    EXPECT_FALSE(host.canvas->addTool(arrow)) << "no length yet";
    arrow->drawMove({200, 150});
    EXPECT_TRUE(host.canvas->addTool(arrow));
    EXPECT_FALSE(host.canvas->addTool(arrow));
    EXPECT_FALSE(host.canvas->addTool(nullptr));
    EXPECT_FALSE(host.canvas->addTool(MDrawMutableSelect::make()));
    EXPECT_EQ(arrow->color(), host.canvas->color());
    host.events->take();
    host.tap({150, 125});
    EXPECT_EQ(host.events->lines.back(), "type 9223372036854775807 #00FF00FF 8");
    host.canvas->undo();
    EXPECT_TRUE(host.canvas->tools().empty());
    EXPECT_FALSE(host.canvas->addTool(arrow)) << "it can still be redone";
    const auto endless = MDrawLine::initWithStartPoint({-1e308, 0});
    endless->drawMove({1e308, 1e308});
    EXPECT_FALSE(host.canvas->addTool(endless)) << "beyond the budget, taken back";
    EXPECT_EQ(host.takeAlerts().size(), 1u);
}

TEST(MDrawViewTools, MeasuringReachesToolsMadeLaterAndThoseThatComeBack) {
    CanvasHost host;
    const ToolRef early = host.draw(ToolType::Line, {100, 100}, {200, 100});
    host.canvas->undo();
    host.canvas->setCalibration(2);
    host.canvas->setUnit("mm");
    host.canvas->setShowMeasurement(true);
    host.canvas->redo();
    const ToolRef late = host.draw(ToolType::Line, {100, 200}, {200, 200});
    for (const ToolRef& tool : {early, late}) {
        EXPECT_EQ(tool->measureText(), "Length : 0.20 mm");
        EXPECT_TRUE(tool->showMeasurement());
    }
}

TEST(MDrawViewTools, AToolThatAThickerLineMakesInvalidGoesWithTheSelectionAndUndoBringsItBack) {
    CanvasHost host;
    const ToolRef arrow = host.draw(ToolType::Arrow, {100, 100}, {150, 100});
    host.tap({120, 100});
    ASSERT_TRUE(host.canvas->hasSelectedTools());
    // 2 * (28 + 5) + 10 points are needed now.
    host.canvas->setDrawLineWidth(28);
    host.window().display();
    EXPECT_TRUE(host.canvas->tools().empty());
    EXPECT_FALSE(host.canvas->hasSelectedTools());
    EXPECT_TRUE(host.canvas->undo());
    EXPECT_EQ(host.canvas->tools(), ToolList{arrow});
    EXPECT_EQ(arrow->lineWidth(), 2);
}

TEST(MDrawViewTools, WidthsThatAreNoWidthAreIgnored) {
    CanvasHost host;
    for (const double width : {-1.0, static_cast<double>(NAN), static_cast<double>(INFINITY)}) {
        host.canvas->setDrawLineWidth(width);
        EXPECT_EQ(host.canvas->lineWidth(), 2);
    }
    host.canvas->setDrawColorIsTranslucent(nullptr, false);
    EXPECT_TRUE(host.canvas->color());
}

TEST(MDrawViewTools, AnUndoWithNothingToDoStillTakesTheHandlesOffTheScreen) {
    CanvasHost host;
    const ToolRef line = host.draw(ToolType::Line, {50, 100}, {250, 100});
    host.canvas->selectTools({line});
    host.window().display();
    EXPECT_FALSE(host.canvas->redo());
    EXPECT_FALSE(host.canvas->hasSelectedTools());
    EXPECT_TRUE(host.window().needsDisplay());
}

TEST(MDrawViewTools, LabelsStandAboveFinishedToolsThatAreNotSelected) {
    const auto device = std::make_shared<test::RecordingDevice>();
    CanvasHost host({.device = device});
    const ToolRef line = host.draw(ToolType::Line, {100, 100}, {200, 100});
    const auto texts = [&] {
        host.window().display();
        std::vector<std::string> found;
        // The window's own and those of the canvas's layers.
        for (const auto& surface : device->surfaces()) {
            for (auto& recorded : test::RecordingDevice::recording(*surface).takeLines()) {
                if (recorded.starts_with("text ")) found.push_back(recorded);
            }
        }
        return found;
    };
    texts();
    host.canvas->setShowMeasurement(true);
    // 18 characters of 7 points centred over x = 150; a line of 15.4 points ends 20 above y = 100,
    // its baseline 11.2 below its top.
    EXPECT_EQ(texts(), std::vector<std::string>{
                           "text \"Length : 100.00 px\" at=(87,75.8) size=14 #000000FF"});
    host.canvas->selectTools({line});
    EXPECT_TRUE(texts().empty());
}

// ---- the content rectangle and its budget

TEST(MDrawViewContent, AnUndoneMoveOfATurnedShapeGivesBackTheOldExtent) {
    CanvasHost host;
    host.canvas->setSnipImage(host.plainPicture(600, 400, {1, 1, 1, 1}));
    host.draw(ToolType::Rectangle, {150, 350}, {250, 400});
    host.tap({200, 350});
    host.canvas->rotationGesture().drive(ui::GestureState::Changed, 1.2);
    host.canvas->rotationGesture().drive(ui::GestureState::Ended, 1.2);
    const gfx::Rect before = host.canvas->ctxRect();
    host.canvas->selectTools(host.canvas->tools());
    host.window().display();
    const gfx::Point middle = host.canvas->tools().front()->frame().center();
    const gfx::Point edge = middle + gfx::Point{-23, 9};
    host.drag(edge, edge + gfx::Point{0, 300});
    ASSERT_NE(host.canvas->ctxRect(), before);
    host.canvas->undo();
    EXPECT_EQ(host.canvas->ctxRect(), before);
}

TEST(MDrawView, HoldsNoTextThatAnUndoEndsUnderTheFinger) {
    CanvasHost host;
    host.pick(ToolType::Text);
    host.down({100, 100});
    host.move({220, 180});
    ASSERT_TRUE(host.canvas->curEdittingTextTool());
    host.canvas->undo();
    EXPECT_FALSE(host.canvas->handingTool());
}

}  // namespace
}  // namespace kalim
