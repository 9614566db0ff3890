#include "kalimkit/ui/view/View.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <numbers>
#include <string>

#include "tests/support/RecordingDevice.h"
#include "tests/support/TestHost.h"

namespace kalim::ui {

namespace {

using gfx::AffineTransform;

// Named views in a root of 300 x 300 points.
struct Scene {
    std::shared_ptr<View> root = View::initWithFrame({0, 0, 300, 300});
    std::map<std::string, std::shared_ptr<View>> views;

    View& add(const std::string& name, const gfx::Rect& frame, const std::string& parent = "") {
        const auto view = views[name] = View::initWithFrame(frame);
        (parent.empty() ? root : views[parent])->addSubview(view);
        return *view;
    }
    std::string hit(gfx::Point p) const {
        const auto found = root->hitTest(p);
        for (const auto& [name, view] : views) {
            if (view == found) return name;
        }
        return found == root ? "root" : "nothing";
    }
};

TEST(ViewHitTest, FindsTheDeepestViewThroughTransformsAndScrolling) {
    Scene scene;
    // A diamond that reaches 70.7 points from (100, 100).
    scene.add("turned", {50, 50, 100, 100})
        .setTransform(AffineTransform::rotation(std::numbers::pi / 4));
    // At the corner of its parent that the quarter of a half turn brings to the top.
    scene.add("in turned", {0, 0, 20, 20}, "turned");
    // 10 points wide, seen from 230 to 270.
    scene.add("enlarged", {245, 95, 10, 10}).setTransform(AffineTransform::scaling(4, 4));
    scene.add("in enlarged", {8, 0, 2, 10}, "enlarged");
    scene.add("scrolled", {0, 200, 100, 100}).setBounds({0, 500, 100, 100});
    scene.add("in scrolled", {10, 510, 20, 20}, "scrolled");
    scene.add("jutting out", {90, 590, 50, 50}, "scrolled");
    scene.add("crushed", {0, 0, 50, 50}).setTransform(AffineTransform::scaling(0, 1));
    const std::pair<gfx::Point, const char*> cases[] = {
        {{100, 60}, "turned"},      {{100, 35}, "in turned"},    {{60, 60}, "root"},
        {{231, 81}, "enlarged"},    {{269, 119}, "in enlarged"}, {{229, 81}, "root"},
        {{5, 205}, "scrolled"},     {{15, 215}, "in scrolled"},  {{9, 209}, "scrolled"},
        {{95, 295}, "jutting out"}, {{105, 295}, "root"},        {{20, 20}, "root"},
        {{300, 10}, "nothing"},     {{-1, 10}, "nothing"},       {{0, 0}, "root"},
    };
    for (const auto& [point, expected] : cases)
        EXPECT_EQ(scene.hit(point), expected) << point.x << "," << point.y;
}

TEST(ViewHitTest, PassesOverWhatTakesNoTouchesWithAllThatIsInIt) {
    Scene scene;
    scene.add("below", {0, 0, 100, 100});
    View& above = scene.add("above", {0, 0, 100, 100});
    scene.add("inner", {0, 0, 50, 50}, "above");
    EXPECT_EQ(scene.hit({10, 10}), "inner");
    EXPECT_EQ(scene.hit({60, 10}), "above");
    above.setHidden(true);
    EXPECT_EQ(scene.hit({10, 10}), "below");
    above.setHidden(false);
    above.setAlpha(0.009);
    EXPECT_EQ(scene.hit({10, 10}), "below");
    above.setAlpha(0.01);
    EXPECT_EQ(scene.hit({10, 10}), "inner");
    above.setUserInteractionEnabled(false);
    EXPECT_EQ(scene.hit({10, 10}), "below");
}

TEST(ViewHitTest, TheLastSubviewIsOnTop) {
    Scene scene;
    View& a = scene.add("a", {0, 0, 60, 60});
    View& b = scene.add("b", {40, 0, 60, 60});
    View& c = scene.add("c", {40, 40, 60, 60});
    EXPECT_EQ(scene.hit({50, 50}), "c");
    scene.root->sendSubviewToBack(c);
    EXPECT_EQ(scene.hit({50, 50}), "b");
    scene.root->bringSubviewToFront(a);
    EXPECT_EQ(scene.hit({50, 50}), "a");
    scene.root->insertSubview(b.shared_from_this(), 99);
    EXPECT_EQ(scene.hit({50, 50}), "b");
    scene.root->bringSubviewToFront(*scene.root);
    EXPECT_EQ(scene.root->subviews().size(), 3u);
}

TEST(View, FrameFollowsFromBoundsCentreAndTransform) {
    const auto view = View::initWithFrame({10, 20, 100, 50});
    EXPECT_EQ(view->center(), (gfx::Point{60, 45}));
    view->setTransform({0, 1, -1, 0, 0, 0});
    EXPECT_EQ(view->frame(), gfx::Rect(35, -5, 50, 100)) << "a quarter turn about the centre";
    view->setTransform({});
    view->setBounds({7, 8, 20, 10});
    EXPECT_EQ(view->frame(), gfx::Rect(50, 40, 20, 10)) << "the centre stays";
    view->setFrame({0, 0, 40, 40});
    EXPECT_EQ(view->bounds(), gfx::Rect(7, 8, 40, 40)) << "the scroll position stays";
    view->setFrame({40, 30, -40, -30});
    EXPECT_EQ(view->frame(), gfx::Rect(0, 0, 40, 30));

    // What is not finite changes nothing.
    constexpr double none = std::numeric_limits<double>::quiet_NaN();
    constexpr double endless = std::numeric_limits<double>::infinity();
    view->setBounds({0, 0, 100, 50});
    view->setFrame({10, 20, 100, 50});
    view->setFrame({0, none, 10, 10});
    view->setBounds({0, 0, endless, 10});
    view->setCenter({none, 0});
    view->setTransform(AffineTransform::scaling(none, 1));
    view->setAlpha(none);
    EXPECT_EQ(view->frame(), gfx::Rect(10, 20, 100, 50));
    EXPECT_EQ(view->alpha(), 1);
    view->setAlpha(7);
    EXPECT_EQ(view->alpha(), 1);
    view->setAlpha(-7);
    EXPECT_EQ(view->alpha(), 0);
}

TEST(View, ConvertsBetweenViewsInDifferentBranches) {
    Scene scene;
    View& scrolled = scene.add("scrolled", {100, 100, 50, 50});
    scrolled.setBounds({0, 30, 50, 50});
    View& doubled = scene.add("doubled", {10, 10, 20, 20});
    doubled.setTransform(AffineTransform::scaling(2, 2));
    // (5, 35) of the scrolled view is (105, 105) of the root; the doubled view starts at (0, 0).
    EXPECT_EQ(scrolled.convertPointTo({5, 35}, nullptr), (gfx::Point{105, 105}));
    EXPECT_EQ(scrolled.convertPointTo({5, 35}, &doubled), (gfx::Point{52.5, 52.5}));
    EXPECT_EQ(doubled.convertPointFrom({5, 35}, &scrolled), (gfx::Point{52.5, 52.5}));
    EXPECT_EQ(scrolled.convertRectTo({0, 30, 10, 20}, &doubled), gfx::Rect(50, 50, 5, 10));
}

TEST(View, CannotEnterItsOwnSubtree) {
    Scene scene;
    View& outer = scene.add("outer", {0, 0, 10, 10});
    View& inner = scene.add("inner", {0, 0, 10, 10}, "outer");
    inner.addSubview(outer.shared_from_this());
    inner.addSubview(inner.shared_from_this());
    inner.addSubview(nullptr);
    EXPECT_EQ(outer.superview(), scene.root.get());
    EXPECT_TRUE(inner.subviews().empty());
    scene.root->addSubview(inner.shared_from_this());
    EXPECT_TRUE(outer.subviews().empty()) << "it left its old superview";
    EXPECT_EQ(inner.superview(), scene.root.get());
    EXPECT_EQ(inner.nextResponder(), scene.root.get());
    EXPECT_EQ(scene.root->nextResponder(), nullptr);
}

class WindowWatcher : public View {
public:
    static std::shared_ptr<WindowWatcher> make() {
        struct Constructible : WindowWatcher {};
        return std::make_shared<Constructible>();
    }
    std::vector<Window*> seen;

protected:
    void didMoveToWindow() override { seen.push_back(window()); }
};

TEST(View, LearnsOfTheWindowItsAncestorsEnterAndLeave) {
    test::TestHost host({.device = std::make_shared<test::RecordingDevice>()});
    const auto holder = View::initWithFrame({0, 0, 10, 10});
    const auto watcher = WindowWatcher::make();
    holder->addSubview(watcher);
    EXPECT_TRUE(watcher->seen.empty());
    host.window().rootView()->addSubview(holder);
    holder->removeFromSuperview();
    EXPECT_EQ(watcher->seen, (std::vector<Window*>{&host.window(), nullptr}));
    {
        Window second({10, 10});
        second.rootView()->addSubview(holder);
        EXPECT_EQ(watcher->window(), &second);
        EXPECT_EQ(second.rootView()->nextResponder(), &second);
    }
    EXPECT_EQ(watcher->window(), nullptr) << "the window is gone";
}

}  // namespace

}  // namespace kalim::ui
