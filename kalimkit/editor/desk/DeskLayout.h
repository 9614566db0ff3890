#pragma once

#include <cstddef>
#include <optional>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Rect.h"
#include "kalimkit/ui/environment/EdgeInsets.h"

namespace kalim {

// How large the desk's bars and buttons are in the current environment, points.
struct KALIM_API DeskSizes {
    // How high the top bar is, and how wide that of the pens with one column.
    double bar = 48;
    // A button of theirs is as wide and as high.
    double button = 34;

    // Buttons keep it from the edges of their bar.
    double margin() const { return (bar - button) / 2; }

    static DeskSizes current();
    // What is not given follows the other. A bar has 40 to 72 points, and a button 28 to 64, and
    // fits into its bar; what is beyond is taken for the nearest. Desks that there are get them
    // when they are laid out.
    static void give(const std::optional<double>& bar, const std::optional<double>& button);
};

// Where the desk's bars go in a view, points: one across the top, the pens below it at the left,
// what is told across the bottom. The bars reach under the insets, what is in them does not.
struct KALIM_API DeskLayout {
    // Of what is in bars, at their usual size.
    static constexpr double buttonSide = 34;
    static constexpr double barMargin = 7;

    gfx::Rect top;
    gfx::Rect pens;
    gfx::Rect status;
    // The columns of the pens: a second one where they do not fit into the first. Pens that do not
    // fit then scroll.
    std::size_t penColumns = 1;

    // What the bars cover, and a gap beside them.
    ui::EdgeInsets covered(gfx::Size view) const;
};

KALIM_API DeskLayout deskLayout(gfx::Size view, const ui::EdgeInsets& safeArea, std::size_t pens);

// Whether a view has room for the desk. A pointer that hovers makes do with less.
KALIM_API bool hasRoomForDesk(gfx::Size view, bool hasPointer);

}  // namespace kalim
