#include "kalimkit/shapes/outline/Dashes.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace kalim {

namespace {

using Points = std::vector<gfx::Point>;

// What a curve is cut into is about so long, canvas points.
constexpr double pieceLength = 3;
constexpr double mostPieces = 400;
constexpr double mostDashes = 5000;
// Points that are nearer than this are one.
constexpr double samePlace = 1e-6;
// The cosine of the turn from which on an outline has a corner.
constexpr double cornerCosine = 0.87;
// A backend may leave out what has no length; the pen's round end makes a dot of it.
constexpr double dotLength = 0.02;

double distance(gfx::Point a, gfx::Point b) {
    return std::hypot(b.x - a.x, b.y - a.y);
}

gfx::Point between(gfx::Point a, gfx::Point b, double share) {
    return a + (b - a) * share;
}

gfx::Point onCurve(const Points& controls, double share) {
    Points level = controls;
    for (std::size_t left = level.size() - 1; left > 0; --left) {
        for (std::size_t i = 0; i < left; ++i)
            level[i] = between(level[i], level[i + 1], share);
    }
    return level.front();
}

// The lines of a path as polygons, each with its points from start to end.
class Polygons {
public:
    explicit Polygons(const gfx::Path& path) {
        std::size_t next = 0;
        for (const gfx::PathCommand command : path.commands()) {
            switch (command) {
                case gfx::PathCommand::Move:
                    moveTo(path.points()[next++]);
                    break;
                case gfx::PathCommand::Line:
                    lineTo(path.points()[next++]);
                    break;
                case gfx::PathCommand::Quad:
                    curveTo({_lines.back().back(), path.points()[next], path.points()[next + 1]});
                    next += 2;
                    break;
                case gfx::PathCommand::Cubic:
                    curveTo({_lines.back().back(), path.points()[next], path.points()[next + 1],
                             path.points()[next + 2]});
                    next += 3;
                    break;
                case gfx::PathCommand::Close:
                    lineTo(_lines.back().front());
                    break;
            }
        }
    }
    const std::vector<Points>& lines() const { return _lines; }

private:
    void moveTo(gfx::Point p) {
        if (_lines.empty() || distance(_lines.back().back(), p) > samePlace) _lines.push_back({p});
    }
    void lineTo(gfx::Point p) {
        if (distance(_lines.back().back(), p) > samePlace) _lines.back().push_back(p);
    }
    void curveTo(const Points& controls) {
        double length = 0;
        for (std::size_t i = 1; i < controls.size(); ++i)
            length += distance(controls[i - 1], controls[i]);
        const double pieces = std::clamp(std::ceil(length / pieceLength), 1.0, mostPieces);
        for (double piece = 1; piece < pieces; ++piece)
            lineTo(onCurve(controls, piece / pieces));
        lineTo(controls.back());
    }

    std::vector<Points> _lines;
};

bool isClosed(const Points& line) {
    return line.size() > 3 && distance(line.front(), line.back()) <= samePlace;
}

bool isCorner(gfx::Point before, gfx::Point corner, gfx::Point after) {
    const gfx::Point in = corner - before;
    const gfx::Point out = after - corner;
    const double lengths = std::hypot(in.x, in.y) * std::hypot(out.x, out.y);
    return in.x * out.x + in.y * out.y < cornerCosine * lengths;
}

// A closed outline from corner to corner; one without corners is one side, from its start on.
std::vector<Points> sidesOf(const Points& outline) {
    const std::size_t count = outline.size() - 1;
    const auto at = [&](std::size_t i) { return outline[i % count]; };
    std::vector<std::size_t> corners;
    for (std::size_t i = 0; i < count; ++i) {
        if (isCorner(at(i + count - 1), at(i), at(i + 1))) corners.push_back(i);
    }
    if (corners.empty()) return {outline};
    std::vector<Points> sides;
    corners.push_back(corners.front() + count);
    for (std::size_t side = 1; side < corners.size(); ++side) {
        Points& points = sides.emplace_back();
        for (std::size_t i = corners[side - 1]; i <= corners[side]; ++i)
            points.push_back(at(i));
    }
    return sides;
}

double lengthOf(const Points& line) {
    double length = 0;
    for (std::size_t i = 1; i < line.size(); ++i)
        length += distance(line[i - 1], line[i]);
    return length;
}

// How the dashes of a line follow each other: one each period from `first` on.
struct Rhythm {
    double first = 0;
    double period = 1;
    double on = 1;
};

// A line that is too short for two dashes, or would fall into too many, is one.
std::vector<DashSpan> spansOf(double length, const Dashes& dashes, DashFit fit, bool isAround) {
    const double period = dashes.on + dashes.off;
    // Around an outline each side begins and ends in the middle of a dash, in which it meets the
    // next one; an open line begins and ends with a whole one.
    const double lastDash = isAround ? 0 : dashes.on;
    const double count = std::round((length - lastDash) / period);
    if (!(count >= 1) || count > mostDashes) return {{0, length}};
    Rhythm rhythm{0, period, dashes.on};
    if (fit == DashFit::ToEnds)
        rhythm = {isAround ? -dashes.on / 2 : 0, (length - lastDash) / count, dashes.on};
    std::vector<DashSpan> spans;
    for (double dash = 0; rhythm.first + dash * rhythm.period < length - samePlace; ++dash) {
        const double begin = rhythm.first + dash * rhythm.period;
        const double from = std::clamp(begin, 0.0, std::max(length - dotLength, 0.0));
        spans.push_back({from, std::min(std::max(begin + rhythm.on, from + dotLength), length)});
    }
    return spans;
}

void addDashes(gfx::Path& path, const Points& line, const std::vector<DashSpan>& spans) {
    double passed = 0;
    std::size_t next = 1;
    const auto goTo = [&](double place, bool isInked) {
        while (next + 1 < line.size() && passed + distance(line[next - 1], line[next]) < place) {
            if (isInked) path.lineTo(line[next]);
            passed += distance(line[next - 1], line[next]);
            ++next;
        }
        const double side = distance(line[next - 1], line[next]);
        return between(line[next - 1], line[next], std::clamp((place - passed) / side, 0.0, 1.0));
    };
    for (const DashSpan& span : spans) {
        path.moveTo(goTo(span.from, false));
        path.lineTo(goTo(span.to, true));
    }
}

}  // namespace

std::optional<Dashes> dashesNamed(std::string_view name, double lineWidth) {
    if (name == "dashed") return Dashes{1.5 * lineWidth + 4, 1.9 * lineWidth + 4};
    if (name == "dotted") return Dashes{0, 1.9 * lineWidth + 2};
    return std::nullopt;
}

std::vector<DashSpan> dashSpans(double length, const Dashes& dashes) {
    return spansOf(length, dashes, DashFit::ToEnds, false);
}

gfx::Path dashedPath(const gfx::Path& path, const Dashes& dashes, DashFit fit) {
    gfx::Path dashed;
    const Polygons polygons(path);
    for (const Points& line : polygons.lines()) {
        const bool isAround = fit == DashFit::ToEnds && isClosed(line);
        const auto sides = isAround ? sidesOf(line) : std::vector<Points>{line};
        for (const Points& side : sides) {
            if (side.size() > 1) {
                addDashes(dashed, side, spansOf(lengthOf(side), dashes, fit, isAround));
            } else {
                dashed.moveTo(side.front());
                dashed.lineTo(side.front() + gfx::Point{dotLength, 0});
            }
        }
    }
    return dashed;
}

}  // namespace kalim
