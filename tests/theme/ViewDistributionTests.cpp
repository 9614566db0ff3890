#include "kalimkit/theme/ViewDistribution.h"

#include <gtest/gtest.h>

#include "kalimkit/theme/TallPhone.h"

namespace kalim {

namespace {

using Views = std::vector<std::shared_ptr<ui::View>>;

std::shared_ptr<ui::View> viewWith(const Views& views, const gfx::Rect& frame) {
    auto view = ui::View::initWithFrame(frame);
    for (const auto& subview : views)
        view->addSubview(subview);
    return view;
}

}  // namespace

TEST(ViewDistribution, ViewsAndSpacersFillTheRow) {
    const Views views{ui::View::initWithFrame({7, 5, 20, 10}),
                      ui::View::initWithFrame({7, 30, 40, 20})};
    const auto row = viewWith(views, {50, 50, 120, 60});
    distributeSpacingHorizontallyWith(*row, views);
    // 120 - 60 leaves 60 for three spacers.
    EXPECT_EQ(views[0]->frame(), gfx::Rect(20, 5, 20, 10));
    EXPECT_EQ(views[1]->frame(), gfx::Rect(60, 30, 40, 20));
    ASSERT_EQ(row->subviews().size(), 5U);
    const gfx::Rect spacers[] = {{0, 10, 20, 0}, {40, 40, 20, 0}, {100, 40, 20, 0}};
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(row->subviews()[i + 2]->frame(), spacers[i]);
        EXPECT_TRUE(row->subviews()[i + 2]->isHidden());
    }
}

TEST(ViewDistribution, AColumnIsFilledDownwardsAndWhatIsTooLongStandsEndToEnd) {
    Views views{ui::View::initWithFrame({5, 0, 10, 30})};
    distributeSpacingVerticallyWith(*viewWith(views, {0, 0, 60, 100}), views);
    EXPECT_EQ(views[0]->frame(), gfx::Rect(5, 35, 10, 30));
    views.push_back(ui::View::initWithFrame({9, 0, 80, 10}));
    averageSpacingHorizontallyWithViews(*viewWith(views, {0, 0, 80, 10}), views);
    EXPECT_EQ(views[0]->frame().minX(), 0);
    EXPECT_EQ(views[1]->frame().minX(), 10);
}

TEST(TallPhone, IsAPhoneOfOneOfThreeHeights) {
    for (const int height : {2436, 1792, 2688}) {
        EXPECT_TRUE(isTallPhone({3, {1125, height}, true})) << height;
        EXPECT_FALSE(isTallPhone({3, {1125, height}, false})) << height;
    }
    EXPECT_FALSE(isTallPhone({3, {1242, 2208}, true}));
}

}  // namespace kalim
