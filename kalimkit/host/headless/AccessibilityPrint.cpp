#include "kalimkit/host/headless/AccessibilityPrint.h"

#include <map>

#include "kalimkit/host/headless/ScenarioValues.h"

namespace kalim {

namespace {

const char* nameOf(ui::AccessibilityRole role) {
    switch (role) {
        case ui::AccessibilityRole::None:
            return "none";
        case ui::AccessibilityRole::Button:
            return "button";
        case ui::AccessibilityRole::Image:
            return "image";
        case ui::AccessibilityRole::Text:
            return "text";
        case ui::AccessibilityRole::TextField:
            return "textField";
        case ui::AccessibilityRole::Dialog:
            return "dialog";
        case ui::AccessibilityRole::Group:
            return "group";
        case ui::AccessibilityRole::RadioButton:
            return "radioButton";
        case ui::AccessibilityRole::Canvas:
            return "canvas";
        case ui::AccessibilityRole::Slider:
            return "slider";
        case ui::AccessibilityRole::Menu:
            return "menu";
        case ui::AccessibilityRole::MenuItem:
            return "menuItem";
        case ui::AccessibilityRole::Status:
            return "status";
    }
    return "none";
}

}  // namespace

JsonValue::Array describeAccessibility(const std::vector<ui::AccessibilityNode>& nodes) {
    // By id; the window itself has none.
    std::map<int, int> levels{{0, -1}};
    JsonValue::Array list;
    for (const ui::AccessibilityNode& node : nodes) {
        const int level = levels[node.parent] + 1;
        levels[node.id] = level;
        list.push_back(JsonValue::Object{{"role", nameOf(node.role)},
                                         {"label", node.label},
                                         {"value", node.value},
                                         {"frame", toJson(node.frame)},
                                         {"enabled", node.isEnabled},
                                         {"selected", node.isSelected},
                                         {"level", level}});
    }
    return list;
}

}  // namespace kalim
