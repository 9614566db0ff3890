#include "kalimkit/ui/motion/LayerAnimations.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace kalim::ui {

namespace {

constexpr double forever = std::numeric_limits<double>::infinity();

BasicAnimation scale(double from, double to, double begin, double duration) {
    BasicAnimation part;
    part.property = AnimatedProperty::Scale;
    part.from = from;
    part.to = to;
    part.beginTime = begin;
    part.duration = duration;
    return part;
}

LayerAnimation group(const BasicAnimation& part, double duration, double repeats, bool stays) {
    return {{part}, duration, repeats, stays};
}

TEST(LayerAnimations, RoundsOffsetsReturnsAndEnds) {
    BasicAnimation back = scale(1, 3, 0, 1);
    back.autoreverses = true;
    BasicAnimation staying = scale(1, 3, 1, 1);
    staying.staysAtEnd = true;
    BasicAnimation eased = scale(0, 1, 0, 2);
    eased.curve = TimingCurve::EaseInOut;
    struct Sample {
        double time;
        double scale;
    };
    // Added at 10 s.
    const struct {
        const char* what;
        LayerAnimation animation;
        std::vector<Sample> samples;
        double end;
    } cases[] = {
        {"one way", LayerAnimation::basic(scale(1, 3, 0, 2)), {{10, 1}, {11, 2}, {12, 1}}, 12},
        {"there and back", LayerAnimation::basic(back), {{10.5, 2}, {11, 3}, {11.5, 2}}, 12},
        {"eased", LayerAnimation::basic(eased), {{10, 0}, {11, 0.5}}, 12},
        {"waiting, moving, left alone",
         group(scale(2, 4, 1, 1), 3, 1, false),
         {{10.5, 1}, {11, 2}, {11.5, 3}, {12.5, 1}},
         13},
        {"held within the round", group(staying, 3, 1, false), {{12.5, 3}, {13, 1}}, 13},
        {"held after it", group(staying, 3, 1, true), {{12.5, 3}, {99, 3}}, 13},
        {"cut off by the round", group(scale(1, 5, 0, 4), 1, 1, true), {{10.5, 1.5}, {50, 2}}, 11},
        {"two and a half rounds",
         group(scale(0, 2, 0, 1), 1, 2.5, true),
         {{10.25, 0.5}, {11.25, 0.5}, {12.4, 0.8}, {20, 1}},
         12.5},
        {"for ever",
         group(scale(0, 2, 0, 1), 2, forever, false),
         {{10.5, 1}, {11.5, 1}, {1010.5, 1}},
         forever},
        {"nothing at all", group(scale(0, 2, 0, 1), -3, forever, false), {{10, 1}}, 10},
    };
    for (const auto& each : cases) {
        LayerAnimations animations;
        animations.add(each.animation, "key", 10);
        for (const Sample& sample : each.samples) {
            animations.dropOver(sample.time);
            EXPECT_NEAR(animations.valuesAt(sample.time).scale, sample.scale, 1e-9)
                << each.what << " at " << sample.time;
            EXPECT_EQ(animations.isRunning(sample.time), sample.time < each.end) << each.what;
        }
    }
}

TEST(LayerAnimations, AKeyIsPlayedOnceAndOnlyRunningOnesAreNamed) {
    BasicAnimation first = scale(1, 3, 0, 1);
    first.staysAtEnd = true;
    LayerAnimations animations;
    animations.add(LayerAnimation::basic(first), "a", 0);
    animations.add(LayerAnimation::basic(scale(5, 5, 0, 4)), "b", 0);
    EXPECT_EQ(animations.runningKeys(0), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(animations.valuesAt(0.5).scale, 5) << "the one added last wins";
    EXPECT_EQ(animations.runningKeys(2), (std::vector<std::string>{"b"}));
    EXPECT_TRUE(animations.remove("b"));
    EXPECT_EQ(animations.valuesAt(2).scale, 3) << "what stays at its end still shows";
    animations.add(LayerAnimation::basic(scale(7, 7, 0, 1)), "a", 2);
    EXPECT_EQ(animations.valuesAt(2).scale, 7);
    animations.jumpToEnd();
    EXPECT_TRUE(animations.isEmpty()) << "nothing of it was to stay";
    EXPECT_FALSE(animations.remove("a"));
}

}  // namespace

}  // namespace kalim::ui
