#pragma once

namespace kalim::ui {

// How the user wants things to look, as far as these leave a choice. The default is light.
struct Appearance {
    bool isDark = false;
    // Texts and edges stand out as far as they can.
    bool hasHighContrast = false;

    bool operator==(const Appearance&) const = default;
};

// Hears of another appearance than before: Environment::setAppearance().
class AppearanceObserver {
public:
    virtual ~AppearanceObserver() = default;
    virtual void appearanceChanged() = 0;
};

}  // namespace kalim::ui
