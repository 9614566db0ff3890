#include "kalimkit/canvas/TouchMeaning.h"

#include <gtest/gtest.h>

namespace kalim::test {

TEST(TouchMeaning, AForgivingCanvasDrawsOverToolsAndDragsTheSelectionAlone) {
    struct Case {
        const char* about;
        TouchDown down;
        TouchMeaning byItself;
        TouchMeaning forgiving;
    };
    const TouchMeaning drags{.dragsSelection = true};
    const TouchMeaning draws{.draws = true};
    const TouchMeaning writes{.draws = true, .createsAtOnce = true};
    const TouchMeaning picks{};
    const TouchMeaning spans{.spansMarquee = true};
    const Case cases[] = {
        {"selection",
         {.isOnSelection = true, .hasSelection = true, .hasClass = true},
         drags,
         drags},
        {"bare place", {.hasClass = true}, draws, draws},
        {"another tool", {.isOnTool = true, .hasClass = true}, picks, draws},
        {"another tool, nothing to draw with", {.isOnTool = true}, picks, picks},
        {"bare place, nothing to draw with", {}, draws, spans},
        {"bare place, with a key", {.hasClass = true, .wantsMarquee = true}, spans, spans},
        {"text", {.hasClass = true, .beginsAtOnce = true}, writes, writes},
        {"text while something is selected",
         {.hasSelection = true, .hasClass = true, .beginsAtOnce = true},
         draws,
         draws},
        {"text on a tool",
         {.isOnTool = true, .hasClass = true, .beginsAtOnce = true},
         picks,
         draws},
    };
    for (const Case& each : cases) {
        TouchDown down = each.down;
        EXPECT_EQ(meaningOf(down), each.byItself) << each.about;
        down.forgiving = true;
        EXPECT_EQ(meaningOf(down), each.forgiving) << each.about;
    }
}

TEST(TouchMeaning, AFingerStillTapsWithinThreePoints) {
    // By itself beside the selection alone, in canvas points, and again when it comes back.
    const TouchMove beside{.isMoved = true, .hasSelection = true, .canvasDistance = 2.9};
    EXPECT_TRUE(isStillTapping(beside));
    EXPECT_FALSE(isStillTapping({.hasSelection = true, .canvasDistance = 3}));
    EXPECT_FALSE(isStillTapping({.hasSelection = true, .isOnSelection = true}));
    EXPECT_FALSE(isStillTapping({.canvasDistance = 1}));
    // Forgiving for every finger, in view points, until it has gone too far.
    EXPECT_TRUE(isStillTapping({.forgiving = true, .canvasDistance = 9, .viewDistance = 2.9}));
    EXPECT_FALSE(isStillTapping({.forgiving = true, .canvasDistance = 1, .viewDistance = 3}));
    EXPECT_FALSE(isStillTapping({.forgiving = true, .isMoved = true, .viewDistance = 1}));
}

}  // namespace kalim::test
