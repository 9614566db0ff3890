#include "kalimkit/theme/SafeArea.h"

#include <cmath>

#include "kalimkit/theme/TallPhone.h"

namespace kalim {

namespace {

constexpr ui::EdgeInsets tallPhoneInsets{44, 0, 34, 0};

double sane(double inset) {
    return std::isfinite(inset) && inset > 0 ? inset : 0;
}

}  // namespace

ui::EdgeInsets safeAreaInsets(const ui::Screen& screen) {
    if (!screen.safeAreaInsets) return isTallPhone(screen) ? tallPhoneInsets : ui::EdgeInsets{};
    const ui::EdgeInsets& insets = *screen.safeAreaInsets;
    return {sane(insets.top), sane(insets.left), sane(insets.bottom), sane(insets.right)};
}

ui::EdgeInsets safeAreaInsets() {
    const ui::Environment& environment = ui::Environment::current();
    const ui::EdgeInsets insets = safeAreaInsets(environment.screen());
    return environment.readsRightToLeft() ? insets.mirrored() : insets;
}

}  // namespace kalim
