#include "kalimkit/tool/MToolUndoManager.h"

#include <gtest/gtest.h>

namespace kalim {
namespace {

TEST(MToolUndoManager, StepsThroughItsStatesAndNamesAnOldOneUnlessTheFutureIsCut) {
    MToolUndoManager history;
    const auto record = [&](double width) {
        Feature feature;
        feature.set("width", width);
        history.setFeature(std::make_shared<const Feature>(feature));
    };
    const auto current = [&] { return *history.feature()->get<double>("width"); };
    EXPECT_EQ(history.feature(), nullptr);
    EXPECT_FALSE(history.canUndo() || history.canRedo() || history.undo() || history.redo());
    record(1);
    EXPECT_FALSE(history.canUndo() || history.undo());
    record(2);
    EXPECT_TRUE(history.undo());
    EXPECT_EQ(current(), 1);
    EXPECT_FALSE(history.undo());
    EXPECT_TRUE(history.redo());
    EXPECT_EQ(current(), 2);
    EXPECT_FALSE(history.redo());
    history.undo();
    record(3);
    EXPECT_EQ(current(), 2) << "nothing has cut what lay ahead";
    history.undo();
    history.resetRedo();
    EXPECT_FALSE(history.canRedo());
    record(9);
    EXPECT_EQ(current(), 9);
    EXPECT_EQ(history.featureList().size(), 2u);
}

}  // namespace
}  // namespace kalim
