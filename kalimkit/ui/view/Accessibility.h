#pragma once

#include <string>

namespace kalim::ui {

enum class AccessibilityRole {
    None,
    Button,
    Image,
    Text,
    TextField,
    Dialog,
    Group,
    RadioButton,
    Canvas,
    Slider,
    Menu,
    MenuItem,
    // A short note that comes and goes by itself.
    Status,
};

// What a view tells those who do not see it. A host reads it to describe the screen to an assistive
// technology.
struct Accessibility {
    // Spoken first: what the view is for.
    std::string label;
    // A view without a role is not announced; what is in it still is.
    AccessibilityRole role = AccessibilityRole::None;
    // What it stands at now, such as a chosen size; empty for none.
    std::string value;
    // Passed over with all that is in it.
    bool isHidden = false;
    // While it is shown nothing but what is in it is announced.
    bool isModal = false;
};

}  // namespace kalim::ui
