#include "kalimkit/gfx/PathTrim.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <vector>

namespace kalim::gfx {

namespace {

// Of the polygon that a curve's length is measured on.
constexpr int stepsPerCurve = 64;

double distance(Point a, Point b) {
    return std::hypot(b.x - a.x, b.y - a.y);
}

Point between(Point a, Point b, double t) {
    return a + (b - a) * t;
}

// Holds one line or curve as a cubic.
struct Piece {
    std::array<Point, 4> points;
    bool isLine = false;
    double length = 0;

    Point at(double t) const {
        const double s = 1 - t;
        return points[0] * (s * s * s) + points[1] * (3 * s * s * t) + points[2] * (3 * s * t * t) +
               points[3] * (t * t * t);
    }
    // The parameter at which this much of the length has been passed.
    double parameterAt(double passed) const {
        if (passed <= 0) return 0;
        if (passed >= length) return 1;
        if (isLine) return passed / length;
        double sum = 0;
        for (int step = 1; step <= stepsPerCurve; ++step) {
            const double chord =
                distance(at(double(step - 1) / stepsPerCurve), at(double(step) / stepsPerCurve));
            if (sum + chord >= passed) return (step - 1 + (passed - sum) / chord) / stepsPerCurve;
            sum += chord;
        }
        return 1;
    }
    double measured() const {
        if (isLine) return distance(points[0], points[3]);
        double sum = 0;
        for (int step = 1; step <= stepsPerCurve; ++step) {
            sum += distance(at(double(step - 1) / stepsPerCurve), at(double(step) / stepsPerCurve));
        }
        return sum;
    }
    // By de Casteljau's construction: what lies before, or after, the parameter.
    Piece split(double t, bool takesFirst) const {
        const Point a = between(points[0], points[1], t);
        const Point b = between(points[1], points[2], t);
        const Point c = between(points[2], points[3], t);
        const Point ab = between(a, b, t);
        const Point bc = between(b, c, t);
        const Point middle = between(ab, bc, t);
        if (takesFirst) return {{points[0], a, ab, middle}, isLine};
        return {{middle, bc, c, points[3]}, isLine};
    }
    Piece part(double from, double to) const {
        const Piece first = to < 1 ? split(to, true) : *this;
        return from > 0 ? first.split(from / to, false) : first;
    }
};

Piece lineBetween(Point from, Point to) {
    return {{from, between(from, to, 1.0 / 3), between(from, to, 2.0 / 3), to}, true};
}

std::vector<Piece> piecesOf(const Path& path) {
    std::vector<Piece> pieces;
    Point current;
    Point start;
    const Point* next = path.points().data();
    for (const PathCommand command : path.commands()) {
        const Point from = current;
        switch (command) {
            case PathCommand::Move:
                start = current = *next++;
                continue;
            case PathCommand::Line:
                current = *next++;
                pieces.push_back(lineBetween(from, current));
                break;
            case PathCommand::Quad:
                // Raising the degree leaves the curve the same.
                current = next[1];
                pieces.push_back({{from, between(from, next[0], 2.0 / 3),
                                   between(current, next[0], 2.0 / 3), current}});
                next += 2;
                break;
            case PathCommand::Cubic:
                current = next[2];
                pieces.push_back({{from, next[0], next[1], current}});
                next += 3;
                break;
            case PathCommand::Close:
                current = start;
                pieces.push_back(lineBetween(from, current));
                break;
        }
        pieces.back().length = pieces.back().measured();
    }
    return pieces;
}

}  // namespace

Path trimPath(const Path& path, double start, double end) {
    Path trimmed;
    const double first = std::clamp(start, 0.0, 1.0);
    const double last = std::clamp(end, 0.0, 1.0);
    if (!(first < last)) return trimmed;
    const std::vector<Piece> pieces = piecesOf(path);
    const double total =
        std::accumulate(pieces.begin(), pieces.end(), 0.0,
                        [](double sum, const Piece& piece) { return sum + piece.length; });
    double passed = 0;
    for (const Piece& piece : pieces) {
        const double from = piece.parameterAt(first * total - passed);
        const double to = piece.parameterAt(last * total - passed);
        passed += piece.length;
        if (piece.length == 0 || from >= to) continue;
        const Piece part = piece.part(from, to);
        const auto& points = part.points;
        if (trimmed.isEmpty() || trimmed.currentPoint() != points[0]) trimmed.moveTo(points[0]);
        if (part.isLine) {
            trimmed.lineTo(points[3]);
        } else {
            trimmed.cubicTo(points[1], points[2], points[3]);
        }
    }
    return trimmed;
}

}  // namespace kalim::gfx
