#include "kalimkit/ui/view/Damage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <vector>

namespace kalim::ui {

namespace {

using Rects = std::vector<gfx::Rect>;

Rects damageOf(const Rects& added) {
    Damage damage;
    for (const gfx::Rect& rect : added)
        damage.add(rect);
    return damage.rects();
}

TEST(Damage, MergesWhatOverlapsOrWastesLittle) {
    constexpr double none = std::numeric_limits<double>::quiet_NaN();
    constexpr double endless = std::numeric_limits<double>::infinity();
    struct Case {
        const char* what;
        Rects added;
        Rects expected;
    };
    const Case cases[] = {
        {"overlapping", {{0, 0, 10, 10}, {9, 9, 10, 10}}, {{0, 0, 19, 19}}},
        {"side by side", {{0, 0, 10, 10}, {10, 0, 10, 10}}, {{0, 0, 20, 10}}},
        {"a small gap", {{0, 0, 10, 10}, {12, 0, 10, 10}}, {{0, 0, 22, 10}}},
        {"far apart", {{0, 0, 10, 10}, {30, 0, 10, 10}}, {{0, 0, 10, 10}, {30, 0, 10, 10}}},
        {"corner to corner",
         {{0, 0, 10, 10}, {10, 10, 10, 10}},
         {{0, 0, 10, 10}, {10, 10, 10, 10}}},
        {"inside", {{0, 0, 50, 50}, {9, 9, 10, 10}}, {{0, 0, 50, 50}}},
        // The bridge joins both ends.
        {"bridged", {{0, 0, 10, 10}, {30, 0, 10, 10}, {5, 0, 30, 10}}, {{0, 0, 40, 10}}},
        {"nothing", {{5, 5, 0, 10}, {5, 5, 10, -1}, {none, 0, 1, 1}, {0, 0, endless, 1}}, {}},
    };
    for (const Case& item : cases)
        EXPECT_EQ(damageOf(item.added), item.expected) << item.what;
}

TEST(Damage, StaysShortAndDisjointAndCoversEverything) {
    Damage damage;
    Rects added;
    unsigned noise = 1;
    const auto next = [&noise](unsigned below) {
        noise = noise * 1664525U + 1013904223U;
        return static_cast<double>((noise >> 8U) % below);
    };
    for (int i = 0; i < 300; ++i) {
        added.push_back({next(1000), next(1000), 1 + next(12), 1 + next(12)});
        damage.add(added.back());
        ASSERT_LE(damage.rects().size(), Damage::capacity);
        for (const gfx::Rect& a : damage.rects()) {
            for (const gfx::Rect& b : damage.rects())
                ASSERT_TRUE(&a == &b || !a.intersects(b)) << "after " << added.size();
        }
        for (const gfx::Rect& rect : added) {
            ASSERT_TRUE(std::ranges::any_of(
                damage.rects(), [&rect](const gfx::Rect& known) { return known.contains(rect); }))
                << "after " << added.size();
        }
        if (i % 30 == 29) {
            damage.clear();
            added.clear();
        }
    }
}

TEST(Damage, JoinsTheClosestWhenThereAreTooMany) {
    Damage damage;
    // Eight in a row, each further from the one before; the ninth is nearest to the last.
    double x = 0;
    for (int i = 0; i < 8; ++i) {
        damage.add({x, 0, 1, 1});
        x += 100 + 10 * i;
    }
    damage.add({x - 165, 0, 1, 1});
    EXPECT_EQ(damage.rects().size(), 8u);
    // The last stood at 910, the new one at 915: the two are now one.
    EXPECT_EQ(damage.rects().back(), gfx::Rect(910, 0, 6, 1));
}

}  // namespace

}  // namespace kalim::ui
