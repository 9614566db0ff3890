#pragma once

#include <cstddef>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Rect.h"
#include "kalimkit/ui/environment/EdgeInsets.h"

namespace kalim {

// Where the desk's bars go in a view, points: one across the top, the pens below it at the left,
// what is told across the bottom. The bars reach under the insets, what is in them does not.
struct KALIM_API DeskLayout {
    // A button of the bars is as wide and as high.
    static constexpr double buttonSide = 34;
    // Buttons keep it from the edges of their bar.
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
