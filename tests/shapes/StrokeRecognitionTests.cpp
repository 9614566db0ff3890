#include "kalimkit/shapes/outline/StrokeRecognition.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <optional>
#include <vector>

namespace kalim::test {
namespace {

using Points = std::vector<gfx::Point>;
using Kind = RecognizedStroke::Kind;

// Straight from corner to corner in steps of about 7, with a hand that trembles by so much.
Points through(const Points& corners, double tremor) {
    Points points;
    for (std::size_t i = 1; i < corners.size(); ++i) {
        const gfx::Point way = corners[i] - corners[i - 1];
        const double steps = std::ceil(std::hypot(way.x, way.y) / 7);
        for (double step = 0; step < steps; ++step) {
            const double shake = tremor * std::sin(static_cast<double>(points.size()) * 1.7);
            points.push_back(corners[i - 1] + way * (step / steps) + gfx::Point{shake, -shake});
        }
    }
    points.push_back(corners.back());
    return points;
}

Points around(gfx::Point middle, double a, double b, double turns, double tremor) {
    Points points;
    for (double angle = 0.3; angle < 0.3 + turns * 6.2832; angle += 0.15) {
        const double away = 1 + tremor * std::sin(angle * 5);
        points.push_back(middle +
                         gfx::Point{a * away * std::cos(angle), b * away * std::sin(angle)});
    }
    return points;
}

TEST(StrokeRecognition, FindsWhatAStrokeIsCloseTo) {
    const struct {
        const char* name;
        Points points;
        std::optional<Kind> kind;
        // About where it begins and ends.
        gfx::Point start;
        gfx::Point end;
    } cases[] = {
        {"line", through({{10, 10}, {110, 70}}, 1.5), Kind::Line, {10, 10}, {110, 70}},
        {"nearly level line", through({{10, 10}, {150, 18}}, 1), Kind::Line, {10, 10}, {150, 10}},
        {"arrow",
         through({{20, 20}, {120, 60}, {100, 66}, {120, 60}, {106, 40}}, 1),
         Kind::Arrow,
         {20, 20},
         {120, 60}},
        {"circle", around({100, 100}, 40, 40, 1.02, 0.05), Kind::Ellipse, {60, 60}, {140, 140}},
        {"ellipse", around({100, 100}, 70, 30, 0.97, 0.04), Kind::Ellipse, {30, 130}, {170, 70}},
        {"rectangle",
         through({{20, 20}, {140, 22}, {139, 90}, {21, 88}, {22, 24}}, 1.5),
         Kind::Rectangle,
         {140, 90},
         {20, 20}},
        {"scribble", through({{20, 20}, {90, 30}, {25, 60}, {95, 80}, {40, 90}}, 1), {}, {}, {}},
        {"bow", around({100, 100}, 60, 60, 0.4, 0), {}, {}, {}},
        {"speck", through({{20, 20}, {26, 24}}, 0), {}, {}, {}},
        {"hook", through({{20, 20}, {120, 60}, {100, 66}}, 0), {}, {}, {}},
        {"nothing", {}, {}, {}, {}},
    };
    for (const auto& each : cases) {
        const auto found = recognizedStroke(each.points);
        ASSERT_EQ(found.has_value(), each.kind.has_value()) << each.name;
        if (!found) continue;
        EXPECT_EQ(found->kind, *each.kind) << each.name;
        EXPECT_LT(std::hypot(found->start.x - each.start.x, found->start.y - each.start.y), 6)
            << each.name;
        EXPECT_LT(std::hypot(found->end.x - each.end.x, found->end.y - each.end.y), 6) << each.name;
    }
}

}  // namespace
}  // namespace kalim::test
