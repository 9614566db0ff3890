#include "kalimkit/editor/desk/DeskLayout.h"

#include <algorithm>

#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

namespace {

constexpr double statusRow = 28;
constexpr double pictureGap = 8;
constexpr double leastWidth = 700;
// With a pointer, which needs no room around what it presses.
constexpr gfx::Size leastForPointer{560, 360};
constexpr double thinnestBar = 40;
constexpr double thickestBar = 72;
constexpr double leastButton = 28;
constexpr double largestButton = 64;
// Between a button and its bar's edge, where the bar is not thicker.
constexpr double leastMargin = 3;

}  // namespace

DeskSizes DeskSizes::current() {
    return ui::Environment::current().attachment<DeskSizes>();
}

void DeskSizes::give(const std::optional<double>& bar, const std::optional<double>& button) {
    const DeskSizes usual;
    DeskSizes sizes;
    sizes.button = std::clamp(button.value_or(usual.button), leastButton, largestButton);
    sizes.bar =
        std::clamp(bar.value_or(sizes.button + 2 * usual.margin()), thinnestBar, thickestBar);
    sizes.button = std::min(sizes.button, sizes.bar - 2 * leastMargin);
    ui::Environment::current().attachment<DeskSizes>() = sizes;
}

DeskLayout deskLayout(gfx::Size view, const ui::EdgeInsets& safeArea, std::size_t pens) {
    const DeskSizes sizes = DeskSizes::current();
    DeskLayout layout;
    layout.top = {0, 0, view.width, sizes.bar + safeArea.top};
    const double statusTop = std::max(view.height - statusRow - safeArea.bottom, layout.top.maxY());
    layout.status = {0, statusTop, view.width, statusRow + safeArea.bottom};
    const double height = statusTop - layout.top.maxY();
    const double needed = static_cast<double>(pens) * sizes.button;
    layout.penColumns = needed + sizes.margin() > height ? 2 : 1;
    const double width = static_cast<double>(layout.penColumns) * sizes.button;
    layout.pens = {0, layout.top.maxY(), safeArea.left + width + 2 * sizes.margin(), height};
    return layout;
}

ui::EdgeInsets DeskLayout::covered(gfx::Size view) const {
    return {top.maxY() + pictureGap, pens.maxX() + pictureGap,
            view.height - status.minY() + pictureGap, pictureGap};
}

bool hasRoomForDesk(gfx::Size view, bool hasPointer) {
    if (view.width > leastWidth && view.width > view.height) return true;
    return hasPointer && view.width >= leastForPointer.width &&
           view.height >= leastForPointer.height;
}

}  // namespace kalim
