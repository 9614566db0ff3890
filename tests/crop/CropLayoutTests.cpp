#include "kalimkit/crop/CropLayout.h"

#include <gtest/gtest.h>

namespace kalim {
namespace {

TEST(CropLayout, OrdinaryPicturesHangInTheMiddle) {
    EXPECT_EQ(cropNaturalTopLength({300, 300}, {390, 844}), 227);
    EXPECT_EQ(cropNaturalTopLength({300, 100}, {390, 844}), 0);
    EXPECT_EQ(cropNaturalTopLength({100, 300}, {390, 844}), 0);
}

TEST(CropLayout, TheZoomGoesFromCoveringTheFrameToPixelsOfFourPointsButNotBeyondFifteen) {
    const auto limits = cropZoomLimits({350, 350}, {100, 200}, 0.5);
    EXPECT_NEAR(limits.minimum, 0.5714, 1e-4);
    EXPECT_EQ(limits.maximum, 8);
    EXPECT_EQ(cropZoomLimits({350, 350}, {350, 350}, 2).maximum, 5);
    EXPECT_EQ(cropZoomLimits({350, 350}, {350, 350}, 0.1).maximum, 15);
    EXPECT_EQ(cropZoomLimits({10, 10}, {200, 200}, 1).maximum, 20);
}

TEST(CropLayout, TurnsOfNoOrientationStartAnewAndThoseBelowNoneGoBackTheShortWay) {
    EXPECT_EQ(cropQuarterTurns(2, 0), 2);
    EXPECT_EQ(cropQuarterTurns(0, 5), 0);
    for (const int unknown : {4, -1})
        EXPECT_EQ(nextCropOrientation(unknown), 1);
    const struct {
        int difference;
        CropTurnsBack back;
    } back[] = {{-1, {1, true}}, {-2, {2, false}}, {-3, {1, false}}, {4, {1, false}}};
    for (const auto& [difference, expected] : back)
        EXPECT_EQ(cropTurnsBack(difference), expected) << difference;
}

}  // namespace
}  // namespace kalim
