#include "kalimkit/tool/MUndoManager.h"

#include <gtest/gtest.h>

#include "kalimkit/canvas/MDrawMutableSelect.h"
#include "kalimkit/shapes/MDrawRect.h"

namespace kalim {
namespace {

class Reports : public MUndoManagerDelegate {
public:
    void canUndoStateChangedCanRedo(bool canUndo, bool canRedo) override {
        lines.push_back(std::string(canUndo ? "undo " : "- ") + (canRedo ? "redo" : "-"));
    }
    void toolsStateChangedState(const ToolRef& tool, State state) override {
        lines.push_back((tool ? std::string(tool->toolClass().name) : "none") + " " +
                        std::to_string(state));
    }
    std::vector<std::string> lines;
};

class MUndoManagerTest : public testing::Test {
protected:
    std::shared_ptr<MDrawRect> addBox(double x) {
        const auto box = MDrawRect::initWithStartPoint({x, 0});
        box->setEndPoint({x + 50, 50});
        box->setColor(red);
        box->setIsNewBuild(false);
        manager.addTool(box);
        manager.addToolSuccess(box);
        return box;
    }
    void recolour(const ToolRef& tool, const gfx::ColorRef& color) {
        tool->setColor(color);
        manager.addToolSuccess(tool);
    }
    static std::shared_ptr<MDrawMutableSelect> groupOf(const ToolList& tools) {
        const auto group = MDrawMutableSelect::make();
        for (const ToolRef& tool : tools)
            group->addSubTool(tool);
        return group;
    }

    gfx::ColorRef red = gfx::makeColor(1, 0, 0);
    gfx::ColorRef blue = gfx::makeColor(0, 0, 1);
    std::shared_ptr<ToolList> tools = std::make_shared<ToolList>();
    MUndoManager manager{tools};
};

TEST_F(MUndoManagerTest, ANewRecordCutsEveryHistoryBeforeItIsTaken) {
    const auto first = addBox(0);
    const auto second = addBox(100);
    recolour(first, blue);
    manager.undo();
    recolour(second, blue);
    EXPECT_FALSE(manager.canRedo());
    EXPECT_FALSE(first->undoMgr().canRedo());
    // Recording on the very tool that was stepped back must not name its old future.
    manager.undo();
    second->setLineWidth(20);
    manager.addToolSuccess(second);
    manager.undo();
    manager.redo();
    EXPECT_EQ(second->lineWidth(), 20);
    EXPECT_EQ(second->color(), red);
}

TEST_F(MUndoManagerTest, AGroupEntryKeepsTheMembersOfItsMoment) {
    const auto first = addBox(0);
    const auto second = addBox(100);
    const auto group = groupOf({first, second});
    group->setColor(blue);
    manager.addToolSuccess(group);
    group->removeSubTool(second);
    manager.undo();
    EXPECT_EQ(first->color(), red);
    EXPECT_EQ(second->color(), red);
    manager.redo();
    EXPECT_EQ(second->color(), blue);

    const auto both = groupOf({second, first});
    manager.removeTool(both);
    EXPECT_TRUE(tools->empty());
    manager.undo();
    EXPECT_EQ(*tools, (ToolList{second, first}));
}

TEST_F(MUndoManagerTest, WhatIsNotOnTheCanvasOrNotValidIsNoStep) {
    const auto stranger = MDrawRect::initWithStartPoint({0, 0});
    stranger->setEndPoint({50, 50});
    manager.addToolSuccess(stranger);
    const auto box = addBox(0);
    manager.undo();
    manager.addTool(box);
    box->setEndPoint({5, 5});
    manager.addToolSuccess(box);
    EXPECT_FALSE(manager.canUndo());
    EXPECT_TRUE(manager.canRedo());
    EXPECT_EQ(box->undoMgr().featureList().size(), 1u);
}

TEST_F(MUndoManagerTest, EveryChangeOfTheStacksIsReported) {
    const auto reports = std::make_shared<Reports>();
    manager.setDelegate(reports);
    EXPECT_FALSE(manager.undo());
    EXPECT_TRUE(reports->lines.empty());
    const auto box = addBox(0);
    manager.undo();
    manager.redo();
    manager.removeTool(box);
    manager.removeToolFromAllSystem(box);
    manager.reset();
    const std::vector<std::string> expected{"undo -", "MDrawRect 1", "- redo", "MDrawRect 0",
                                            "undo -", "MDrawRect 0", "undo -", "MDrawRect 2",
                                            "- -",    "MDrawRect 2", "- -",    "none 2"};
    EXPECT_EQ(reports->lines, expected);
}

TEST_F(MUndoManagerTest, PurgingAToolDropsTheGroupsThatItEmpties) {
    const auto first = addBox(0);
    const auto second = addBox(100);
    const auto alone = groupOf({first});
    const auto both = groupOf({first, second});
    alone->setColor(blue);
    manager.addToolSuccess(alone);
    both->setLineWidth(3);
    manager.addToolSuccess(both);
    manager.removeInvaildMutableToolsByTool(first);
    ASSERT_EQ(manager.undoTools().size(), 3u);
    EXPECT_TRUE(manager.undoTools().back()->containTool(second));
    EXPECT_FALSE(manager.undoTools().back()->containTool(first));
}

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
