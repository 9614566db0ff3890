#include "kalimkit/canvas/MDrawMutableSelect.h"

#include <gtest/gtest.h>

#include <map>
#include <string_view>

#include "kalimkit/shapes/MDrawArrow.h"
#include "tests/support/RecordingContext.h"

namespace kalim {
namespace {

std::shared_ptr<MDrawRect> boxAt(double x, double y) {
    const auto box = MDrawRect::initWithStartPoint({x, y});
    box->setEndPoint({x + 50, y + 50});
    box->setColor(gfx::makeColor(1, 0, 0));
    box->setLineWidth(2);
    box->setIsNewBuild(false);
    return box;
}

std::shared_ptr<MDrawMutableSelect> groupOf(const ToolList& tools) {
    const auto group = MDrawMutableSelect::make();
    for (const ToolRef& tool : tools)
        group->addSubTool(tool);
    return group;
}

TEST(MDrawMutableSelect, AGroupOfOneAnswersAsItsMember) {
    const auto box = boxAt(100, 100);
    const auto group = groupOf({box});
    for (const gfx::Point p : {gfx::Point{100, 100}, {150, 150}, {125, 100}, {125, 125}}) {
        const bool hit = group->hitOnHandle(p);
        EXPECT_EQ(hit, box->moveDirection() != MoveDirection::None);
        EXPECT_EQ(group->testHitOnHandle(p), box->testHitOnHandle(p));
        EXPECT_EQ(group->hitTest(p), box->hitTest(p));
    }
    group->hitOnHandle({150, 150});
    group->tryMovePointEndPoint({150, 150}, {160, 170});
    EXPECT_EQ(box->frame(), gfx::Rect(100, 100, 60, 70));
    EXPECT_TRUE(group->isSupportGestureRotate());
}

TEST(MDrawMutableSelect, EveryOperationOfTheTableReachesAllMembers) {
    const auto first = boxAt(0, 0);
    const auto second = boxAt(100, 0);
    const auto group = groupOf({first, second});
    const auto both = [&](auto&& holds) { return holds(*first) && holds(*second); };
    const auto color = gfx::makeColor(0, 0, 1);
    std::map<std::string_view, bool> reached;
    group->setLineWidth(9);
    reached["setLineWidth:"] = both([](MDrawTool& t) { return t.lineWidth() == 9; });
    group->setSelected(true);
    reached["setSelected:"] = both([](MDrawTool& t) { return t.selected(); });
    group->finalize();
    reached["finalize"] = both([](MDrawTool& t) { return t.finalized(); });
    group->setColor(color);
    reached["setColor:"] = both([&](MDrawTool& t) { return t.color() == color; });
    group->rotateChangedWithAngle(0.25);
    reached["rotateChangedWithAngle:"] = both([](MDrawTool& t) { return t.rotateAngle() == 0.25; });
    group->rotateEndedWithAngle(0.5);
    reached["rotateEndedWithAngle:"] =
        both([](MDrawTool& t) { return t.lastRotateAngle() == 0.5; });
    second->refreshTransform();
    reached["invertPoint:"] = group->invertPoint({1, 2}) == second->invertPoint({1, 2});
    for (const auto& tool : {first, second})
        tool->setMoveDirection(MoveDirection::Left);
    group->stopMoveHandle();
    reached["stopMoveHandle"] =
        both([](MDrawTool& t) { return t.moveDirection() == MoveDirection::None; });
    group->setHandleViewScale(2);
    reached["setHandleViewScale:"] = both([](MDrawTool& t) { return t.handleViewScale() == 2; });
    EXPECT_EQ(reached.size(), MDrawMutableSelect::arrMutableMethod.size());
    for (const std::string_view name : MDrawMutableSelect::arrMutableMethod) {
        EXPECT_TRUE(reached[name]) << name;
    }
    EXPECT_TRUE(first->isMutableTool() && second->isMutableTool());
}

TEST(MDrawMutableSelect, CommonPropertiesAreThoseThatAllMembersShare) {
    const auto first = boxAt(0, 0);
    const auto second = boxAt(100, 0);
    const auto group = groupOf({first, second});
    EXPECT_EQ(group->lineWidth(), 2);
    EXPECT_EQ(group->drawType(), 0u);
    EXPECT_FALSE(group->color()) << "equal colours that are two objects are not common";
    const auto shared = gfx::makeColor(0, 1, 0);
    group->setColor(shared);
    EXPECT_EQ(group->color(), shared);
    second->setLineWidth(7);
    second->setDrawType(1);
    EXPECT_EQ(group->lineWidth(), 0);
    EXPECT_EQ(group->drawType(), ~std::uint64_t{0});
    group->setDrawTypeForType(2, &MDrawArrow::Class());
    EXPECT_EQ(first->drawType(), 0u);
    group->setDrawTypeForType(2, &MDrawRect::Class());
    EXPECT_EQ(group->drawType(), 2u);
    group->setLineWidth(12);
    EXPECT_EQ(first->lineWidth(), 12);
}

TEST(MDrawMutableSelect, EqualityIsByMembersInAnyOrder) {
    const auto first = boxAt(0, 0);
    const auto second = boxAt(100, 0);
    const auto group = groupOf({first, second});
    EXPECT_TRUE(group->isEqual(groupOf({second, first}).get()));
    EXPECT_TRUE(group->isEqual(group->copy().get()));
    EXPECT_FALSE(group->isEqual(groupOf({first}).get()));
    EXPECT_FALSE(group->isEqual(first.get()));
    EXPECT_FALSE(group->isEqual(nullptr));
    const auto copy = group->copy();
    group->removeSubTool(first);
    EXPECT_TRUE(copy->containTool(first));
}

TEST(MDrawMutableSelect, DraggingTheHandleToTwiceTheDistanceDoublesEveryMember) {
    const auto first = boxAt(0, 0);
    const auto second = boxAt(100, 50);
    const auto group = groupOf({first, second});
    // The union is 150 x 100 with its centre at (75, 50).
    ASSERT_TRUE(group->hitOnHandle({150, 100}));
    EXPECT_EQ(group->moveDirection(), MoveDirection::Scale);
    group->tryMovePointEndPoint({150, 100}, {225, 150});
    EXPECT_EQ(first->frame(), gfx::Rect(-75, -50, 100, 100));
    EXPECT_EQ(second->frame(), gfx::Rect(125, 50, 100, 100));
    EXPECT_EQ(group->preScalePoint(), (gfx::Point{226, 149}));
}

TEST(MDrawMutableSelect, ScalingAfterAMoveKeepsTheCentreThatTheMembersWereGatheredAt) {
    const auto first = boxAt(0, 0);
    const auto second = boxAt(100, 50);
    const auto group = groupOf({first, second});
    ASSERT_TRUE(group->hitOnHandle({75, 20}));
    group->tryMovePointEndPoint({75, 20}, {175, 20});
    ASSERT_TRUE(group->hitOnHandle({250, 100}));
    // From the handle at (251, 99) to twice its distance from (75, 50).
    group->tryMovePointEndPoint({250, 100}, {427, 148});
    EXPECT_EQ(first->frame(), gfx::Rect(125, -50, 100, 100));
}

TEST(MDrawMutableSelect, SeveralShareOneHandleRightOfAndAboveTheCorner) {
    const auto first = boxAt(0, 0);
    const auto second = boxAt(100, 50);
    const auto group = groupOf({first, second});
    group->setSelected(true);
    test::RecordingContext context;
    group->draw(context);
    // Two outlines each, then the handle, centred at (151, 99): 14 wide from 144 on.
    const auto& lines = context.lines();
    ASSERT_EQ(lines.size(), 6u);
    EXPECT_EQ(lines[4].rfind("fill [M 158,99 ", 0), 0u) << lines[4];
    EXPECT_EQ(group->isSupportGestureRotate(), false);

    context.takeLines();
    groupOf({})->draw(context);
    EXPECT_TRUE(context.lines().empty());
    EXPECT_FALSE(groupOf({})->isValidTools());
    EXPECT_EQ(groupOf({})->frame(), gfx::Rect());
}

}  // namespace
}  // namespace kalim
