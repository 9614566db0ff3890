#include "kalimkit/image/EditImageModView.h"

#include <gtest/gtest.h>

#include "kalimkit/image/EditImageUtil.h"
#include "tests/support/TestHost.h"

namespace kalim {
namespace {

using ui::View;

TEST(EditImageModView, AChangeIsToldOnlyOfWhatTheRecordCovers) {
    const struct {
        std::uint32_t property;
        bool afterMove, afterTurn, afterHiding;
    } cases[] = {
        {0, true, true, true},
        {EditImageModView::Frame, true, true, false},
        {EditImageModView::Transform, false, true, false},
        {EditImageModView::Center, true, false, false},
        {EditImageModView::AnchorPoint, false, false, false},
        {EditImageModView::Hidden, false, false, true},
        // These bits stand for nothing that is compared.
        {16 + 32, false, false, false},
    };
    for (const auto& [property, afterMove, afterTurn, afterHiding] : cases) {
        const auto changedBy = [property = property](auto change) {
            const auto view = View::initWithFrame({10, 20, 100, 50});
            EditImageModView record = EditImageModView::initWithCurrentView(view);
            record.modProperty = property;
            EXPECT_EQ(record.isChanged(), property == 0);
            change(*view);
            return record.isChanged();
        };
        EXPECT_EQ(changedBy([](View& view) { view.setCenter({70, 70}); }), afterMove) << property;
        EXPECT_EQ(
            changedBy([](View& view) { view.setTransform(gfx::AffineTransform::scaling(2, 2)); }),
            afterTurn)
            << property;
        EXPECT_EQ(changedBy([](View& view) { view.setHidden(true); }), afterHiding) << property;
        // The place is kept, but for what the record calls the centre.
        EXPECT_EQ(changedBy([](View& view) {
                      EditImageUtil::setAnchorPointForView({1, 0.25}, view.shared_from_this());
                      EXPECT_EQ(view.frame(), gfx::Rect(10, 20, 100, 50));
                      EXPECT_EQ(view.center(), (gfx::Point{110, 32.5}));
                  }),
                  (property & (EditImageModView::AnchorPoint | EditImageModView::Center)) != 0 ||
                      property == 0)
            << property;
    }
}

TEST(EditImageModView, AViewThatIsNotThereHasOnlyZeros) {
    EditImageModView record;
    record.modProperty = EditImageModView::Frame | EditImageModView::Hidden;
    EXPECT_FALSE(record.isChanged());
    record.modProperty = EditImageModView::Transform;
    EXPECT_TRUE(record.isChanged());
}

TEST(EditImageUtil, AViewStaysWhereItIsWithANewAnchorPointAndScalesAboutIt) {
    const auto view = View::initWithFrame({10, 20, 100, 50});
    EditImageUtil::setAnchorPointForView({0, 1}, view);
    view->setTransform(gfx::AffineTransform::scaling(2, 2));
    EXPECT_EQ(view->frame(), gfx::Rect(10, -30, 200, 100));
    view->setTransform({});
    view->setFrame({0, 0, 10, 10});
    EXPECT_EQ(view->frame(), gfx::Rect(0, 0, 10, 10));
    EXPECT_EQ(view->center(), (gfx::Point{0, 10}));
}

TEST(EditImageUtil, PlacesSnapToTheNearestPixelHalvesToTheEvenOne) {
    const test::TestHost host({.scale = 2});
    for (const auto& [v, snapped] :
         {std::pair{10.25F, 10.0F}, {10.75F, 11.0F}, {10.3F, 10.5F}, {-10.25F, -10.0F}})
        EXPECT_EQ(EditImageUtil::getNearByInt(v), snapped) << v;
}

}  // namespace
}  // namespace kalim
