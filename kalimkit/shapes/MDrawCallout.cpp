#include "kalimkit/shapes/MDrawCallout.h"

#include <algorithm>
#include <cmath>

#include "kalimkit/shapes/Badge.h"
#include "kalimkit/shapes/ShapeProperties.h"
#include "kalimkit/shapes/outline/PointerOutline.h"
#include "kalimkit/tool/QVGeometry.h"

namespace kalim {

namespace {

constexpr std::string_view tailKey = "tail";
constexpr ToolDetailRule detailRules[] = {{"text", ToolDetailRule::Type::Text},
                                          {"fontSize", ToolDetailRule::Type::Number, true, 0.01},
                                          {"inset", ToolDetailRule::Type::Number, false, 0},
                                          {tailKey, ToolDetailRule::Type::Points, false}};
constexpr ToolProperty properties[] = {alignProperty, boldProperty, directionProperty,
                                       adaptsProperty, opacityProperty};

// Canvas points.
constexpr double smallestWidth = 30;
constexpr double hitMargin = 5;
// A finger that stays nearer to where it came down points at nothing.
constexpr double shortestWay = 20;
// Of the font's size.
constexpr double paddingShare = 0.3;
constexpr double radiusShare = 0.7;
constexpr double rimShare = 0.09;
constexpr double tailShare = 0.55;
constexpr double usualTail = 1.3;
// Of the bubble's width: where a tail begins that nobody has drawn.
constexpr double usualTailPlace = 0.22;
// How far a tail's base moves from the point next to its tip towards the bubble's middle.
constexpr double towardsMiddle = 0.3;

}  // namespace

std::shared_ptr<MDrawCallout> MDrawCallout::initWithStartPoint(gfx::Point start) {
    return makeAt<MDrawCallout>(start);
}

const ToolClass& MDrawCallout::Class() {
    static const ToolClass toolClass{"MDrawCallout",
                                     &MDrawText::Class(),
                                     &MDrawTool::makeToolAt<MDrawCallout>,
                                     {.label = "{color}对话框",
                                      .span = ToolSpan::Free,
                                      .keepsToFrame = false,
                                      .toolType = 21,
                                      .details = detailRules,
                                      .properties = properties}};
    return toolClass;
}

// ---- creation

void MDrawCallout::drawMove(gfx::Point p) {
    if (QVPointDistance(p, _startPoint) > onCanvas(shortestWay)) _tail = p;
    MDrawText::drawMove(_startPoint);
}

void MDrawCallout::drawUp(gfx::Point p) {
    if (QVPointDistance(p, _startPoint) > onCanvas(shortestWay)) _tail = p;
    MDrawText::drawUp(_startPoint);
}

void MDrawCallout::drawThrough(std::span<const gfx::Point> points) {
    if (points.empty()) return;
    _tail = points.back();
    if (points.size() == 1) return;
    _endPoint = points[points.size() - 2];
    fitHeight();
}

// ---- the tail

gfx::Point MDrawCallout::tailTip() const {
    if (_tail) return *_tail;
    const gfx::Rect around = bubble();
    const gfx::Point tip{around.minX() + usualTailPlace * around.size.width,
                         around.maxY() + usualTail * fontSize()};
    return isTurnedByQuarters() ? transformPoint(tip) : tip;
}

// As large as the field while it is typed.
gfx::Rect MDrawCallout::textBox() const {
    if (!isTyped()) return frame();
    const gfx::Rect field = textView()->frame();
    const gfx::Point far{field.maxX(), field.maxY()};
    return gfx::Rect::spanning(
        invertRotatePoint(convertPointToCoordinate(field.origin, Coordinate::Tool)),
        invertRotatePoint(convertPointToCoordinate(far, Coordinate::Tool)));
}

gfx::Rect MDrawCallout::bubble() const {
    const double padding = paddingShare * fontSize();
    return textBox().inset(-padding, -padding);
}

// The tail begins within the bubble, next to its tip.
gfx::Path MDrawCallout::outline() const {
    const gfx::Rect around = bubble();
    gfx::Path path = roundBox(around, radiusShare * fontSize());
    const gfx::Point tip = invertRotatePoint(tailTip());
    if (around.contains(tip)) return path;
    const double half =
        std::min({tailShare * fontSize(), around.size.width / 3, around.size.height / 3});
    const gfx::Rect room = around.inset(1.6 * half, half);
    const gfx::Point nearest{std::clamp(tip.x, room.minX(), room.maxX()),
                             std::clamp(tip.y, room.minY(), room.maxY())};
    const gfx::Point from = nearest + (room.center() - nearest) * towardsMiddle;
    path.addPath(pointerOutline(from, tip, half));
    return path;
}

// ---- hit testing and dragging

gfx::Rect MDrawCallout::frameIncludeLineWidth() const {
    const double rim = rimShare * fontSize();
    const gfx::Rect box = outline().boundingBox().inset(-rim, -rim);
    return isTurnedByQuarters() ? transform().apply(box) : box;
}

bool MDrawCallout::hitTest(gfx::Point p) {
    const double margin = onCanvas(hitMargin);
    const gfx::Rect around = bubble();
    const gfx::Point own = invertRotatePoint(p);
    if (around.inset(-margin, -margin).contains(own)) return true;
    const gfx::Point tip = invertRotatePoint(tailTip());
    const gfx::Point way = tip - around.center();
    const double square = way.x * way.x + way.y * way.y;
    if (!(square > 0)) return false;
    const gfx::Point from = own - around.center();
    const double share = std::clamp((from.x * way.x + from.y * way.y) / square, 0.0, 1.0);
    const double half = tailShare * fontSize() * (1 - share);
    return QVPointDistance(own, around.center() + way * share) <= half + margin;
}

MoveDirection MDrawCallout::handleAt(gfx::Point p) {
    const gfx::Point own = invertPoint(p);
    if (isPointOnHandle(own, invertRotatePoint(tailTip()))) return tailHandle;
    return MDrawText::handleAt(p);
}

void MDrawCallout::moveByOffsetEndPoint(gfx::Point offset, gfx::Point end) {
    switch (_moveDirection) {
        case MoveDirection::Body:
            if (_tail) *_tail += offset;
            return MDrawText::moveByOffsetEndPoint(offset, end);
        case MoveDirection::Scale:
            if (_tail && preScalePoint() != end)
                _tail = centerPoint() + (*_tail - centerPoint()) * zoomScale();
            return MDrawText::moveByOffsetEndPoint(offset, end);
        case MoveDirection::BottomRight:
            _endPoint.x = std::max(_endPoint.x + offset.x, _startPoint.x + smallestWidth);
            return fitHeight();
        default:
            return MDrawText::moveByOffsetEndPoint(offset, end);
    }
}

gfx::Point MDrawCallout::tryMovePointEndPoint(gfx::Point p1, gfx::Point p2) {
    if (_moveDirection != tailHandle) return MDrawText::tryMovePointEndPoint(p1, p2);
    _tail = tailTip() + (p2 - p1);
    return p2;
}

void MDrawCallout::mapPoints(const PointMap& map) {
    const gfx::Point tip = map(invertRotatePoint(tailTip()));
    MDrawText::mapPoints(map);
    refreshTransform();
    if (_tail) _tail = isTurnedByQuarters() ? transformPoint(tip) : tip;
}

void MDrawCallout::fitHeight() {
    _endPoint.y = _startPoint.y + std::max(measureCoreTextSize(text()).height, fontSize());
}

// ---- drawing

void MDrawCallout::drawContent(gfx::Context& context) {
    const gfx::Color paint = color() ? *color() : gfx::Color{0, 0, 0, 0};
    const gfx::GraphicsStateGuard guard(context);
    const BadgeGroup group(context, paint);
    fillBadge(context, outline(), paint, rimShare * fontSize());
    if (!isTyped()) drawTextWithString(context, text());
}

void MDrawCallout::drawSlectedStateContent(gfx::Context& context) {
    if (isEdittingText()) return;
    const gfx::GraphicsStateGuard guard(context);
    context.beginPath();
    context.addPath(roundBox(bubble(), radiusShare * fontSize()));
    context.stroke();
}

void MDrawCallout::drawContentHandle(gfx::Context& context) {
    MDrawText::drawContentHandle(context);
    if (!isEdittingText()) drawHandleAtPoint(context, invertRotatePoint(tailTip()));
}

gfx::ColorRef MDrawCallout::textColor() const {
    const gfx::ColorRef paint = color();
    return paint ? gfx::makeColor(inkOn(*paint)) : nullptr;
}

// ---- history and keeping

Feature MDrawCallout::getFeature() const {
    Feature feature = MDrawText::getFeature();
    if (_tail) feature.set("MDrawCallout-tail", *_tail);
    return feature;
}

void MDrawCallout::setFeature(const FeatureRef& feature) {
    if (!feature) return;
    const auto* const tail = feature->get<gfx::Point>("MDrawCallout-tail");
    _tail = tail ? std::optional(*tail) : std::nullopt;
    MDrawText::setFeature(feature);
}

ToolDetails MDrawCallout::details() const {
    ToolDetails all = MDrawText::details();
    all.push_back({tailKey, std::vector<gfx::Point>{tailTip()}});
    return all;
}

ToolDetails MDrawCallout::keptDetails() const {
    ToolDetails kept = MDrawText::keptDetails();
    if (_tail) kept.push_back({tailKey, std::vector<gfx::Point>{*_tail}});
    return kept;
}

bool MDrawCallout::takeDetail(std::string_view name, const ToolDetailValue& value) {
    if (name != tailKey) return MDrawText::takeDetail(name, value);
    const auto* const points = std::get_if<std::vector<gfx::Point>>(&value);
    if (!points) return false;
    _tail = points->empty() ? std::nullopt : std::optional(points->front());
    return true;
}

}  // namespace kalim
