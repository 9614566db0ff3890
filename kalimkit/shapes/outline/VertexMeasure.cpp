#include "kalimkit/shapes/outline/VertexMeasure.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>

#include "kalimkit/tool/QVGeometry.h"

namespace kalim {

namespace {

constexpr int curveSteps = 10;

}  // namespace

double lengthOfVertices(std::span<const gfx::Point> vertices) {
    double length = 0;
    for (std::size_t i = 1; i < vertices.size(); ++i)
        length += QVPointDistance(vertices[i - 1], vertices[i]);
    return length;
}

double signedAreaOfVertices(std::span<const gfx::Point> vertices) {
    double sum = 0;
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        const gfx::Point p = vertices[i];
        const gfx::Point next = vertices[(i + 1) % vertices.size()];
        sum += p.x * next.y - p.y * next.x;
    }
    return sum / 2;
}

float directionOf(gfx::Point vertex, gfx::Point p) {
    return std::atan2(static_cast<float>(p.y - vertex.y), static_cast<float>(p.x - vertex.x));
}

double degreesBetween(gfx::Point p0, gfx::Point vertex, gfx::Point p2) {
    const float turn = directionOf(vertex, p2) - directionOf(vertex, p0);
    const double degrees = static_cast<double>(turn) / std::numbers::pi * 180;
    return degrees < 0 ? degrees + 360 : degrees;
}

float lengthOfQuadCurve(gfx::Point start, gfx::Point control, gfx::Point end) {
    // Parameter and sum are kept in single precision on purpose.
    float length = 0;
    float t = 0;
    gfx::Point previous = start;
    for (int step = 0; step < curveSteps; ++step) {
        t = std::min(t + 0.1F, 1.0F);
        const float s = 1 - t;
        const gfx::Point next = start * (s * s) + control * (2 * s * t) + end * (t * t);
        length += static_cast<float>(QVPointDistance(previous, next));
        previous = next;
    }
    return length;
}

}  // namespace kalim
