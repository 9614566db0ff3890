#include "kalimkit/editor/desk/DeskLayout.h"

#include <algorithm>

namespace kalim {

namespace {

constexpr double topRow = 48;
constexpr double statusRow = 28;
constexpr double pictureGap = 8;
constexpr double leastWidth = 700;
// With a pointer, which needs no room around what it presses.
constexpr gfx::Size leastForPointer{560, 360};

}  // namespace

DeskLayout deskLayout(gfx::Size view, const ui::EdgeInsets& safeArea, std::size_t pens) {
    DeskLayout layout;
    layout.top = {0, 0, view.width, topRow + safeArea.top};
    const double statusTop = std::max(view.height - statusRow - safeArea.bottom, layout.top.maxY());
    layout.status = {0, statusTop, view.width, statusRow + safeArea.bottom};
    const double height = statusTop - layout.top.maxY();
    const double needed = static_cast<double>(pens) * DeskLayout::buttonSide;
    layout.penColumns = needed + DeskLayout::barMargin > height ? 2 : 1;
    const double width = static_cast<double>(layout.penColumns) * DeskLayout::buttonSide;
    layout.pens = {0, layout.top.maxY(), safeArea.left + width + 2 * DeskLayout::barMargin, height};
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
