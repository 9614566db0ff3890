#include "kalimkit/canvas/Snapping.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace kalim {

namespace {

// Places that differ by less are the same.
constexpr double tolerance = 0.001;

gfx::Rect transposed(const gfx::Rect& rect) {
    return {rect.minY(), rect.minX(), rect.size.height, rect.size.width};
}

gfx::Point turnedBack(gfx::Point p, bool isTransposed) {
    return isTransposed ? gfx::Point{p.y, p.x} : p;
}

std::array<double, 3> placesOf(const gfx::Rect& box) {
    return {box.minX(), box.midX(), box.maxX()};
}

bool areSame(double a, double b) {
    return std::abs(a - b) < tolerance;
}

bool isNearer(const std::optional<double>& offset, const std::optional<double>& other) {
    return offset && (!other || std::abs(*offset) < std::abs(*other) - tolerance);
}

bool overlapDown(const gfx::Rect& a, const gfx::Rect& b) {
    return a.minY() < b.maxY() && b.minY() < a.maxY();
}

}  // namespace

SnapTargets::SnapTargets(const std::vector<gfx::Rect>& boxes,
                         const std::optional<gfx::Rect>& picture) {
    _across.boxes = boxes;
    if (picture) _across.boxes.push_back(*picture);
    for (const gfx::Rect& box : _across.boxes)
        _down.boxes.push_back(transposed(box));
    for (Axis* const axis : {&_across, &_down}) {
        axis->hasPicture = picture.has_value();
        axis->sortLines();
    }
}

void SnapTargets::Axis::sortLines() {
    for (std::size_t box = 0; box < boxes.size(); ++box) {
        edges.push_back({boxes[box].minX(), box});
        edges.push_back({boxes[box].maxX(), box});
        middles.push_back({boxes[box].midX(), box});
    }
    lines = edges;
    lines.insert(lines.end(), middles.begin(), middles.end());
    for (std::vector<Line>* const sorted : {&lines, &edges, &middles})
        std::ranges::sort(*sorted, {}, &Line::place);
}

// How far it is to the nearest line, if one is within reach.
std::optional<double> SnapTargets::Axis::nearest(const std::vector<Line>& lines, double place,
                                                 double reach) {
    const auto above = std::ranges::lower_bound(lines, place, {}, &Line::place);
    std::optional<double> offset;
    if (above != lines.end()) offset = above->place - place;
    if (above != lines.begin()) {
        const std::optional<double> below = std::prev(above)->place - place;
        if (isNearer(below, offset)) offset = below;
    }
    return offset && std::abs(*offset) <= reach ? offset : std::nullopt;
}

std::optional<double> SnapTargets::Axis::offsetOf(const gfx::Rect& box, double reach) const {
    const std::optional<double> ofMiddles = nearest(middles, box.midX(), reach);
    std::optional<double> best = ofMiddles;
    // Where middles meet, no edge is meant to lie in a middle.
    const std::vector<Line>& forEdges = ofMiddles ? edges : lines;
    for (const auto& [place, others] :
         {std::pair(box.minX(), &forEdges), std::pair(box.maxX(), &forEdges),
          std::pair(box.midX(), ofMiddles ? &middles : &edges)}) {
        const std::optional<double> offset = nearest(*others, place, reach);
        if (isNearer(offset, best)) best = offset;
    }
    return best;
}

// Those that stand in the same row, whose middles say on which side.
SnapTargets::Axis::Neighbours SnapTargets::Axis::neighboursOf(const gfx::Rect& box) const {
    Neighbours beside;
    const std::size_t count = boxes.size() - (hasPicture ? 1 : 0);
    const auto find = [&](const gfx::Rect& from, bool isBefore) {
        const gfx::Rect* found = nullptr;
        for (std::size_t i = 0; i < count; ++i) {
            const gfx::Rect& each = boxes[i];
            if (&each == &from || !overlapDown(each, box)) continue;
            const bool isOnSide = isBefore
                                      ? each.midX() < from.midX() && each.maxX() <= from.midX()
                                      : each.midX() > from.midX() && each.minX() >= from.midX();
            const bool isNext =
                !found || (isBefore ? each.maxX() > found->maxX() : each.minX() < found->minX());
            if (isOnSide && isNext) found = &each;
        }
        return found;
    };
    beside.before = find(box, true);
    beside.after = find(box, false);
    if (beside.before) beside.beforeThat = find(*beside.before, true);
    if (beside.after) beside.afterThat = find(*beside.after, false);
    return beside;
}

std::optional<double> SnapTargets::Axis::gapOffset(const gfx::Rect& box, double reach) const {
    const Neighbours beside = neighboursOf(box);
    std::optional<double> best;
    const auto offer = [&](double minX, double gap) {
        const std::optional<double> offset = minX - box.minX();
        if (gap >= 0 && std::abs(*offset) <= reach && isNearer(offset, best)) best = offset;
    };
    const double width = box.size.width;
    if (beside.before && beside.after) {
        const double gap = (beside.after->minX() - beside.before->maxX() - width) / 2;
        offer(beside.before->maxX() + gap, gap);
    }
    if (beside.beforeThat) {
        const double gap = beside.before->minX() - beside.beforeThat->maxX();
        offer(beside.before->maxX() + gap, gap);
    }
    if (beside.afterThat) {
        const double gap = beside.afterThat->minX() - beside.after->maxX();
        offer(beside.after->minX() - gap - width, gap);
    }
    return best;
}

// ---- guides

void SnapTargets::Axis::addGuides(const gfx::Rect& box, bool isTransposed, bool hasGaps,
                                  std::vector<SnapGuide>& guides) const {
    for (const double place : placesOf(box)) {
        const auto first = std::ranges::lower_bound(lines, place - tolerance, {}, &Line::place);
        double low = box.minY();
        double high = box.maxY();
        auto line = first;
        for (; line != lines.end() && areSame(line->place, place); ++line) {
            low = std::min(low, boxes[line->box].minY());
            high = std::max(high, boxes[line->box].maxY());
        }
        if (line == first) continue;
        guides.push_back(
            {turnedBack({place, low}, isTransposed), turnedBack({place, high}, isTransposed)});
    }
    if (hasGaps) addGapGuides(box, isTransposed, guides);
}

void SnapTargets::Axis::addGapGuides(const gfx::Rect& box, bool isTransposed,
                                     std::vector<SnapGuide>& guides) const {
    const Neighbours beside = neighboursOf(box);
    const auto add = [&](const gfx::Rect& left, const gfx::Rect& right) {
        const double y =
            (std::max(left.minY(), right.minY()) + std::min(left.maxY(), right.maxY())) / 2;
        guides.push_back({turnedBack({left.maxX(), y}, isTransposed),
                          turnedBack({right.minX(), y}, isTransposed)});
    };
    const auto gapOf = [](const gfx::Rect& left, const gfx::Rect& right) {
        return right.minX() - left.maxX();
    };
    if (beside.before && beside.after &&
        areSame(gapOf(*beside.before, box), gapOf(box, *beside.after))) {
        add(*beside.before, box);
        add(box, *beside.after);
    }
    if (beside.beforeThat &&
        areSame(gapOf(*beside.beforeThat, *beside.before), gapOf(*beside.before, box))) {
        add(*beside.beforeThat, *beside.before);
        add(*beside.before, box);
    }
    if (beside.afterThat &&
        areSame(gapOf(box, *beside.after), gapOf(*beside.after, *beside.afterThat))) {
        add(box, *beside.after);
        add(*beside.after, *beside.afterThat);
    }
}

// ---- boxes

Snap SnapTargets::moved(const gfx::Rect& box, double reach) const {
    const auto offsetOn = [reach](const Axis& axis, const gfx::Rect& own) {
        const std::optional<double> offset = axis.offsetOf(own, reach);
        const std::optional<double> gap = axis.gapOffset(own, reach);
        return isNearer(gap, offset) ? gap : offset;
    };
    Snap snap;
    const auto across = offsetOn(_across, box);
    const auto down = offsetOn(_down, transposed(box));
    snap.offset = {across.value_or(0), down.value_or(0)};
    const gfx::Rect laid = box.offset(snap.offset);
    if (across) _across.addGuides(laid, false, true, snap.guides);
    if (down) _down.addGuides(transposed(laid), true, true, snap.guides);
    return snap;
}

Snap SnapTargets::resized(const gfx::Rect& box, int sideX, int sideY, double reach) const {
    const auto offsetOn = [reach](const Axis& axis, const gfx::Rect& own, int side) {
        if (side == 0) return std::optional<double>();
        return Axis::nearest(axis.lines, side < 0 ? own.minX() : own.maxX(), reach);
    };
    Snap snap;
    const auto across = offsetOn(_across, box, sideX);
    const auto down = offsetOn(_down, transposed(box), sideY);
    snap.offset = {across.value_or(0), down.value_or(0)};
    const gfx::Point low{sideX < 0 ? snap.offset.x : 0, sideY < 0 ? snap.offset.y : 0};
    const gfx::Point high{sideX > 0 ? snap.offset.x : 0, sideY > 0 ? snap.offset.y : 0};
    const gfx::Rect laid =
        gfx::Rect::spanning(box.origin + low, gfx::Point{box.maxX(), box.maxY()} + high);
    if (across) _across.addGuides(laid, false, false, snap.guides);
    if (down) _down.addGuides(transposed(laid), true, false, snap.guides);
    return snap;
}

}  // namespace kalim
