#pragma once

#include <cstdint>
#include <string>

#include "kalimkit/gfx/Rect.h"
#include "kalimkit/ui/view/Accessibility.h"

namespace kalim::ui {

// Something that a view draws and that is no view itself, as an assistive technology is told of it.
struct AccessibilityElement {
    // The same for as long as the thing exists, and of no other thing of the view at any time.
    std::uint64_t key = 0;
    AccessibilityRole role = AccessibilityRole::None;
    std::string label;
    std::string value;
    // In the view's own coordinates.
    gfx::Rect frame;
    bool isEnabled = true;
    bool isSelected = false;
};

}  // namespace kalim::ui
