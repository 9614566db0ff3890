#include "kalimkit/shapes/MDrawPolyline.h"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "kalimkit/shapes/MDrawMeasurementInfo.h"
#include "kalimkit/shapes/MeasureText.h"
#include "kalimkit/shapes/outline/VertexMeasure.h"
#include "kalimkit/tool/HandleReach.h"
#include "kalimkit/tool/QVGeometry.h"

namespace kalim {

namespace {

constexpr gfx::Color clear{0, 0, 0, 0};
constexpr ToolDetailRule detailRules[] = {{"points", ToolDetailRule::Type::Points}};
constexpr std::string_view pointsKey = "MDrawPolyline-points";

}  // namespace

std::shared_ptr<MDrawPolyline> MDrawPolyline::initWithStartPoint(gfx::Point start) {
    return makeWithVertex<MDrawPolyline>(start);
}

const ToolClass& MDrawPolyline::Class() {
    static const ToolClass toolClass{
        "MDrawPolyline",
        &MDrawTool::Class(),
        &MDrawPolyline::makeToolWithVertex<MDrawPolyline>,
        {.label = "{color}多边形", .beginning = ToolBeginning::Taps, .details = detailRules}};
    return toolClass;
}

void MDrawPolyline::init() {
    MDrawTool::init();
    _closePath = true;
}

void MDrawPolyline::drawMove(gfx::Point p) {
    _movePoint = p;
}

void MDrawPolyline::drawUp(gfx::Point p) {
    _movePoint = {};
    if (!isOnFirstVertex(p)) {
        _points.push_back(p);
    } else if (_points.size() >= 2) {
        finalize();
    }
}

void MDrawPolyline::drawThrough(std::span<const gfx::Point> points) {
    for (const gfx::Point p : points)
        drawUp(p);
}

bool MDrawPolyline::takeBackPoint() {
    if (finalized() || _points.size() < 2) return false;
    _points.pop_back();
    _movePoint = {};
    return true;
}

bool MDrawPolyline::completePoints() {
    _movePoint = {};
    if (!finalized() && _points.size() >= leastVertices()) finalize();
    return finalized();
}

gfx::Rect MDrawPolyline::frame() const {
    if (_points.empty()) return {};
    gfx::Point low = _points.front();
    gfx::Point high = low;
    for (const gfx::Point point : _points) {
        low = {std::min(low.x, point.x), std::min(low.y, point.y)};
        high = {std::max(high.x, point.x), std::max(high.y, point.y)};
    }
    // The narrowing is meant.
    const float width = static_cast<float>(high.x - low.x);
    const float height = static_cast<float>(high.y - low.y);
    return {low.x, low.y, width, height};
}

bool MDrawPolyline::hitOnHandle(gfx::Point p) {
    _moveHandleIndex = handleIndexAt(p);
    return _moveHandleIndex != NoVertex;
}

bool MDrawPolyline::testHitOnHandle(gfx::Point p) {
    return handleIndexAt(p) != NoVertex;
}

std::int32_t MDrawPolyline::handleIndexAt(gfx::Point p) const {
    if (_points.empty()) return NoVertex;
    const gfx::Rect box = frame();
    const auto vertex = std::ranges::find_if(_points, [&](gfx::Point handle) {
        return isPointOnHandle(p, handle) &&
               (!rules().forgiving || isWithinThirdsOfVertex(p, handle, box));
    });
    if (vertex != _points.end()) return static_cast<std::int32_t>(vertex - _points.begin());
    return box.contains(p) ? AllVertices : NoVertex;
}

void MDrawPolyline::moveByOffsetEndPoint(gfx::Point offset, gfx::Point) {
    if (_moveHandleIndex >= 0) {
        _points[static_cast<std::size_t>(_moveHandleIndex)] += offset;
    } else if (_moveHandleIndex == AllVertices) {
        for (gfx::Point& point : _points)
            point += offset;
    }
}

void MDrawPolyline::stopMoveHandle() {
    MDrawTool::stopMoveHandle();
    _moveHandleIndex = NoVertex;
}

void MDrawPolyline::mapPoints(const PointMap& map) {
    for (gfx::Point& point : _points)
        point = map(point);
}

void MDrawPolyline::turnBy(gfx::Point center, double angle) {
    const auto turn = gfx::AffineTransform::rotation(angle, center);
    mapPoints([&turn](gfx::Point p) { return turn.apply(p); });
}

void MDrawPolyline::drawContent(gfx::Context& context) {
    {
        gfx::GraphicsStateGuard guard(context);
        useToolColor(context);
        context.setLineWidth(lineWidth());
        context.beginPath();
        // The first line of a path starts it.
        for (const gfx::Point point : _points)
            context.lineTo(point);
        const bool hasBand = !finalized() && !_points.empty() && _movePoint != gfx::Point{};
        if (hasBand) context.lineTo(_movePoint);
        if (finalized() && _closePath) context.closePath();
        context.stroke();
    }
    if (finalized() && !selected()) return;
    for (const gfx::Point point : _points)
        drawHandleAtPoint(context, point);
}

Feature MDrawPolyline::getFeature() const {
    Feature feature = MDrawTool::getFeature();
    if (rules().forgiving) {
        feature.set(pointsKey, std::make_shared<const PointLines>(PointLines{_points}));
    }
    return feature;
}

void MDrawPolyline::setFeature(const FeatureRef& feature) {
    if (!feature) return;
    const auto* const recorded = feature->get<PointLinesRef>(pointsKey);
    if (recorded && *recorded) _points = (*recorded)->front();
    MDrawTool::setFeature(feature);
}

bool MDrawPolyline::takeDetail(std::string_view name, const ToolDetailValue& value) {
    const auto* const points = std::get_if<std::vector<gfx::Point>>(&value);
    if (name != "points" || !points) return false;
    _points = *points;
    return true;
}

std::string MDrawPolyline::measureText() const {
    const std::string length = measureValue(unitConvertIsSquare(lengthOfVertices(_points), false));
    // The truncation is meant.
    const double area = std::abs(std::trunc(signedAreaOfVertices(_points)));
    return measureLabel("Length") + ": " + length + " " + unit() + "\n" + measureLabel("Area") +
           ": " + measureValue(unitConvertIsSquare(area, true)) + " sq" + unit();
}

std::unique_ptr<MeasurementLabel> MDrawPolyline::makeMeasurement() {
    return MDrawMeasurementInfo::initWithTool(shared_from_this());
}

void MDrawPolyline::useToolColor(gfx::Context& context) const {
    const gfx::ColorRef paint = color();
    context.setStrokeColor(paint ? *paint : clear);
}

bool MDrawPolyline::isOnFirstVertex(gfx::Point p) const {
    return !_points.empty() && isPointOnHandle(p, _points.front());
}

}  // namespace kalim
