#include "kalimkit/image/EditImageModView.h"

#include <gtest/gtest.h>

#include <functional>

#include "kalimkit/image/EditImageUtil.h"
#include "tests/support/TestHost.h"

namespace kalim {
namespace {

using ui::View;

TEST(EditImageModView, AChangeIsToldOnlyOfWhatTheRecordCovers) {
    const std::function<void(View&)> changes[] = {
        [](View& view) {
            view.setCenter({70, 70});
        },
        [](View& view) { view.setTransform(gfx::AffineTransform::scaling(2, 2)); },
        [](View& view) { view.setHidden(true); },
        // The place is kept, but for what the record calls the centre.
        [](View& view) {
            EditImageUtil::setAnchorPointForView({1, 0.25}, view.shared_from_this());
            EXPECT_EQ(view.frame(), gfx::Rect(10, 20, 100, 50));
            EXPECT_EQ(view.center(), (gfx::Point{110, 32.5}));
        }};
    const struct {
        std::uint32_t property;
        // After each of the changes.
        bool isChanged[4];
    } cases[] = {{0, {true, true, true, true}},
                 {EditImageModView::Frame, {true, true, false, false}},
                 {EditImageModView::Transform, {false, true, false, false}},
                 {EditImageModView::Center, {true, false, false, true}},
                 {EditImageModView::AnchorPoint, {false, false, false, true}},
                 {EditImageModView::Hidden, {false, false, true, false}},
                 // These bits stand for nothing that is compared.
                 {16 + 32, {false, false, false, false}}};
    for (const auto& [property, isChanged] : cases) {
        for (std::size_t i = 0; i < 4; ++i) {
            const auto view = View::initWithFrame({10, 20, 100, 50});
            EditImageModView record = EditImageModView::initWithCurrentView(view);
            record.modProperty = property;
            EXPECT_EQ(record.isChanged(), property == 0);
            changes[i](*view);
            EXPECT_EQ(record.isChanged(), isChanged[i]) << property << " " << i;
        }
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
