#include "kalimkit/shapes/outline/StrokeRecognition.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <span>

#include "kalimkit/gfx/Rect.h"
#include "kalimkit/shapes/outline/StraightStroke.h"

namespace kalim {

namespace {

using Points = std::vector<gfx::Point>;
using Kind = RecognizedStroke::Kind;

constexpr std::size_t spreadCount = 64;
constexpr double shortestStroke = 24;
// Shares of the chord, of the shaft, of the stroke's length and of half a side.
constexpr double largestStray = 0.06;
constexpr double longestBarb = 0.5;
constexpr double leastBarb = 0.05;
constexpr double largestGap = 0.2;
constexpr double largestDeviation = 0.09;
constexpr double flattest = 0.12;
constexpr double nearlySquare = 0.12;

double distance(gfx::Point a, gfx::Point b) {
    return std::hypot(a.x - b.x, a.y - b.y);
}

double lengthOf(const Points& points) {
    double length = 0;
    for (std::size_t i = 1; i < points.size(); ++i)
        length += distance(points[i - 1], points[i]);
    return length;
}

// As many points at even distances along the stroke; `length` is above 0.
Points spread(const Points& points, double length) {
    const double step = length / (spreadCount - 1);
    Points even{points.front()};
    double gone = 0;
    for (std::size_t i = 1; i < points.size(); ++i) {
        const double piece = distance(points[i - 1], points[i]);
        while (even.size() < spreadCount &&
               gone + piece >= step * static_cast<double>(even.size())) {
            const double share = (step * static_cast<double>(even.size()) - gone) / piece;
            even.push_back(points[i - 1] + (points[i] - points[i - 1]) * share);
        }
        gone += piece;
    }
    even.resize(spreadCount, points.back());
    return even;
}

// Along and across the line from a point through another, both signed.
struct Direction {
    Direction(gfx::Point from, gfx::Point to)
        : origin(from), length(distance(from, to)), unit((to - from) * (1 / length)) {}

    double along(gfx::Point p) const {
        return (p.x - origin.x) * unit.x + (p.y - origin.y) * unit.y;
    }
    double across(gfx::Point p) const {
        return (p.y - origin.y) * unit.x - (p.x - origin.x) * unit.y;
    }

    gfx::Point origin;
    double length;
    gfx::Point unit;
};

bool isStraight(std::span<const gfx::Point> points) {
    const Direction chord(points.front(), points.back());
    if (!(chord.length > 0)) return false;
    return std::ranges::all_of(points, [&](gfx::Point p) {
        const double along = chord.along(p);
        const double stray = largestStray * chord.length;
        return std::abs(chord.across(p)) <= stray && along >= -stray &&
               along <= chord.length + stray;
    });
}

std::optional<RecognizedStroke> lineOf(const Points& points, double length) {
    const bool isDirect = distance(points.front(), points.back()) >= 0.9 * length;
    if (!isDirect || !isStraight(points)) return std::nullopt;
    return RecognizedStroke{Kind::Line, points.front(), straightEnd(points.front(), points.back())};
}

// The tip is where the stroke is farthest from its start, for the first time: barbs lead back
// there. Both follow in one go.
std::optional<RecognizedStroke> arrowOf(const Points& points) {
    const auto away = [&](gfx::Point p) { return distance(points.front(), p); };
    const double farthest = away(*std::ranges::max_element(points, {}, away));
    auto tip =
        std::ranges::find_if(points, [&](gfx::Point p) { return away(p) >= 0.97 * farthest; });
    while (std::next(tip) != points.end() && away(*std::next(tip)) > away(*tip))
        ++tip;
    const std::span<const gfx::Point> shaft(points.begin(), tip + 1);
    const std::span<const gfx::Point> head(tip, points.end());
    if (shaft.size() < spreadCount / 3 || head.size() < 4 || !isStraight(shaft))
        return std::nullopt;
    const Direction way(points.front(), *tip);
    double left = 0;
    double right = 0;
    for (const gfx::Point& p : head) {
        if (distance(p, *tip) > longestBarb * way.length) return std::nullopt;
        left = std::min(left, way.across(p));
        right = std::max(right, way.across(p));
    }
    if (std::min(-left, right) < leastBarb * way.length) return std::nullopt;
    return RecognizedStroke{Kind::Arrow, points.front(), straightEnd(points.front(), *tip)};
}

gfx::Rect boundsOf(const Points& points) {
    gfx::Rect bounds(points.front(), {});
    for (const gfx::Point& p : points)
        bounds = bounds.unionWith({p, {}});
    return bounds;
}

// About the same middle.
gfx::Rect squared(const gfx::Rect& box) {
    const double longer = std::max(box.size.width, box.size.height);
    if (std::abs(box.size.width - box.size.height) > nearlySquare * longer) return box;
    const double side = (box.size.width + box.size.height) / 2;
    return {box.center().x - side / 2, box.center().y - side / 2, side, side};
}

std::optional<RecognizedStroke> boxOf(const Points& points, double length) {
    const gfx::Rect bounds = boundsOf(points);
    const double a = bounds.size.width / 2;
    const double b = bounds.size.height / 2;
    const bool isClosed = distance(points.front(), points.back()) <= largestGap * length;
    if (!isClosed || std::min(a, b) < flattest * std::max(a, b)) return std::nullopt;
    double fromEllipse = 0;
    double fromBox = 0;
    for (const gfx::Point& p : points) {
        const double u = std::abs(p.x - bounds.center().x) / a;
        const double v = std::abs(p.y - bounds.center().y) / b;
        fromEllipse += std::abs(std::hypot(u, v) - 1) / static_cast<double>(points.size());
        fromBox += std::abs(std::max(u, v) - 1) / static_cast<double>(points.size());
    }
    if (std::min(fromEllipse, fromBox) > largestDeviation) return std::nullopt;
    const gfx::Rect box = squared(bounds);
    const bool endsLeft = points.back().x < box.center().x;
    const bool endsUp = points.back().y < box.center().y;
    return RecognizedStroke{fromEllipse <= fromBox ? Kind::Ellipse : Kind::Rectangle,
                            {endsLeft ? box.maxX() : box.minX(), endsUp ? box.maxY() : box.minY()},
                            {endsLeft ? box.minX() : box.maxX(), endsUp ? box.minY() : box.maxY()}};
}

}  // namespace

std::optional<RecognizedStroke> recognizedStroke(const std::vector<gfx::Point>& points) {
    if (points.size() < 2) return std::nullopt;
    const double length = lengthOf(points);
    if (!(length >= shortestStroke)) return std::nullopt;
    const Points even = spread(points, length);
    if (const auto line = lineOf(even, length)) return line;
    if (const auto arrow = arrowOf(even)) return arrow;
    return boxOf(even, length);
}

}  // namespace kalim
