#include "kalimkit/shapes/outline/CurvedArrowOutline.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <functional>
#include <limits>
#include <numbers>
#include <vector>

namespace kalim {

namespace {

// Of half the head's width, where straight arrows have them, too: the head's length, and the place
// of the notch in which it meets the shaft.
constexpr double headLength = 2;
constexpr double notchLength = 1.741;
constexpr double notchHalfWidth = 0.411;
// A shaft that does not taper is so much finer than the notch.
constexpr double shaftShare = 0.7;
// Two heads take no more than this share of a short arrow.
constexpr double headsShare = 0.8;
constexpr std::size_t pieces = 96;
constexpr double quarter = std::numbers::pi / 2;

gfx::Point acrossFrom(gfx::Point direction) {
    return {-direction.y, direction.x};
}

gfx::Point unit(gfx::Point p) {
    const double length = std::hypot(p.x, p.y);
    return length > 0 ? p * (1 / length) : gfx::Point{1, 0};
}

double distance(gfx::Point a, gfx::Point b) {
    return std::hypot(b.x - a.x, b.y - a.y);
}

// The line that the arrow follows from its tip to its tail, measured along itself.
class Spine {
public:
    explicit Spine(const CurvedArrow& arrow) {
        const gfx::Point control{arrow.length / 2, 2 * arrow.bend * arrow.length};
        const gfx::Point tail{arrow.length, 0};
        for (std::size_t i = 0; i <= pieces; ++i) {
            const double t = static_cast<double>(i) / pieces;
            _points[i] = control * (2 * t * (1 - t)) + tail * (t * t);
            if (i > 0) _places[i] = _places[i - 1] + distance(_points[i - 1], _points[i]);
        }
    }

    double length() const { return _places.back(); }
    gfx::Point at(double place) const {
        const std::size_t i = pieceAt(place);
        const double side = _places[i + 1] - _places[i];
        const double share = side > 0 ? std::clamp((place - _places[i]) / side, 0.0, 1.0) : 0;
        return _points[i] + (_points[i + 1] - _points[i]) * share;
    }
    // Towards the tail.
    gfx::Point directionAt(double place) const {
        const double reach = length() / pieces;
        return unit(at(std::min(place + reach, length())) - at(std::max(place - reach, 0.0)));
    }
    // How far along it lies that many points from the tip, as the crow flies.
    double placeFromTip(double radius) const { return placeWhere(radius, _points.front(), false); }
    double placeFromTail(double radius) const { return placeWhere(radius, _points.back(), true); }
    const std::array<gfx::Point, pieces + 1>& points() const { return _points; }

private:
    std::size_t pieceAt(double place) const {
        const auto found = std::ranges::upper_bound(_places, place);
        const auto index = static_cast<std::size_t>(found - _places.begin());
        return std::clamp<std::size_t>(index, 1, pieces) - 1;
    }
    double placeWhere(double radius, gfx::Point end, bool fromTail) const {
        double place = 0;
        constexpr double steps = 400;
        for (double step = 0; step <= steps; ++step) {
            place = length() * (fromTail ? 1 - step / steps : step / steps);
            if (distance(at(place), end) >= radius) break;
        }
        return place;
    }

    std::array<gfx::Point, pieces + 1> _points;
    std::array<double, pieces + 1> _places{};
};

// A head whose axis leads from its tip to where it meets the shaft.
struct Head {
    gfx::Point tip;
    gfx::Point axis;
    double halfWidth = 0;

    // A point so far behind the tip and so far to its side, as shares of half the width.
    gfx::Point at(double behind, double aside) const {
        return tip + axis * (behind * halfWidth) + acrossFrom(axis) * (aside * halfWidth);
    }
};

class Outliner {
public:
    explicit Outliner(const CurvedArrow& arrow)
        : _arrow(arrow), _spine(arrow), _halfWidth(arrow.headHalfWidth) {
        const int heads = (arrow.hasHeadAtEnd ? 1 : 0) + (arrow.hasHeadAtStart ? 1 : 0);
        if (heads == 0) return;
        _halfWidth = std::min(_halfWidth, headsShare * _spine.length() / (heads * headLength));
        if (arrow.hasHeadAtEnd) _from = _spine.placeFromTip(notchLength * _halfWidth);
        if (arrow.hasHeadAtStart) _to = _spine.placeFromTail(notchLength * _halfWidth);
    }

    gfx::Path whole() {
        const bool tapers = _arrow.hasHeadAtEnd != _arrow.hasHeadAtStart;
        const double notch = notchHalfWidth * _halfWidth;
        const double tail = _arrow.tailWidth / 2;
        const double even = halfShaft();
        const double from = _arrow.hasHeadAtEnd ? notch : tail;
        const double to = _arrow.hasHeadAtStart ? notch : tail;
        double first = _from;
        double last = _to;
        // The round end of a tail that tapers off lies within the arrow.
        if (tapers && !_arrow.hasHeadAtEnd) first += tail;
        if (tapers && !_arrow.hasHeadAtStart) last -= tail;
        addRibbon(
            first, std::max(first, last),
            [&](double share) { return tapers ? from + (to - from) * share : even; }, true);
        return _path;
    }

    gfx::Path inDashes() {
        for (const bool isEnd : {true, false}) {
            if (isEnd ? _arrow.hasHeadAtEnd : _arrow.hasHeadAtStart) addHeadAlone(headAt(isEnd));
        }
        const double half = halfShaft();
        for (const DashSpan& dash : dashSpans(_to - _from, *_arrow.dashes))
            addRibbon(
                _from + dash.from, _from + dash.to, [half](double) { return half; }, false);
        return _path;
    }

    double halfShaft() const {
        const bool hasHead = _arrow.hasHeadAtEnd || _arrow.hasHeadAtStart;
        return hasHead ? shaftShare * notchHalfWidth * _halfWidth : _arrow.lineWidth / 2;
    }

private:
    Head headAt(bool isEnd) const {
        const double behind = isEnd ? _spine.placeFromTip(headLength * _halfWidth)
                                    : _spine.placeFromTail(headLength * _halfWidth);
        const gfx::Point tip = isEnd ? _spine.points().front() : _spine.points().back();
        return {tip, unit(_spine.at(behind) - tip), _halfWidth};
    }

    void addHeadAlone(const Head& head) {
        _path.moveTo(head.tip);
        _path.lineTo(head.at(headLength, -1));
        _path.lineTo(head.at(notchLength, -notchHalfWidth));
        _path.lineTo(head.at(notchLength, notchHalfWidth));
        _path.lineTo(head.at(headLength, 1));
        _path.close();
    }

    void addHead(const Head& head) {
        _path.lineTo(head.at(notchLength, notchHalfWidth));
        _path.lineTo(head.at(headLength, 1));
        _path.lineTo(head.tip);
        _path.lineTo(head.at(headLength, -1));
        _path.lineTo(head.at(notchLength, -notchHalfWidth));
    }

    // Along one side to the tail and back along the other one. All pieces go round the same way, so
    // that nothing is left out where they overlap.
    void addRibbon(double from, double to, const std::function<double(double)>& halfWidthAt,
                   bool hasHeads) {
        const int steps = to - from < 1 ? 1 : static_cast<int>(pieces);
        const auto place = [&](int step) { return from + (to - from) * step / steps; };
        const auto side = [&](int step, double sign) {
            const double share = static_cast<double>(step) / steps;
            return _spine.at(place(step)) +
                   acrossFrom(_spine.directionAt(place(step))) * (sign * halfWidthAt(share));
        };
        gfx::Path before;
        std::swap(before, _path);
        for (int step = 0; step <= steps; ++step)
            _path.lineTo(side(step, -1));
        if (hasHeads && _arrow.hasHeadAtStart) {
            addHead(headAt(false));
        } else {
            addCap(to, halfWidthAt(1), false);
        }
        for (int step = steps; step >= 0; --step)
            _path.lineTo(side(step, 1));
        if (hasHeads && _arrow.hasHeadAtEnd) {
            addHead(headAt(true));
        } else {
            addCap(from, halfWidthAt(0), true);
        }
        _path.close();
        before.addPath(_path);
        _path = before;
    }

    void addCap(double place, double radius, bool isTowardsTip) {
        const gfx::Point direction = _spine.directionAt(place);
        const double angle =
            std::atan2(direction.y, direction.x) + (isTowardsTip ? 2 * quarter : 0);
        _path.addArc(_spine.at(place), radius, angle - quarter, angle + quarter, false);
    }

    const CurvedArrow& _arrow;
    Spine _spine;
    // Where the shaft begins and ends, along the spine.
    double _from = 0;
    double _to = _spine.length();
    double _halfWidth;
    gfx::Path _path;
};

}  // namespace

double shaftWidth(const CurvedArrow& arrow) {
    return 2 * Outliner(arrow).halfShaft();
}

gfx::Path curvedArrowOutline(const CurvedArrow& arrow) {
    return arrow.dashes ? Outliner(arrow).inDashes() : Outliner(arrow).whole();
}

gfx::Point middleOf(const CurvedArrow& arrow) {
    return {arrow.length / 2, arrow.bend * arrow.length};
}

double distanceFrom(const CurvedArrow& arrow, gfx::Point p) {
    const Spine spine(arrow);
    double nearest = std::numeric_limits<double>::infinity();
    for (std::size_t i = 1; i < spine.points().size(); ++i) {
        const gfx::Point a = spine.points()[i - 1];
        const gfx::Point side = spine.points()[i] - a;
        const double square = side.x * side.x + side.y * side.y;
        const gfx::Point own = p - a;
        const double share =
            square > 0 ? std::clamp((own.x * side.x + own.y * side.y) / square, 0.0, 1.0) : 0;
        nearest = std::min(nearest, distance(p, a + side * share));
    }
    return nearest;
}

}  // namespace kalim
