#include "kalimkit/shapes/outline/PenInk.h"

#include <algorithm>
#include <cmath>

#include "kalimkit/tool/QVGeometry.h"

namespace kalim {

namespace {

// Of the width, at no pressure at all.
constexpr double leastShare = 0.15;
// How much of what is left a pen that lies flat makes up for.
constexpr double tiltShare = 0.6;
// A chord may leave its curve so far, canvas points.
constexpr double flatness = 0.02;
constexpr int mostPieces = 32;

gfx::Point at(const SmoothedCurve& curve, double t) {
    const double u = 1 - t;
    return curve.start * (u * u * u) + curve.control1 * (3 * u * u * t) +
           curve.control2 * (3 * u * t * t) + curve.end * (t * t * t);
}

int piecesOf(const SmoothedCurve& curve) {
    const gfx::Point bend1 = curve.start - curve.control1 * 2 + curve.control2;
    const gfx::Point bend2 = curve.control1 - curve.control2 * 2 + curve.end;
    const double bend = std::max(std::hypot(bend1.x, bend1.y), std::hypot(bend2.x, bend2.y));
    return std::clamp(static_cast<int>(std::ceil(std::sqrt(0.75 * bend / flatness))), 1,
                      mostPieces);
}

void addDisc(gfx::Path& path, gfx::Point middle, double radius) {
    path.addEllipse({middle.x - radius, middle.y - radius, 2 * radius, 2 * radius});
}

// What two discs have between them: their outer tangents.
void addBetween(gfx::Path& path, gfx::Point a, double radiusA, gfx::Point b, double radiusB) {
    const double distance = QVPointDistance(a, b);
    if (distance <= std::abs(radiusA - radiusB)) return;
    const gfx::Point along = (b - a) * (1 / distance);
    const double share = (radiusA - radiusB) / distance;
    const double across = std::sqrt(1 - share * share);
    const gfx::Point left{along.x * share - along.y * across, along.y * share + along.x * across};
    const gfx::Point right{along.x * share + along.y * across, along.y * share - along.x * across};
    path.moveTo(a + left * radiusA);
    path.lineTo(a + right * radiusA);
    path.lineTo(b + right * radiusB);
    path.lineTo(b + left * radiusB);
    path.close();
}

}  // namespace

double inkShare(PenTouch touch) {
    const double pressed = leastShare + (1 - leastShare) * std::clamp(touch.x, 0.0, 1.0);
    const double leaning = std::clamp(touch.y / 90, 0.0, 1.0);
    return pressed + (1 - pressed) * tiltShare * leaning * leaning;
}

void addInk(gfx::Path& path, const SmoothedCurve& curve, double startWidth, double endWidth) {
    const int pieces = piecesOf(curve);
    gfx::Point before = curve.start;
    double radiusBefore = startWidth / 2;
    addDisc(path, before, radiusBefore);
    for (int piece = 1; piece <= pieces; ++piece) {
        const double t = static_cast<double>(piece) / pieces;
        const gfx::Point next = at(curve, t);
        const double radius = (startWidth + (endWidth - startWidth) * t) / 2;
        addBetween(path, before, radiusBefore, next, radius);
        addDisc(path, next, radius);
        before = next;
        radiusBefore = radius;
    }
}

}  // namespace kalim
