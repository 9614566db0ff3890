#include "kalimkit/crop/CropLayout.h"

#include <gtest/gtest.h>

namespace kalim {
namespace {

TEST(CropLayout, PicturesAreFittedInWholePointsAndOrdinaryOnesHangInTheMiddle) {
    EXPECT_EQ(cropNaturalTopLength({300, 300}, {390, 844}), 227);
    EXPECT_EQ(cropNaturalTopLength({300, 100}, {390, 844}), 0);
    EXPECT_EQ(cropNaturalTopLength({100, 300}, {390, 844}), 0);
    EXPECT_EQ(cropFittedSize({1000, 333}, {350, 600}), (gfx::Size{350, 116}));
    EXPECT_EQ(cropContentInset({20, 100, 350, 500}, {390, 844}, 30, 44),
              (ui::EdgeInsets{26, 20, 230, 20}));
}

TEST(CropLayout, TheZoomGoesFromCoveringTheFrameToPixelsOfFourPointsButNotBeyondFifteen) {
    const auto limits = cropZoomLimits({350, 350}, {100, 200}, 0.5);
    EXPECT_NEAR(limits.minimum, 0.5714, 1e-4);
    EXPECT_EQ(limits.maximum, 8);
    EXPECT_EQ(cropZoomLimits({350, 350}, {350, 350}, 2).maximum, 5);
    EXPECT_EQ(cropZoomLimits({350, 350}, {350, 350}, 0.1).maximum, 15);
    EXPECT_EQ(cropZoomLimits({10, 10}, {200, 200}, 1).maximum, 20);
}

TEST(CropLayout, ARecentredFrameGrowsToTheContentsSides) {
    const gfx::Rect frame(100, 200, 100, 200);
    const CropRecentring recentring = recentredCropFrame(frame, {20, 50, 350, 600});
    EXPECT_EQ(recentring.frame, gfx::Rect(45, 50, 300, 600));
    EXPECT_EQ(recentring.factor, 3);
}

TEST(CropLayout, TheCutIsInPixelsOfTheRasterAtEveryZoom) {
    EXPECT_EQ(cropCutRect({10, 20, 50, 60}, {1000, 900}, {500, 300}, 2),
              gfx::Rect(40, 120, 200, 360));
    EXPECT_EQ(cropCutRect({10, 20, 50, 60}, {1000, 900}, {250, 150}, 1),
              gfx::Rect(40, 120, 200, 360));
}

TEST(CropLayout, TurnsGoRoundByQuartersAndBackTheShortWay) {
    const struct {
        int from, to, quarters;
    } turns[] = {{0, 1, -1}, {3, 0, -1}, {0, 2, 2}, {2, 0, 2},
                 {1, 0, 1},  {0, 3, 1},  {2, 2, 0}, {0, 5, 0}};
    for (const auto& [from, to, quarters] : turns)
        EXPECT_EQ(cropQuarterTurns(from, to), quarters) << from << " to " << to;
    for (const auto& [from, to] : {std::pair{0, 1}, {1, 2}, {2, 3}, {3, 0}, {4, 1}, {-1, 1}})
        EXPECT_EQ(nextCropOrientation(from), to);
    const struct {
        int difference;
        CropTurnsBack back;
    } back[] = {{0, {}},         {1, {1, false}}, {2, {2, false}},  {-2, {2, false}},
                {-1, {1, true}}, {3, {1, true}},  {-3, {1, false}}, {4, {1, false}}};
    for (const auto& [difference, expected] : back)
        EXPECT_EQ(cropTurnsBack(difference), expected) << difference;
}

}  // namespace
}  // namespace kalim
