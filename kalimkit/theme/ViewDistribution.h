#pragma once

#include <memory>
#include <vector>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/view/View.h"

namespace kalim {

// Spread subviews of a view evenly over its bounds as they are now. Hidden spacers, one more than
// there are views and all of one length, are added to the view and fill it together with them, from
// its first edge to its last; they have no extent across and lie at the middle of the view that
// follows (the last one of the view before it). Views that are longer together than the bounds
// are put end to end from the first edge. Their place across is left alone.

KALIM_API void distributeSpacingHorizontallyWith(
    ui::View& receiver, const std::vector<std::shared_ptr<ui::View>>& views);
KALIM_API void distributeSpacingVerticallyWith(ui::View& receiver,
                                               const std::vector<std::shared_ptr<ui::View>>& views);
// Does what distributeSpacingHorizontallyWith() does.
KALIM_API void averageSpacingHorizontallyWithViews(
    ui::View& receiver, const std::vector<std::shared_ptr<ui::View>>& views);

}  // namespace kalim
