#pragma once

#include <string>

#include "kalimkit/gfx/Rect.h"
#include "kalimkit/ui/view/Accessibility.h"

namespace kalim::ui {

// One thing in a window that is announced: a view, or an element of one.
struct AccessibilityNode {
    // Above 0, and never of anything else for as long as the tree is there.
    int id = 0;
    // Of what it lies in; 0 for the window itself.
    int parent = 0;
    AccessibilityRole role = AccessibilityRole::None;
    std::string label;
    std::string value;
    // Window points, as it is to be once what moves has come to rest.
    gfx::Rect frame;
    bool isEnabled = true;
    // A chosen radio button, a toggle that is on, a selected shape.
    bool isSelected = false;
    // Gets what is typed.
    bool isFocused = false;

    bool operator==(const AccessibilityNode&) const = default;
};

}  // namespace kalim::ui
