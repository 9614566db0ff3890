#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <numbers>
#include <string>
#include <vector>

#include "kalimkit/ui/motion/ShapeLayer.h"
#include "tests/ui/Stage.h"

namespace kalim::ui {

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double forever = std::numeric_limits<double>::infinity();

AnimationOptions linear(double duration, double delay = 0) {
    return {.duration = duration, .delay = delay, .curve = TimingCurve::Linear};
}

BasicAnimation basic(AnimatedProperty property, double from, double to, double duration) {
    BasicAnimation part;
    part.property = property;
    part.from = from;
    part.to = to;
    part.duration = duration;
    part.curve = TimingCurve::Linear;
    return part;
}

// A window of 100 x 100 points with a view in it.
struct AnimationStage : test::Stage {
    AnimationStage() : Stage({100, 100}) {
        wait(0.1);
        window().takeDrawn();
    }
    // Writes down when it ends, in seconds from now.
    std::function<void(bool)> completion(const std::string& name) {
        return [name, this, start = loop().now()](bool finished) {
            char text[80];
            std::snprintf(text, sizeof text, "%s %s at %g", name.c_str(),
                          finished ? "finished" : "lost", loop().now() - start);
            lines.push_back(text);
        };
    }
    void expectIdle() {
        const auto frames = window().frames();
        EXPECT_FALSE(loop().isBusy()) << "next due at " << loop().nextDue();
        wait(1);
        EXPECT_EQ(window().frames(), frames);
    }

    std::shared_ptr<View> view = addView({10, 10, 20, 20});
};

struct ViewAnimation : testing::Test, AnimationStage {};

void expectNear(const gfx::Rect& actual, const gfx::Rect& expected, const char* what) {
    EXPECT_NEAR(actual.minX(), expected.minX(), 1e-9) << what;
    EXPECT_NEAR(actual.minY(), expected.minY(), 1e-9) << what;
    EXPECT_NEAR(actual.size.width, expected.size.width, 1e-9) << what;
    EXPECT_NEAR(actual.size.height, expected.size.height, 1e-9) << what;
}

TEST_F(ViewAnimation, TakesTheFinalValuesAtOnceAndShowsTheWay) {
    View::animate(linear(1, 0.5), [&] {
        view->setFrame({50, 10, 40, 40});
        view->setAlpha(0.2);
    });
    EXPECT_EQ(view->frame(), gfx::Rect(50, 10, 40, 40));
    EXPECT_EQ(view->alpha(), 0.2);
    expectNear(view->shownFrame(), {10, 10, 20, 20}, "at the start");
    wait(0.5);
    expectNear(view->shownFrame(), {10, 10, 20, 20}, "after the delay");
    wait(0.25);
    expectNear(view->shownFrame(), {20, 10, 25, 25}, "a quarter on");
    EXPECT_NEAR(view->shownAlpha(), 0.8, 1e-9);

    // Another one takes the alpha over; the frame goes on.
    View::animate(linear(0.25), [&] { view->setAlpha(0); });
    wait(0.125);
    EXPECT_NEAR(view->shownAlpha(), 0.4, 0.03) << "within a frame";
    wait(0.125);
    EXPECT_EQ(view->shownAlpha(), 0);
    expectNear(view->shownFrame(), {30, 10, 30, 30}, "half way");

    // Setting the same is no change, another value outside of an animation shows at once.
    view->setAlpha(0);
    view->setFrame(view->frame());
    EXPECT_TRUE(view->isAnimating());
    view->setFrame({0, 0, 10, 10});
    EXPECT_EQ(view->shownFrame(), gfx::Rect(0, 0, 10, 10));
    EXPECT_FALSE(view->isAnimating());
    wait(1);
    expectIdle();
}

TEST_F(ViewAnimation, IsOverAtOnceForThoseWhoPreferThat) {
    environment().setPrefersReducedMotion(true);
    const auto fade = [&] { view->setAlpha(0.2); };
    const auto move = [&] { view->setCenter(gfx::Point(60, 20)); };
    View::animate(linear(1, 0.5), fade, completion("slow"));
    View::animate(linear(0.1), move, completion("fast"));
    EXPECT_EQ(view->shownAlpha(), 0.2);
    EXPECT_EQ(view->shownFrame().midX(), 60);
    auto turn = basic(AnimatedProperty::Rotation, 0, 1, 0.5);
    turn.staysAtEnd = true;
    LayerAnimation lasting = LayerAnimation::basic(turn);
    lasting.staysAtEnd = true;
    view->addAnimation(lasting, "lasting");
    LayerAnimation endless = lasting;
    endless.repeatCount = forever;
    view->addAnimation(endless, "endless");
    const auto layer = std::make_shared<ShapeLayer>();
    view->addShapeLayer(layer);
    layer->addAnimation(endless, "layer's");
    EXPECT_TRUE(view->runningAnimationKeys().empty());
    EXPECT_NEAR(view->shownTransform().b, std::sin(1), 1e-9) << "the end of the one that stays";
    EXPECT_TRUE(lines.empty());
    wait(0);
    EXPECT_EQ(lines, (test::Lines{"slow finished at 0", "fast finished at 0"}));
    wait(0.1);
    expectIdle();
}

TEST_F(ViewAnimation, ShowsEveryPlaceThroughThoseAbove) {
    const auto child = View::initWithFrame({0, 0, 10, 10});
    view->addSubview(child);
    View::animate(linear(1), [&] {
        view->setCenter({60, 20});
        child->setTransform(gfx::AffineTransform::rotation(std::numbers::pi));
        View::performWithoutAnimation([&] { child->setBackgroundColor(gfx::makeColor(0, 0, 1)); });
    });
    wait(0.5);
    expectNear(child->shownRectInWindow(), {30, 10, 10, 10}, "a quarter turn of a square, moved");
    EXPECT_NEAR(child->shownTransform().b, 1, 1e-9);
    EXPECT_EQ(child->convertRectTo(child->bounds(), nullptr).minX(), 50) << "final";
}

TEST_F(ViewAnimation, DrawsOnlyWhatMoves) {
    addView({0, 60, 100, 40});
    wait(0.1);
    window().takeDrawn();
    View::animate(linear(0.5), [&] { view->setCenter({50, 20}); });
    for (int frame = 1; frame <= 30; ++frame) {
        wait(1.0 / 60);
        EXPECT_EQ(window().lastCost().views, 1);
        EXPECT_LE(window().lastCost().pixels, 23 * 20);
    }
    EXPECT_EQ(view->shownFrame(), gfx::Rect(40, 10, 20, 20));
    expectIdle();

    // While it waits nothing is drawn.
    View::animate(linear(0.1, 0.5), [&] { view->setAlpha(0.5); });
    wait(0.1);
    const auto frames = window().frames();
    wait(0.3);
    EXPECT_EQ(window().frames(), frames);
}

TEST_F(ViewAnimation, CompletionsComeAtTheirTimeWhateverHappened) {
    using Change = std::function<void(std::shared_ptr<View>&)>;
    const Change fade = [](auto& view) { view->setAlpha(0.5); };
    const Change both = [](auto& view) {
        view->setAlpha(0.5);
        view->setCenter(gfx::Point(5, 5));
    };
    const Change other = [](auto&) { View::initWithFrame(gfx::Rect(0, 0, 1, 1))->setAlpha(0); };
    const Change none = [](auto&) {};
    const Change show = [](auto& view) { view->setAlpha(1); };
    const Change fadeOn = [&](auto& view) { View::animate(linear(9), [&] { show(view); }); };
    const Change leave = [](auto& view) { view->removeFromSuperview(); };
    const Change destroy = [](auto& view) {
        view->removeFromSuperview();
        view = nullptr;
    };
    const struct {
        const char* what;
        AnimationOptions options;
        Change change;
        Change then;
        const char* expected;
    } cases[] = {
        {"to the end", linear(0.3, 0.05), fade, none, "a finished at 0.35"},
        {"between frames", linear(0.123), fade, none, "a finished at 0.123"},
        {"without a change", linear(0.3), none, none, "a finished at 0.3"},
        {"at once", linear(0), fade, none, "a finished at 0"},
        {"no number", linear(notANumber, forever), fade, none, "a finished at 0"},
        {"a delay alone", linear(-1, 0.2), fade, none, "a finished at 0.2"},
        {"taken over", linear(0.3), fade, show, "a lost at 0.3"},
        {"animated on", linear(0.3), fade, fadeOn, "a lost at 0.3"},
        {"one of two taken over", linear(0.3), both, show, "a finished at 0.3"},
        {"view left", linear(0.3), fade, leave, "a lost at 0.3"},
        {"view destroyed", linear(0.3), fade, destroy, "a lost at 0.3"},
        {"never in a window", linear(0.3), other, none, "a finished at 0.3"},
    };
    for (const auto& each : cases) {
        AnimationStage stage;
        const auto change = [&] { each.change(stage.view); };
        View::animate(each.options, change, stage.completion("a"));
        EXPECT_TRUE(stage.lines.empty()) << each.what << ": not before the run loop goes on";
        stage.wait(0.02);
        each.then(stage.view);
        stage.wait(1);
        EXPECT_EQ(stage.lines, test::Lines{each.expected}) << each.what;
    }
}

TEST_F(ViewAnimation, CompletionsMayAnimateOnAndDestroy) {
    const auto last = completion("last");
    const auto destroy = [&](bool finished) {
        view->removeFromSuperview();
        view = nullptr;
        last(finished);
    };
    const auto goOn = [&](bool) {
        EXPECT_FALSE(view->isAnimating());
        EXPECT_EQ(view->shownAlpha(), 0.5);
        View::animate(
            linear(0.2), [&] { view->setAlpha(0); }, destroy);
    };
    View::animate(
        linear(0.2), [&] { view->setAlpha(0.5); }, goOn);
    wait(1);
    EXPECT_EQ(lines, test::Lines{"last finished at 0.4"});
    expectIdle();
}

TEST_F(ViewAnimation, ViewsOutliveTheirEnvironmentWhileTheyAnimate) {
    std::shared_ptr<View> kept;
    {
        AnimationStage stage;
        kept = stage.view;
        kept->addAnimation({{basic(AnimatedProperty::Opacity, 0, 1, 1)}, 1, forever}, "endless");
        View::animate(
            linear(1), [&] { kept->setAlpha(0.5); }, [kept](bool) { FAIL(); });
        stage.wait(0.5);
    }
    EXPECT_EQ(kept->shownAlpha(), 0.5);
    EXPECT_FALSE(kept->isAnimating());
}

TEST_F(ViewAnimation, RefusesTouchesUnlessAllowed) {
    const auto hit = [&] { return root->hitTest({15, 15}) == view; };
    View::animate(linear(0.2, 0.1), [&] { view->setAlpha(0.5); });
    EXPECT_FALSE(hit());
    wait(0.25);
    EXPECT_FALSE(hit());
    wait(0.05);
    EXPECT_TRUE(hit());
    AnimationOptions allowing = linear(1);
    allowing.allowsUserInteraction = true;
    View::animate(allowing, [&] { view->setCenter({60, 60}); });
    EXPECT_FALSE(hit()) << "it is where it will be";
    EXPECT_EQ(root->hitTest({60, 60}), view);
}

TEST_F(ViewAnimation, KeyedAnimationsMultiplyWhatTheViewShows) {
    view->setAlpha(0.5);
    view->setTransform(gfx::AffineTransform::scaling(2, 1));
    view->addAnimation(
        {{basic(AnimatedProperty::Opacity, 0, 1, 1), basic(AnimatedProperty::Scale, 1, 3, 1)},
         1,
         forever},
        "pulse");
    wait(0.5);
    EXPECT_NEAR(view->shownAlpha(), 0.25, 1e-9);
    expectNear(view->shownFrame(), {-20, 0, 80, 40}, "twice as large about its centre");
    EXPECT_EQ(view->frame(), gfx::Rect(0, 10, 40, 20));
    EXPECT_EQ(view->animationKeys(), test::Lines{"pulse"});
    wait(60);
    EXPECT_NEAR(view->shownAlpha(), 0.25, 1e-6);
    view->removeAnimation("pulse");
    EXPECT_EQ(view->shownAlpha(), 0.5);
    EXPECT_FALSE(view->isAnimating());
    wait(0.1);
    expectIdle();
}

TEST_F(ViewAnimation, AShapeLayerDrawsTheAnimatedPartOfItsPathOverTheViewAndDamagesNoMore) {
    const auto layer = std::make_shared<ShapeLayer>();
    gfx::Path path;
    path.moveTo({0, 2});
    path.lineTo({10, 2});
    layer->setPath(path);
    layer->setFrame({5, 5, 10, 4});
    layer->setStrokeColor(gfx::makeColor(0, 0, 1));
    layer->setLineWidth(2);
    EXPECT_EQ(layer->extent(), gfx::Rect(-5, -3, 30, 20)) << "sharp corners reach far";
    layer->setLineJoin(gfx::LineJoin::Round);
    view->addShapeLayer(layer);
    wait(0.1);
    EXPECT_EQ(layer->extent(), gfx::Rect(4, 6, 12, 2));

    BasicAnimation grow = basic(AnimatedProperty::StrokeEnd, 0, 1, 1);
    layer->addAnimation(LayerAnimation::basic(grow), "grow");
    EXPECT_EQ(view->runningAnimationKeys(), test::Lines{"grow"});
    wait(0.5);
    takeDrawing();
    wait(1.0 / 60);
    EXPECT_EQ(window().lastCost().pixels, 12 * 2);
    EXPECT_TRUE(std::ranges::any_of(takeDrawing(), [](const std::string& line) {
        return line.starts_with("stroke [M 15,17 L 20.17,17] #0000FFFF");
    }));
    wait(1);
    EXPECT_TRUE(view->runningAnimationKeys().empty());
    expectIdle();

    // What it plays ends with its view's stay.
    layer->addAnimation({{basic(AnimatedProperty::Scale, 2, 2, 1)}, 1, forever}, "ring");
    EXPECT_EQ(layer->extent(), gfx::Rect(-2, 5, 24, 4));
    view->removeFromSuperview();
    EXPECT_TRUE(layer->animationKeys().empty());
    EXPECT_EQ(layer->extent(), gfx::Rect(4, 6, 12, 2));
}

}  // namespace

}  // namespace kalim::ui
