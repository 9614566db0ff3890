#include "kalimkit/shapes/MDrawMagnifier.h"

#include <algorithm>
#include <cmath>
#include <variant>
#include <vector>

#include "kalimkit/tool/QVGeometry.h"

namespace kalim {

namespace {

constexpr std::string_view placeName = "place";
constexpr std::string_view placeKey = "MDrawMagnifier-place";
constexpr ToolDetailRule detailRules[] = {{placeName, ToolDetailRule::Type::Points, false}};
constexpr ToolProperty properties[] = {{.name = "zoom",
                                        .type = ToolProperty::Type::Number,
                                        .text = "放大倍数",
                                        .least = 1.25,
                                        .most = 8,
                                        .step = 0.25,
                                        .usual = 2}};

constexpr double hitMargin = 5;
// What joins the circle to its place is so much thinner than the circle's line.
constexpr double thinner = 3;
// A place that is nearer to the middle than this part of the radius is the circle's own.
constexpr double ownPlaceShare = 0.2;

}  // namespace

std::shared_ptr<MDrawMagnifier> MDrawMagnifier::initWithStartPoint(gfx::Point start) {
    return makeAt<MDrawMagnifier>(start);
}

const ToolClass& MDrawMagnifier::Class() {
    static const ToolClass toolClass{"MDrawMagnifier",
                                     &MDrawRect::Class(),
                                     &MDrawTool::makeToolAt<MDrawMagnifier>,
                                     {.label = "{color}放大镜",
                                      .span = ToolSpan::Free,
                                      .toolType = 24,
                                      .details = detailRules,
                                      .properties = properties}};
    return toolClass;
}

double MDrawMagnifier::radius() const {
    return frame().size.width / 2;
}

// ---- making

// As far as the finger has gone along the diagonal of the two sides.
void MDrawMagnifier::makeRound(gfx::Point& moved, gfx::Point fixed) const {
    const gfx::Point way = moved - fixed;
    const double side = (std::abs(way.x) + std::abs(way.y)) / 2;
    moved = fixed + gfx::Point{std::copysign(side, way.x), std::copysign(side, way.y)};
}

void MDrawMagnifier::drawMove(gfx::Point p) {
    MDrawRect::drawMove(p);
    makeRound(_endPoint, _startPoint);
}

void MDrawMagnifier::drawUp(gfx::Point p) {
    drawMove(p);
    finalize();
}

// ---- editing

bool MDrawMagnifier::hitTest(gfx::Point p) {
    return QVPointDistance(p, middle()) <= radius() + lineWidth() / 2 + onCanvas(hitMargin);
}

gfx::Point MDrawMagnifier::placeHandle() const {
    if (_place) return *_place;
    return transformPoint({middle().x, frame().maxY()});
}

MoveDirection MDrawMagnifier::handleAt(gfx::Point p) {
    if (isPointOnHandle(p, placeHandle())) return MoveDirection::Place;
    return MDrawRect::handleAt(p);
}

void MDrawMagnifier::moveByOffsetEndPoint(gfx::Point offset, gfx::Point end) {
    using enum MoveDirection;
    if (_moveDirection == Place) {
        _place = transformPoint(end);
        if (QVPointDistance(*_place, middle()) < radius() * ownPlaceShare) _place.reset();
        return;
    }
    MDrawRect::moveByOffsetEndPoint(offset, end);
    gfx::Point low{_startPoint.x, _endPoint.y};
    gfx::Point high{_endPoint.x, _startPoint.y};
    switch (_moveDirection) {
        case TopLeft:
            return makeRound(_startPoint, _endPoint);
        case BottomRight:
            return makeRound(_endPoint, _startPoint);
        case TopRight:
            makeRound(high, low);
            break;
        case BottomLeft:
            makeRound(low, high);
            break;
        case Top:
        case Bottom:
            return fitAcross(std::abs(_endPoint.y - _startPoint.y));
        case Left:
        case Right:
            return fitDown(std::abs(_endPoint.x - _startPoint.x));
        default:
            return;
    }
    _startPoint = {low.x, high.y};
    _endPoint = {high.x, low.y};
}

// A group that grows more in one direction than in the other leaves it a circle.
void MDrawMagnifier::mapPoints(const PointMap& map) {
    MDrawRect::mapPoints(map);
    const gfx::Size size = frame().size;
    if (size.width == size.height) return;
    const gfx::Point center = middle();
    const double half = (size.width + size.height) / 4;
    _startPoint = center - gfx::Point{half, half};
    _endPoint = center + gfx::Point{half, half};
}

// About the same middle.
void MDrawMagnifier::fitAcross(double side) {
    const double half = std::copysign(side / 2, _endPoint.x - _startPoint.x);
    const double x = middle().x;
    _startPoint.x = x - half;
    _endPoint.x = x + half;
}

void MDrawMagnifier::fitDown(double side) {
    const double half = std::copysign(side / 2, _endPoint.y - _startPoint.y);
    const double y = middle().y;
    _startPoint.y = y - half;
    _endPoint.y = y + half;
}

// ---- drawing

std::optional<gfx::Rect> MDrawMagnifier::repeatedPlace() const {
    const double reach = radius() / number("zoom");
    const gfx::Point place = _place.value_or(middle());
    return gfx::Rect(place.x - reach, place.y - reach, 2 * reach, 2 * reach);
}

void MDrawMagnifier::drawContent(gfx::Context& context) {
    const gfx::GraphicsStateGuard guard(context);
    if (_place) drawPlace(context);
    drawEnlarged(context);
    context.strokeEllipse(frame());
}

void MDrawMagnifier::drawPlace(gfx::Context& context) const {
    const gfx::GraphicsStateGuard guard(context);
    const gfx::Point place = invertPoint(*_place);
    const double ring = radius() / number("zoom");
    context.setLineWidth(std::max(lineWidth() / thinner, 1.0));
    context.strokeEllipse({place.x - ring, place.y - ring, 2 * ring, 2 * ring});
    const double distance = QVPointDistance(place, middle());
    if (distance <= ring + radius()) return;
    const gfx::Point way = (middle() - place) * (1 / distance);
    context.beginPath();
    context.moveTo(place + way * ring);
    context.lineTo(middle() - way * radius());
    context.stroke();
}

// Turned along with the circle: the place is drawn within the frame that is turned already.
void MDrawMagnifier::drawEnlarged(gfx::Context& context) const {
    if (!_ground) return context.fillEllipse(frame());
    const gfx::GraphicsStateGuard guard(context);
    context.beginPath();
    context.addEllipse(frame());
    context.clip();
    const double zoom = number("zoom");
    const gfx::Rect part = *repeatedPlace();
    const gfx::Point place = part.center();
    context.translate(middle().x, middle().y);
    context.scale(zoom, zoom);
    context.translate(-place.x, -place.y);
    // What is smoothed at the circle's edge is to find something, too.
    context.clearShadow();
    _ground->draw(context, part.inset(-1, -1));
}

void MDrawMagnifier::drawSlectedStateContent(gfx::Context& context) {
    context.strokeEllipse(frame());
}

void MDrawMagnifier::drawContentHandle(gfx::Context& context) {
    MDrawRect::drawContentHandle(context);
    drawHandleAtPoint(context, invertPoint(placeHandle()));
}

// ---- keeping

Feature MDrawMagnifier::getFeature() const {
    Feature feature = MDrawRect::getFeature();
    if (_place) feature.set(placeKey, *_place);
    return feature;
}

void MDrawMagnifier::setFeature(const FeatureRef& feature) {
    if (!feature) return;
    _place.reset();
    if (const auto* const place = feature->get<gfx::Point>(placeKey)) _place = *place;
    MDrawRect::setFeature(feature);
}

ToolDetails MDrawMagnifier::details() const {
    if (!_place) return {};
    return {{placeName, std::vector<gfx::Point>{*_place}}};
}

bool MDrawMagnifier::takeDetail(std::string_view name, const ToolDetailValue& value) {
    const auto* const points = std::get_if<std::vector<gfx::Point>>(&value);
    if (name != placeName || !points) return false;
    _place.reset();
    if (!points->empty()) _place = points->front();
    return true;
}

}  // namespace kalim
