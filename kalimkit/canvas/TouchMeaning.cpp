#include "kalimkit/canvas/TouchMeaning.h"

namespace kalim {

namespace {

// A finger that has moved less than this is still tapping.
constexpr double tapSlop = 3.0;

}  // namespace

TouchMeaning meaningOf(const TouchDown& down) {
    if (down.isOnSelection) return {.dragsSelection = true};
    // Where nothing is drawn, empty ground picks.
    const bool hasNoPen = down.forgiving && !down.hasClass && !down.isOnTool;
    if (hasNoPen || down.wantsMarquee) return {.spansMarquee = true};
    // What is wanted where a tool lies is more often a new one beside or over it; taps select.
    const bool drawsOverTools = down.forgiving && down.hasClass;
    return {.draws = !down.isOnTool || drawsOverTools,
            .createsAtOnce = !down.isOnTool && !down.hasSelection && down.beginsAtOnce};
}

bool isStillTapping(const TouchMove& move) {
    if (move.forgiving) return !move.isMoved && move.viewDistance < tapSlop;
    return move.hasSelection && !move.isOnSelection && move.canvasDistance < tapSlop;
}

}  // namespace kalim
