#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

#include "kalimkit/gfx/Surface.h"
#include "kalimkit/ui/motion/ShapeLayer.h"
#include "tests/support/TestHost.h"

namespace kalim::ui {

namespace {

struct ViewDecoration : testing::Test, test::TestHost {
    ViewDecoration() : TestHost({.size = {100, 60}}) {}

    std::shared_ptr<View> add(const gfx::Rect& frame) {
        const auto view = View::initWithFrame(frame);
        window().rootView()->addSubview(view);
        return view;
    }
    // The colour that the window shows at a point, "#RRGGBBAA".
    std::string colorAt(int x, int y) {
        window().display();
        return window().surface()->makeImage()->pixels()->colorAt(x, y).hex();
    }
};

TEST_F(ViewDecoration, RoundsMasksAndShades) {
    const std::string red = "#FF0000FF";
    const std::string blue = "#0000FFFF";
    const std::string none = "#00000000";
    const auto round = [](View& view) { view.setCornerRadius(20); };
    const auto roundAndClip = [](View& view) {
        view.setCornerRadius(20);
        view.setClipsToBounds(true);
    };
    const auto cut = [](View& view) {
        const auto mask = std::make_shared<ShapeLayer>();
        gfx::Path path;
        path.addRect({0, 0, 20, 20});
        mask->setPath(path);
        mask->setFrame({10, 10, 20, 20});
        view.setMask(mask);
    };
    const auto shade = [](View& view) {
        view.setClipsToBounds(true);
        view.setShadow(gfx::Shadow{{30, 0}, 0, {0, 1, 0, 1}});
    };
    const struct {
        const char* what;
        std::function<void(View&)> decorate;
        // In the corner of the view, in that of its subview's, in the middle, and right of it.
        std::string corner, child, middle, beside;
    } cases[] = {
        {"plain", [](View&) {}, red, blue, red, none},
        {"rounded, its content not", round, none, blue, red, none},
        {"clipping, too", roundAndClip, none, none, red, none},
        {"masked", cut, none, none, red, none},
        {"with a shadow, though it clips", shade, red, blue, red, "#00FF00FF"},
    };
    for (const auto& each : cases) {
        const auto view = add({10, 10, 40, 40});
        view->setBackgroundColor(gfx::makeColor(1, 0, 0));
        const auto child = View::initWithFrame({36, 36, 4, 4});
        child->setBackgroundColor(gfx::makeColor(0, 0, 1));
        view->addSubview(child);
        window().display();
        // Set later, so that the damage is told as well.
        each.decorate(*view);
        EXPECT_EQ(colorAt(11, 11), each.corner) << each.what;
        EXPECT_EQ(colorAt(48, 48), each.child) << each.what;
        EXPECT_EQ(colorAt(30, 30), each.middle) << each.what;
        EXPECT_EQ(colorAt(70, 30), each.beside) << each.what;
        view->removeFromSuperview();
        EXPECT_EQ(colorAt(70, 30), none) << each.what;
    }
}

TEST_F(ViewDecoration, AShadowFollowsWhatCastsItWhenOnlyThatIsDrawnAgain) {
    const auto view = add({0, 0, 40, 40});
    const auto child = View::initWithFrame({0, 0, 10, 10});
    child->setBackgroundColor(gfx::makeColor(0, 0, 1));
    view->addSubview(child);
    view->setShadow(gfx::Shadow{{50, 0}, 0, {0, 1, 0, 1}});
    EXPECT_EQ(colorAt(55, 5), "#00FF00FF");
    child->setFrame({0, 20, 10, 10});
    EXPECT_EQ(colorAt(55, 5), "#00000000");
    EXPECT_EQ(colorAt(55, 25), "#00FF00FF");
    // What is damaged is the shadow's place alone.
    window().addDamage({50, 20, 10, 10});
    EXPECT_EQ(colorAt(55, 25), "#00FF00FF");
}

TEST_F(ViewDecoration, AShapeLayerIsInOneViewAtATime) {
    const auto first = View::initWithFrame({0, 0, 10, 10});
    auto second = View::initWithFrame({0, 0, 10, 10});
    const auto layer = std::make_shared<ShapeLayer>();
    first->addShapeLayer(layer);
    second->addShapeLayer(layer);
    EXPECT_TRUE(first->shapeLayers().empty());
    second->setMask(layer);
    EXPECT_TRUE(second->shapeLayers().empty());
    second = nullptr;
    layer->setLineWidth(3);  // its view is gone
    first->addShapeLayer(layer);
    first->removeShapeLayer(*layer);
    EXPECT_TRUE(first->shapeLayers().empty());
}

}  // namespace

}  // namespace kalim::ui
