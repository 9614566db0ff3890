#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <numbers>
#include <string>
#include <vector>

#include "kalimkit/ui/motion/ShapeLayer.h"
#include "tests/support/RecordingDevice.h"
#include "tests/support/TestHost.h"

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

// A window of 100 x 100 points on a device that records, with a view in it.
class Stage : public test::TestHost {
public:
    Stage() : TestHost({.size = {100, 100}, .device = std::make_shared<test::RecordingDevice>()}) {
        view = add({10, 10, 20, 20});
        wait(0.1);
        window().takeDrawn();
    }
    std::shared_ptr<View> add(const gfx::Rect& frame) {
        auto added = View::initWithFrame(frame);
        added->setBackgroundColor(gfx::makeColor(1, 0, 0));
        window().rootView()->addSubview(added);
        return added;
    }
    // Writes down when it ends, in seconds from now.
    std::function<void(bool)> completion(std::vector<std::string>& lines, std::string name) {
        return [&lines, name, this, start = loop().now()](bool finished) {
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

    std::shared_ptr<View> view;
};

void expectNear(const gfx::Rect& actual, const gfx::Rect& expected, const char* what) {
    EXPECT_NEAR(actual.minX(), expected.minX(), 1e-9) << what;
    EXPECT_NEAR(actual.minY(), expected.minY(), 1e-9) << what;
    EXPECT_NEAR(actual.size.width, expected.size.width, 1e-9) << what;
    EXPECT_NEAR(actual.size.height, expected.size.height, 1e-9) << what;
}

TEST(ViewAnimation, TakesTheFinalValuesAtOnceAndShowsTheWay) {
    Stage stage;
    View& view = *stage.view;
    View::animate(linear(1, 0.5), [&] {
        view.setFrame({50, 10, 40, 40});
        view.setAlpha(0.2);
    });
    EXPECT_EQ(view.frame(), gfx::Rect(50, 10, 40, 40));
    EXPECT_EQ(view.alpha(), 0.2);
    expectNear(view.shownFrame(), {10, 10, 20, 20}, "at the start");
    stage.wait(0.5);
    expectNear(view.shownFrame(), {10, 10, 20, 20}, "after the delay");
    stage.wait(0.25);
    expectNear(view.shownFrame(), {20, 10, 25, 25}, "a quarter on");
    EXPECT_NEAR(view.shownAlpha(), 0.8, 1e-9);

    // Another one takes the alpha over; the frame goes on.
    View::animate(linear(0.25), [&] { view.setAlpha(0); });
    stage.wait(0.125);
    EXPECT_NEAR(view.shownAlpha(), 0.4, 0.03) << "within a frame";
    stage.wait(0.125);
    EXPECT_EQ(view.shownAlpha(), 0);
    expectNear(view.shownFrame(), {30, 10, 30, 30}, "half way");

    // Setting the same is no change, another value outside of an animation shows at once.
    view.setAlpha(0);
    view.setFrame(view.frame());
    EXPECT_TRUE(view.isAnimating());
    view.setFrame({0, 0, 10, 10});
    EXPECT_EQ(view.shownFrame(), gfx::Rect(0, 0, 10, 10));
    EXPECT_FALSE(view.isAnimating());
    stage.wait(1);
    stage.expectIdle();
}

TEST(ViewAnimation, IsOverAtOnceForThoseWhoPreferThat) {
    Stage stage;
    stage.environment().setPrefersReducedMotion(true);
    View& view = *stage.view;
    std::vector<std::string> ends;
    View::animate(
        linear(1, 0.5), [&] { view.setAlpha(0.2); }, stage.completion(ends, "slow"));
    View::animate(
        linear(0.1),
        [&] {
            view.setCenter({60, 20});
        },
        stage.completion(ends, "fast"));
    EXPECT_EQ(view.shownAlpha(), 0.2);
    EXPECT_EQ(view.shownFrame().midX(), 60);
    auto turn = basic(AnimatedProperty::Rotation, 0, 1, 0.5);
    turn.staysAtEnd = true;
    LayerAnimation lasting = LayerAnimation::basic(turn);
    lasting.staysAtEnd = true;
    view.addAnimation(lasting, "lasting");
    LayerAnimation endless = lasting;
    endless.repeatCount = forever;
    view.addAnimation(endless, "endless");
    const auto layer = std::make_shared<ShapeLayer>();
    view.addShapeLayer(layer);
    layer->addAnimation(endless, "layer's");
    EXPECT_TRUE(view.runningAnimationKeys().empty());
    EXPECT_NEAR(view.shownTransform().b, std::sin(1), 1e-9) << "the end of the one that stays";
    EXPECT_TRUE(ends.empty());
    stage.wait(0);
    EXPECT_EQ(ends, (std::vector<std::string>{"slow finished at 0", "fast finished at 0"}));
    stage.wait(0.1);
    stage.expectIdle();
}

TEST(ViewAnimation, ShowsEveryPlaceThroughThoseAbove) {
    Stage stage;
    const auto child = View::initWithFrame({0, 0, 10, 10});
    stage.view->addSubview(child);
    View::animate(linear(1), [&] {
        stage.view->setCenter({60, 20});
        child->setTransform(gfx::AffineTransform::rotation(std::numbers::pi));
        View::performWithoutAnimation([&] { child->setBackgroundColor(gfx::makeColor(0, 0, 1)); });
    });
    stage.wait(0.5);
    expectNear(child->shownRectInWindow(), {30, 10, 10, 10}, "a quarter turn of a square, moved");
    EXPECT_NEAR(child->shownTransform().b, 1, 1e-9);
    EXPECT_EQ(child->convertRectTo(child->bounds(), nullptr).minX(), 50) << "final";
}

TEST(ViewAnimation, DrawsOnlyWhatMoves) {
    Stage stage;
    stage.add({0, 60, 100, 40});
    stage.wait(0.1);
    stage.window().takeDrawn();
    View::animate(linear(0.5), [&] { stage.view->setCenter({50, 20}); });
    for (int frame = 1; frame <= 30; ++frame) {
        stage.wait(1.0 / 60);
        EXPECT_EQ(stage.window().lastCost().views, 1);
        EXPECT_LE(stage.window().lastCost().pixels, 23 * 20);
    }
    EXPECT_EQ(stage.view->shownFrame(), gfx::Rect(40, 10, 20, 20));
    stage.expectIdle();

    // While it waits nothing is drawn.
    View::animate(linear(0.1, 0.5), [&] { stage.view->setAlpha(0.5); });
    stage.wait(0.1);
    const auto frames = stage.window().frames();
    stage.wait(0.3);
    EXPECT_EQ(stage.window().frames(), frames);
}

TEST(ViewAnimation, CompletionsComeAtTheirTimeWhateverHappened) {
    using Change = std::function<void(Stage&)>;
    const Change fade = [](Stage& stage) { stage.view->setAlpha(0.5); };
    const Change nothing = [](Stage&) {};
    const struct {
        const char* what;
        AnimationOptions options;
        Change change;
        Change then;
        const char* expected;
    } cases[] = {
        {"to the end", linear(0.3, 0.05), fade, nothing, "a finished at 0.35"},
        {"between frames", linear(0.123), fade, nothing, "a finished at 0.123"},
        {"without a change", linear(0.3), nothing, nothing, "a finished at 0.3"},
        {"at once", linear(0), fade, nothing, "a finished at 0"},
        {"no number", linear(notANumber, forever), fade, nothing, "a finished at 0"},
        {"a delay alone", linear(-1, 0.2), fade, nothing, "a finished at 0.2"},
        {"taken over", linear(0.3), fade, [](Stage& stage) { stage.view->setAlpha(1); },
         "a lost at 0.3"},
        {"animated on", linear(0.3), fade,
         [](Stage& stage) { View::animate(linear(9), [&] { stage.view->setAlpha(1); }); },
         "a lost at 0.3"},
        {"one of two taken over", linear(0.3),
         [&](Stage& stage) {
             fade(stage);
             stage.view->setCenter({5, 5});
         },
         [](Stage& stage) { stage.view->setAlpha(1); }, "a finished at 0.3"},
        {"view left", linear(0.3), fade, [](Stage& stage) { stage.view->removeFromSuperview(); },
         "a lost at 0.3"},
        {"view destroyed", linear(0.3), fade,
         [](Stage& stage) {
             stage.view->removeFromSuperview();
             stage.view = nullptr;
         },
         "a lost at 0.3"},
        {"never in a window", linear(0.3),
         [](Stage&) {
             View::initWithFrame({0, 0, 1, 1})->setAlpha(0);
         },
         nothing, "a finished at 0.3"},
    };
    for (const auto& each : cases) {
        Stage stage;
        std::vector<std::string> lines;
        View::animate(
            each.options, [&] { each.change(stage); }, stage.completion(lines, "a"));
        EXPECT_TRUE(lines.empty()) << each.what << ": not before the run loop goes on";
        stage.wait(0.02);
        each.then(stage);
        stage.wait(1);
        EXPECT_EQ(lines, std::vector<std::string>{each.expected}) << each.what;
    }
}

TEST(ViewAnimation, CompletionsMayAnimateOnAndDestroy) {
    Stage stage;
    std::vector<std::string> lines;
    const auto last = stage.completion(lines, "last");
    View::animate(
        linear(0.2), [&] { stage.view->setAlpha(0.5); },
        [&](bool) {
            EXPECT_FALSE(stage.view->isAnimating());
            EXPECT_EQ(stage.view->shownAlpha(), 0.5);
            View::animate(
                linear(0.2), [&] { stage.view->setAlpha(0); },
                [&](bool finished) {
                    stage.view->removeFromSuperview();
                    stage.view = nullptr;
                    last(finished);
                });
        });
    stage.wait(1);
    EXPECT_EQ(lines, std::vector<std::string>{"last finished at 0.4"});
    stage.expectIdle();
}

TEST(ViewAnimation, ViewsOutliveTheirEnvironmentWhileTheyAnimate) {
    std::shared_ptr<View> kept;
    {
        Stage stage;
        kept = stage.view;
        kept->addAnimation({{basic(AnimatedProperty::Opacity, 0, 1, 1)}, 1, forever}, "endless");
        View::animate(
            linear(1), [&] { kept->setAlpha(0.5); }, [kept](bool) { FAIL(); });
        stage.wait(0.5);
    }
    EXPECT_EQ(kept->shownAlpha(), 0.5);
    EXPECT_FALSE(kept->isAnimating());
}

TEST(ViewAnimation, RefusesTouchesUnlessAllowed) {
    Stage stage;
    const auto hit = [&] { return stage.window().rootView()->hitTest({15, 15}) == stage.view; };
    View::animate(linear(0.2, 0.1), [&] { stage.view->setAlpha(0.5); });
    EXPECT_FALSE(hit());
    stage.wait(0.25);
    EXPECT_FALSE(hit());
    stage.wait(0.05);
    EXPECT_TRUE(hit());
    AnimationOptions allowing = linear(1);
    allowing.allowsUserInteraction = true;
    View::animate(allowing, [&] { stage.view->setCenter({60, 60}); });
    EXPECT_FALSE(hit()) << "it is where it will be";
    EXPECT_EQ(stage.window().rootView()->hitTest({60, 60}), stage.view);
}

TEST(ViewAnimation, KeyedAnimationsMultiplyWhatTheViewShows) {
    Stage stage;
    View& view = *stage.view;
    view.setAlpha(0.5);
    view.setTransform(gfx::AffineTransform::scaling(2, 1));
    view.addAnimation(
        {{basic(AnimatedProperty::Opacity, 0, 1, 1), basic(AnimatedProperty::Scale, 1, 3, 1)},
         1,
         forever},
        "pulse");
    stage.wait(0.5);
    EXPECT_NEAR(view.shownAlpha(), 0.25, 1e-9);
    expectNear(view.shownFrame(), {-20, 0, 80, 40}, "twice as large about its centre");
    EXPECT_EQ(view.frame(), gfx::Rect(0, 10, 40, 20));
    EXPECT_EQ(view.animationKeys(), std::vector<std::string>{"pulse"});
    stage.wait(60);
    EXPECT_NEAR(view.shownAlpha(), 0.25, 1e-6);
    view.removeAnimation("pulse");
    EXPECT_EQ(view.shownAlpha(), 0.5);
    EXPECT_FALSE(view.isAnimating());
    stage.wait(0.1);
    stage.expectIdle();
}

TEST(ShapeLayer, DrawsTheAnimatedPartOfItsPathOverTheViewAndDamagesNoMore) {
    Stage stage;
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
    stage.view->addShapeLayer(layer);
    stage.wait(0.1);
    EXPECT_EQ(layer->extent(), gfx::Rect(4, 6, 12, 2));

    BasicAnimation grow = basic(AnimatedProperty::StrokeEnd, 0, 1, 1);
    layer->addAnimation(LayerAnimation::basic(grow), "grow");
    EXPECT_EQ(stage.view->runningAnimationKeys(), std::vector<std::string>{"grow"});
    auto& recording = test::RecordingDevice::recording(*stage.window().surface());
    stage.wait(0.5);
    recording.takeLines();
    stage.wait(1.0 / 60);
    EXPECT_EQ(stage.window().lastCost().pixels, 12 * 2);
    bool isHalfDrawn = false;
    for (const std::string& line : recording.takeLines())
        isHalfDrawn |= line.starts_with("stroke [M 15,17 L 20.17,17] #0000FFFF");
    EXPECT_TRUE(isHalfDrawn);
    stage.wait(1);
    EXPECT_TRUE(stage.view->runningAnimationKeys().empty());
    stage.expectIdle();

    // What it plays ends with its view's stay.
    layer->addAnimation({{basic(AnimatedProperty::Scale, 2, 2, 1)}, 1, forever}, "ring");
    EXPECT_EQ(layer->extent(), gfx::Rect(-2, 5, 24, 4));
    stage.view->removeFromSuperview();
    EXPECT_TRUE(layer->animationKeys().empty());
    EXPECT_EQ(layer->extent(), gfx::Rect(4, 6, 12, 2));
}

}  // namespace

}  // namespace kalim::ui
