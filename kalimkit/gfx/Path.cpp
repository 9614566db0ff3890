#include "kalimkit/gfx/Path.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace kalim::gfx {

namespace {

constexpr double quarterTurn = std::numbers::pi / 2;
constexpr double wholeTurn = std::numbers::pi * 2;

// The distance of a cubic's controls from its ends, relative to the radius, with which the cubic
// follows an arc of this angle most closely.
double controlDistance(double angle) {
    return 4.0 / 3.0 * std::tan(angle / 4);
}

// The signed angle from start to end: the end is first carried by whole turns to the side of the
// start that the direction asks for. More than one turn in excess would only repeat the circle.
double sweepAngle(double start, double end, bool clockwise) {
    const double ahead = clockwise ? start - end : end - start;
    double sweep = ahead >= 0 ? ahead : ahead + std::ceil(-ahead / wholeTurn) * wholeTurn;
    if (sweep > 2 * wholeTurn) sweep = wholeTurn + std::fmod(sweep, wholeTurn);
    return clockwise ? -sweep : sweep;
}

class BoundingBox {
public:
    void include(Point p) {
        if (_isEmpty) {
            _low = p;
            _high = p;
            _isEmpty = false;
        }
        _low = {std::min(_low.x, p.x), std::min(_low.y, p.y)};
        _high = {std::max(_high.x, p.x), std::max(_high.y, p.y)};
    }

    void includeQuad(Point p0, Point p1, Point p2) {
        include(p0);
        include(p2);
        const Point bend = p0 - p1 * 2 + p2;
        for (const double t : {(p0.x - p1.x) / bend.x, (p0.y - p1.y) / bend.y}) {
            if (!isInside(t)) continue;
            const double s = 1 - t;
            include(p0 * (s * s) + p1 * (2 * s * t) + p2 * (t * t));
        }
    }

    void includeCubic(Point p0, Point p1, Point p2, Point p3) {
        include(p0);
        include(p3);
        const auto includeExtrema = [&](double d0, double d1, double d2) {
            for (const double t : roots(d0 - 2 * d1 + d2, 2 * (d1 - d0), d0)) {
                if (!isInside(t)) continue;
                const double s = 1 - t;
                include(p0 * (s * s * s) + p1 * (3 * s * s * t) + p2 * (3 * s * t * t) +
                        p3 * (t * t * t));
            }
        };
        includeExtrema(p1.x - p0.x, p2.x - p1.x, p3.x - p2.x);
        includeExtrema(p1.y - p0.y, p2.y - p1.y, p3.y - p2.y);
    }

    bool isEmpty() const { return _isEmpty; }
    Rect rect() const { return Rect::spanning(_low, _high); }

private:
    // False for the NaN and infinity that a curve without an extremum yields.
    static bool isInside(double t) { return t > 0 && t < 1; }

    struct Roots {
        double values[2];
        const double* begin() const { return values; }
        const double* end() const { return values + 2; }
    };

    // The solutions of a t² + b t + c = 0 in the form that loses no digits when a is small; NaN or
    // infinite where there are fewer than two.
    static Roots roots(double a, double b, double c) {
        const double q = -0.5 * (b + std::copysign(std::sqrt(b * b - 4 * a * c), b));
        return {{q / a, c / q}};
    }

    Point _low;
    Point _high;
    bool _isEmpty = true;
};

}  // namespace

void Path::moveTo(Point p) {
    _commands.push_back(PathCommand::Move);
    _points.push_back(p);
    _current = p;
    _subpathStart = p;
}

void Path::lineTo(Point p) {
    if (isEmpty()) return moveTo(p);
    _commands.push_back(PathCommand::Line);
    _points.push_back(p);
    _current = p;
}

void Path::quadTo(Point control, Point end) {
    startAt(control);
    _commands.push_back(PathCommand::Quad);
    _points.insert(_points.end(), {control, end});
    _current = end;
}

void Path::cubicTo(Point control1, Point control2, Point end) {
    startAt(control1);
    _commands.push_back(PathCommand::Cubic);
    _points.insert(_points.end(), {control1, control2, end});
    _current = end;
}

void Path::close() {
    if (isEmpty() || _commands.back() == PathCommand::Close) return;
    _commands.push_back(PathCommand::Close);
    _current = _subpathStart;
}

void Path::addRect(const Rect& rect) {
    using enum PathCommand;
    const Point start = rect.origin;
    const Point end{start.x + rect.size.width, start.y + rect.size.height};
    _commands.insert(_commands.end(), {Move, Line, Line, Line, Close});
    _points.insert(_points.end(), {start, {end.x, start.y}, end, {start.x, end.y}});
    _current = start;
    _subpathStart = start;
}

void Path::addEllipse(const Rect& rect) {
    const Point center = rect.center();
    const double rx = rect.size.width / 2;
    const double ry = rect.size.height / 2;
    const double k = controlDistance(quarterTurn);
    const auto at = [&](double x, double y) { return Point{center.x + x * rx, center.y + y * ry}; };
    moveTo(at(1, 0));
    cubicTo(at(1, k), at(k, 1), at(0, 1));
    cubicTo(at(-k, 1), at(-1, k), at(-1, 0));
    cubicTo(at(-1, -k), at(-k, -1), at(0, -1));
    cubicTo(at(k, -1), at(1, -k), at(1, 0));
    close();
}

void Path::addArc(Point center, double radius, double startAngle, double endAngle, bool clockwise) {
    if (!std::isfinite(radius) || !std::isfinite(startAngle) || !std::isfinite(endAngle)) return;
    if (radius <= 0) return lineTo(center);
    const auto at = [&](double angle) {
        return center + Point{std::cos(angle), std::sin(angle)} * radius;
    };
    lineTo(at(startAngle));
    const double sweep = sweepAngle(startAngle, endAngle, clockwise);
    // The tolerance keeps a sweep of whole quarters from being cut once more by a rounding error.
    const int pieces = static_cast<int>(std::ceil(std::abs(sweep) / quarterTurn - 1e-9));
    if (pieces <= 0) return;
    const double step = sweep / pieces;
    const double reach = radius * controlDistance(step);
    for (int i = 0; i < pieces; ++i) {
        const double from = startAngle + step * i;
        const double to = startAngle + step * (i + 1);
        cubicTo(at(from) + Point{-std::sin(from), std::cos(from)} * reach,
                at(to) - Point{-std::sin(to), std::cos(to)} * reach, at(to));
    }
}

void Path::addPath(const Path& other) {
    if (other.isEmpty()) return;
    if (&other == this) return addPath(Path(other));
    _commands.insert(_commands.end(), other._commands.begin(), other._commands.end());
    _points.insert(_points.end(), other._points.begin(), other._points.end());
    _current = other._current;
    _subpathStart = other._subpathStart;
}

Rect Path::boundingBox() const {
    BoundingBox box;
    Point current;
    Point subpathStart;
    const Point* next = _points.data();
    for (const PathCommand command : _commands) {
        switch (command) {
            case PathCommand::Move:
                subpathStart = next[0];
                current = *next++;
                continue;
            case PathCommand::Line:
                box.include(current);
                box.include(next[0]);
                current = *next++;
                continue;
            case PathCommand::Quad:
                box.includeQuad(current, next[0], next[1]);
                current = next[1];
                next += 2;
                continue;
            case PathCommand::Cubic:
                box.includeCubic(current, next[0], next[1], next[2]);
                current = next[2];
                next += 3;
                continue;
            case PathCommand::Close:
                box.include(current);
                current = subpathStart;
                continue;
        }
    }
    if (box.isEmpty() && !isEmpty()) box.include(_current);
    return box.isEmpty() ? Rect{} : box.rect();
}

Rect Path::pointBounds() const {
    if (_points.empty()) return {};
    Point low = _points.front();
    Point high = low;
    for (const Point p : _points) {
        low = {std::min(low.x, p.x), std::min(low.y, p.y)};
        high = {std::max(high.x, p.x), std::max(high.y, p.y)};
    }
    return Rect::spanning(low, high);
}

Path Path::transformed(const AffineTransform& transform) const {
    Path result = *this;
    for (Point& point : result._points)
        point = transform.apply(point);
    result._current = transform.apply(_current);
    result._subpathStart = transform.apply(_subpathStart);
    return result;
}

void Path::startAt(Point p) {
    if (isEmpty()) moveTo(p);
}

}  // namespace kalim::gfx
