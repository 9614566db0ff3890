#include "kalimkit/ui/window/AccessibilityTree.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "kalimkit/ui/control/AlertView.h"
#include "tests/ui/Stage.h"

namespace kalim::ui {

namespace {

struct AccessibilityTreeTest : testing::Test, test::Stage {
    AccessibilityTreeTest() : Stage({200, 200}) {}

    template <typename Kind>
    std::shared_ptr<Kind> named(const std::string& label, const gfx::Rect& frame,
                                const std::shared_ptr<View>& in) {
        const auto view = Kind::initWithFrame(frame);
        view->setAccessibilityLabel(label);
        in->addSubview(view);
        return view;
    }
    std::shared_ptr<Button> button(const std::string& label, const gfx::Rect& frame = {}) {
        const auto added = named<Button>(label, frame, root);
        added->addAction(ControlEvent::TouchUpInside, [this, label](Control&) { heard += label; });
        return added;
    }
    // "label<parent" of each, in order.
    std::string listed() {
        tree.update();
        std::string text;
        for (const AccessibilityNode& node : tree.nodes()) {
            text += node.label;
            for (const AccessibilityNode& other : tree.nodes())
                text += other.id == node.parent ? "<" + other.label : "";
            text += " ";
        }
        return text;
    }
    AccessibilityNode node(const std::string& label) {
        tree.update();
        for (const AccessibilityNode& node : tree.nodes()) {
            if (node.label == label) return node;
        }
        return {};
    }

    AccessibilityTree tree{window()};
    std::string heard;
};

// Draws two shapes.
class Board : public View {
public:
    static std::shared_ptr<Board> initWithFrame(const gfx::Rect& frame) {
        const std::shared_ptr<Board> board(new Board);
        board->init(frame);
        board->setAccessibilityRole(AccessibilityRole::Canvas);
        return board;
    }
    std::vector<AccessibilityElement> accessibilityElements() override { return elements; }
    bool activateAccessibilityElement(std::uint64_t key) override {
        activated = key;
        return true;
    }
    std::vector<AccessibilityElement> elements{
        {7, AccessibilityRole::Image, "low", "", {0, 50, 5, 5}},
        {3, AccessibilityRole::Image, "high", "", {}, false}};
    std::uint64_t activated = 0;
};

TEST_F(AccessibilityTreeTest, ListsWhatIsAnnouncedAsItIsRead) {
    const auto board = named<Board>("board", {10, 0, 180, 200}, root);
    const auto group = named<View>("group", {0, 150, 200, 30}, root);
    group->setAccessibilityRole(AccessibilityRole::Group);
    named<Button>("right", {100, 0, 20, 30}, group);
    const auto roleless = named<View>("roleless", {0, 5, 40, 40}, group);
    named<Button>("inner", {0, 0, 5, 5}, roleless);
    button("upper", {150, 20, 10, 10});
    button("lower", {0, 24, 10, 10});
    button("hidden")->setHidden(true);
    button("faded")->setAlpha(0.005);
    button("silent")->setAccessibilityHidden(true);
    EXPECT_EQ(listed(), "board low<board high<board lower upper group inner<group right<group ");
    EXPECT_EQ(node("low").frame, gfx::Rect(10, 50, 5, 5));
    EXPECT_EQ(node("inner").frame, gfx::Rect(0, 155, 5, 5));
    EXPECT_FALSE(tree.update());
    board->elements[0].isSelected = true;
    EXPECT_TRUE(tree.update());
    EXPECT_TRUE(node("low").isSelected);
}

TEST_F(AccessibilityTreeTest, AnIdIsOfOneThingForItsLife) {
    const auto board = named<Board>("board", {}, root);
    auto kept = button("kept");
    const int id = node("kept").id;
    const int low = node("low").id;
    kept->removeFromSuperview();
    std::swap(board->elements[0], board->elements[1]);
    EXPECT_FALSE((tree.update(), tree.activate(id))) << "is gone for now";
    root->addSubview(kept);
    EXPECT_EQ(node("kept").id, id);
    EXPECT_EQ(node("low").id, low);
    kept->removeFromSuperview();
    kept.reset();
    // Memory is used again; numbers are not.
    for (int i = 0; i < 20; ++i) {
        const auto fresh = button("new");
        EXPECT_GT(node("new").id, low);
        fresh->removeFromSuperview();
    }
}

TEST_F(AccessibilityTreeTest, OnlyTheTopmostModalViewCounts) {
    button("behind");
    const int behind = node("behind").id;
    const auto first = AlertView::show(window(), {"first", "", {"a"}, {}});
    const auto second = AlertView::show(window(), {"second", "why", {"b", "c"}, {}});
    wait(1);
    EXPECT_EQ(listed(), "second second<second why<second b<second c<second ");
    EXPECT_FALSE(tree.activate(behind));
    // One that is going does not count any more.
    EXPECT_TRUE(tree.activate(node("c").id));
    EXPECT_EQ(listed(), "first first<first a<first ");
    first->setAccessibilityHidden(true);
    EXPECT_EQ(listed(), "behind ");
}

TEST_F(AccessibilityTreeTest, ActivatesWhatATapWouldReach) {
    const auto board = named<Board>("board", {}, root);
    const auto control = button("x", {10, 10, 10, 10});
    // What covers it is no matter, and a tap of those above is not one of a control.
    root->addSubview(View::initWithFrame(root->bounds()));
    const int id = node("x").id;
    EXPECT_TRUE(tree.activate(id));
    EXPECT_EQ(heard, "x");
    const auto role = [&](bool on) {
        return on ? AccessibilityRole::Text : AccessibilityRole::None;
    };
    const std::pair<const char*, std::function<void(bool)>> cases[] = {
        {"disabled", [&](bool on) { control->setEnabled(!on); }},
        {"takes no touches", [&](bool on) { control->setUserInteractionEnabled(!on); }},
        {"in what takes none", [&](bool on) { root->setUserInteractionEnabled(!on); }},
        {"hidden", [&](bool on) { root->setHidden(on); }},
        {"silent", [&](bool on) { control->setAccessibilityHidden(on); }},
        {"no button", [&](bool on) { control->setAccessibilityRole(role(on)); }},
        {"held", [&](bool on) {
             if (on) root->bringSubviewToFront(*control);
             on ? one.down({15, 15}) : one.cancel();
         }}};
    for (const auto& [what, spoil] : cases) {
        spoil(true);
        EXPECT_FALSE(tree.activate(id)) << what;
        spoil(false);
        EXPECT_EQ(heard, "x") << what;
    }
    EXPECT_FALSE(tree.activate(node("board").id));
    EXPECT_FALSE(tree.activate(node("high").id));
    EXPECT_TRUE(tree.activate(node("low").id));
    EXPECT_EQ(board->activated, 7u);
    EXPECT_FALSE(tree.activate(0) || tree.activate(999));
    EXPECT_TRUE(tree.activate(id)) << "and still works";
}

TEST_F(AccessibilityTreeTest, SurvivesWhatActivationDestroys) {
    auto control = button("x");
    control->addAction(ControlEvent::TouchDown, [&](Control& sender) {
        sender.removeFromSuperview();
        control.reset();
    });
    const int id = node("x").id;
    EXPECT_TRUE(tree.activate(id));
    EXPECT_EQ(heard, "") << "it is cancelled";
    EXPECT_EQ(listed(), "");
    EXPECT_FALSE(tree.activate(id));

    auto other = std::make_unique<Window>(gfx::Size{50, 50});
    auto doomed = std::make_unique<AccessibilityTree>(*other);
    const auto last = named<Button>("last", {0, 0, 50, 50}, other->rootView());
    last->addAction(ControlEvent::TouchUpInside, [&](Control&) {
        doomed.reset();
        other.reset();
    });
    AccessibilityTree widow(*other);
    EXPECT_TRUE(widow.update());
    doomed->update();
    EXPECT_TRUE(doomed->activate(doomed->nodes()[0].id));
    EXPECT_TRUE(widow.update());
    EXPECT_TRUE(widow.nodes().empty());
}

}  // namespace

}  // namespace kalim::ui
