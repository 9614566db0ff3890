#include "kalimkit/editor/desk/DeskColors.h"

#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

namespace {

constexpr gfx::Color grey(double level, double alpha = 1) {
    return {level, level, level, alpha};
}

constexpr gfx::Color blue{0.04, 0.40, 0.85, 1};
constexpr gfx::Color deepBlue{0.02, 0.30, 0.68, 1};

constexpr DeskColors dark{.bar = grey(0.15),
                          .line = grey(0.27),
                          .content = grey(0.93),
                          .faint = grey(0.50),
                          .hovered = grey(1, 0.10),
                          .pressed = grey(1, 0.22),
                          .chosen = {0.16, 0.42, 0.76, 1},
                          .accent = blue,
                          .accentPressed = deepBlue,
                          .onAccent = grey(1),
                          .desk = grey(0.09)};

constexpr DeskColors light{.bar = grey(0.96),
                           .line = grey(0.80),
                           .content = grey(0.16),
                           .faint = grey(0.56),
                           .hovered = grey(0, 0.07),
                           .pressed = grey(0, 0.16),
                           .chosen = {0.74, 0.85, 0.98, 1},
                           .accent = blue,
                           .accentPressed = deepBlue,
                           .onAccent = grey(1),
                           .desk = grey(0.86)};

}  // namespace

DeskColors deskColors() {
    const ui::Appearance appearance = ui::Environment::current().appearance();
    DeskColors colors = appearance.isDark ? dark : light;
    if (!appearance.hasHighContrast) return colors;
    const double ground = appearance.isDark ? 0 : 1;
    colors.bar = grey(ground);
    colors.content = colors.line = grey(1 - ground);
    return colors;
}

}  // namespace kalim
