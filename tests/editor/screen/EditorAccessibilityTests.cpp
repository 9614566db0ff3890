#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "kalimkit/editor/screen/EditorTables.h"
#include "kalimkit/ui/control/AlertView.h"
#include "kalimkit/ui/control/TextView.h"
#include "kalimkit/ui/window/AccessibilityTree.h"
#include "tests/editor/screen/EditorScreen.h"

namespace kalim {
namespace {

using test::EditorScreen;

struct EditorAccessibilityTest : testing::Test {
    // Null for none.
    const ui::AccessibilityNode* node(const std::string& label) {
        tree.update();
        for (const ui::AccessibilityNode& node : tree.nodes()) {
            if (node.label == label) return &node;
        }
        return nullptr;
    }
    void activate(const std::string& label) {
        const ui::AccessibilityNode* found = node(label);
        ASSERT_TRUE(found) << label;
        EXPECT_TRUE(tree.activate(found->id)) << label;
        host.wait(1);
    }
    // Everything announced has a name in English, and so has each control that is to be seen.
    void expectNamed(const char* state, std::size_t controls) {
        tree.update();
        std::size_t found = 0;
        for (const ui::AccessibilityNode& node : tree.nodes()) {
            EXPECT_FALSE(node.label.empty()) << state << ", role " << static_cast<int>(node.role);
            for (const std::string& said : {node.label, node.value}) {
                const auto isForeign = [](char byte) { return (byte & 0xE0) == 0xE0; };
                EXPECT_TRUE(std::ranges::none_of(said, isForeign)) << state << ": " << said;
            }
            const bool isControl = node.role == ui::AccessibilityRole::Button ||
                                   node.role == ui::AccessibilityRole::RadioButton;
            found += isControl ? 1 : 0;
        }
        EXPECT_EQ(found, controls) << state;
    }

    EditorScreen host;
    ui::AccessibilityTree tree{host.window()};
};

// What the editor says in English, all of it; with and without motion.
class EnglishEditorTest : public EditorAccessibilityTest, public testing::WithParamInterface<bool> {
protected:
    EnglishEditorTest() {
        host.environment().setShowsAlerts(true);
        host.environment().setPrefersReducedMotion(GetParam());
        host.environment().setLanguage("en");
        host.editor = TesselViewController::initWithSourceImageWithDelegate(host.picture(300, 400),
                                                                            host.owner);
        host.present();
    }
};

TEST_P(EnglishEditorTest, EveryControlHasANameInEveryState) {
    // Close, undo, redo, send and the pen.
    expectNamed("fresh", 5);
    activate("Pen");
    // In place of the pen the check mark; one colour, one width and the pens.
    expectNamed("panel", 7 + editorPens().size());
    activate("Red");
    expectNamed("colours", 11 + editorPens().size());
    activate("Blue");
    activate("OK");
    host.draw();
    activate("Blue arrow, top");
    // Edit and delete in place of the pen.
    expectNamed("selected", 6);
    EXPECT_TRUE(node("Blue arrow, top")->isSelected);
    activate("Edit");
    // A pen cannot be chosen for what is selected.
    EXPECT_FALSE(node("Ellipse")->isEnabled || tree.activate(node("Ellipse")->id));
    activate("OK");
    activate("Blue arrow, top");
    activate("Close");
    expectNamed("sheet", 2);
    activate("Keep Editing");
    host.editor->checkAndTipImageVaild(nullptr);
    expectNamed("alert", 1);
    activate("OK");
    activate("Delete");
    activate("Pen");
    activate("Crop");
    // Restore is disabled; rotate.
    expectNamed("crop", 4);
    EXPECT_EQ(node("Crop frame")->value, "300 × 400");
    EXPECT_FALSE(node("Reset")->isEnabled);
    activate("Rotate");
    EXPECT_EQ(node("Crop frame")->value, "400 × 300");
    activate("Cancel");
    expectNamed("back", 5);
}

INSTANTIATE_TEST_SUITE_P(Motion, EnglishEditorTest, testing::Bool());

TEST_F(EditorAccessibilityTest, ATextIsAFieldWhileItIsTyped) {
    host.present();
    activate("画笔");
    // The pen, not a field.
    activate("文字");
    activate("确定");
    test::Finger(host.window()).tap({150, 400});
    host.wait(1);
    const ui::AccessibilityNode* field = node("文字");
    ASSERT_TRUE(field);
    EXPECT_TRUE(field->role == ui::AccessibilityRole::TextField && field->isFocused);
    ui::TextView::focusedIn(host.window())->insertText("早");
    EXPECT_EQ(node("文字")->value, "早");
    activate("完成");
    EXPECT_FALSE(node("文字"));
    EXPECT_TRUE(node("红色文字：早，左侧") || node("红色文字：早，中间"));
}

TEST_F(EditorAccessibilityTest, NothingRingsForThoseWhoWantNothingToMove) {
    host.environment().setPrefersReducedMotion(true);
    host.present();
    EXPECT_FALSE(host.editor->penView()->isRinging());
    EXPECT_FALSE(host.loop().isBusy());
    host.tap(host.editor->penView());
    host.wait(0);
    EXPECT_TRUE(host.editor->showPanel());
    EXPECT_TRUE(host.editor->panelView()->shownTransform().isIdentity());
    host.tap(host.editor->confirmButton());
    host.wait(0);
    EXPECT_FALSE(host.editor->showPanel() || host.editor->isAnimation());
}

}  // namespace
}  // namespace kalim
