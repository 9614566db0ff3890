#include "kalimkit/tool/MToolUndoManager.h"

#include <gtest/gtest.h>

namespace kalim {
namespace {

FeatureRef widthOf(double width) {
    Feature feature;
    feature.set("width", width);
    return std::make_shared<const Feature>(feature);
}

double current(const MToolUndoManager& history) {
    return *history.feature()->get<double>("width");
}

TEST(MToolUndoManager, StepsThroughItsStatesButNeverBeforeTheFirst) {
    MToolUndoManager history;
    EXPECT_EQ(history.feature(), nullptr);
    EXPECT_FALSE(history.canUndo() || history.canRedo() || history.undo() || history.redo());
    history.setFeature(widthOf(1));
    EXPECT_FALSE(history.canUndo());
    history.setFeature(widthOf(2));
    EXPECT_TRUE(history.undo());
    EXPECT_EQ(current(history), 1);
    EXPECT_FALSE(history.undo());
    EXPECT_TRUE(history.redo());
    EXPECT_EQ(current(history), 2);
    EXPECT_FALSE(history.redo());
}

TEST(MToolUndoManager, ResetRedoForgetsWhatLiesAhead) {
    MToolUndoManager history;
    for (const double width : {1, 2, 3})
        history.setFeature(widthOf(width));
    history.undo();
    history.undo();
    history.resetRedo();
    EXPECT_FALSE(history.canRedo());
    history.setFeature(widthOf(9));
    EXPECT_EQ(current(history), 9);
    EXPECT_EQ(history.featureList().size(), 2u);
}

TEST(MToolUndoManager, RecordingWithoutCuttingNamesAnOldEntry) {
    MToolUndoManager history;
    for (const double width : {1, 2, 3})
        history.setFeature(widthOf(width));
    history.undo();
    history.undo();
    history.setFeature(widthOf(9));
    EXPECT_EQ(current(history), 2);
}

}  // namespace
}  // namespace kalim
