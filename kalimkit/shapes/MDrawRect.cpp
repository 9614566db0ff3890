#include "kalimkit/shapes/MDrawRect.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>

#include "kalimkit/shapes/MeasureText.h"
#include "kalimkit/shapes/ShapeProperties.h"
#include "kalimkit/shapes/outline/BoxOutline.h"
#include "kalimkit/tool/HandleReach.h"
#include "kalimkit/tool/QVGeometry.h"

namespace kalim {

namespace {

constexpr std::string_view radiusKey = "rectArcRadius";
constexpr ToolDetailRule detailRules[] = {{radiusKey, ToolDetailRule::Type::Number, false}};

constexpr ToolProperty properties[] = {fillProperty, dashProperty, opacityProperty};

constexpr double minimumDiagonal = 20.0;

// The end coordinate of a side that is too short: just long enough, on the side it was dragged to.
double lengthened(double start, double end, double lineWidth) {
    return start - end > 0 ? start - (lineWidth + 4) : start + (lineWidth + 4);
}

}  // namespace

std::shared_ptr<MDrawRect> MDrawRect::initWithStartPoint(gfx::Point start) {
    return makeAt<MDrawRect>(start);
}

const ToolClass& MDrawRect::Class() {
    static const ToolClass toolClass{"MDrawRect",
                                     &MDrawLine::Class(),
                                     &MDrawTool::makeToolAt<MDrawRect>,
                                     {.label = "{color}矩形",
                                      .span = ToolSpan::Box,
                                      .moveInGroup = MoveDirection::Body,
                                      .toolType = 0,
                                      .details = detailRules,
                                      .properties = properties}};
    return toolClass;
}

void MDrawRect::init() {
    MDrawLine::init();
    setRectArcRadius(0);
}

void MDrawRect::drawUp(gfx::Point p) {
    _endPoint = invertPoint(p);
    finalize();
}

bool MDrawRect::isDrawVaild() const {
    return _startPoint != _endPoint && length() >= minimumDiagonal;
}

void MDrawRect::limitValidFeatrue() {
    MDrawLine::limitValidFeatrue();
    const gfx::Point start = _startPoint;
    const gfx::Point end = _endPoint;
    const double minimum = lineWidth() + 3;
    if (std::abs(start.y - end.y) < minimum) {
        if (isNewBuild() && !isDrawVaild()) return;
        _endPoint.y = lengthened(start.y, end.y, lineWidth());
    }
    if (std::abs(start.x - end.x) < minimum) {
        if (isNewBuild() && !isDrawVaild()) return;
        _endPoint.x = lengthened(start.x, end.x, lineWidth());
    }
}

bool MDrawRect::hitTest(gfx::Point p) {
    const gfx::Point own = invertPoint(p);
    // The margin is deliberately truncated to whole points.
    const double margin = viewScale() > 0 ? lineWidth() + onCanvas(5) : std::trunc(lineWidth() + 5);
    const gfx::Rect box = frame();
    if (!box.inset(-margin, -margin).contains(own)) return false;
    const bool isSmall = std::min(box.size.height, box.size.width) < margin + onCanvas(5);
    return isSmall || isArea() || !box.inset(margin, margin).contains(own);
}

MoveDirection MDrawRect::handleAt(gfx::Point p) {
    const gfx::Point own = invertPoint(p);
    const gfx::Rect box = frame();
    _startPoint = box.origin;
    _endPoint = {box.maxX(), box.maxY()};
    using enum MoveDirection;
    for (const MoveDirection corner : {TopLeft, TopRight, BottomRight, BottomLeft}) {
        if (isOnCorner(own, corner, box)) return corner;
    }
    return hitTest(p) ? Body : None;
}

bool MDrawRect::isOnCorner(gfx::Point own, MoveDirection corner, const gfx::Rect& box) const {
    using enum MoveDirection;
    const gfx::Point handle{corner == TopLeft || corner == BottomLeft ? box.minX() : box.maxX(),
                            corner == TopLeft || corner == TopRight ? box.minY() : box.maxY()};
    return isPointOnHandle(own, handle) &&
           (!rules().forgiving || isWithinThirdsOfCorner(own, corner, box));
}

void MDrawRect::moveByOffsetEndPoint(gfx::Point offset, gfx::Point end) {
    if (_moveDirection == MoveDirection::Scale) {
        MDrawLine::moveByOffsetEndPoint(offset, end);
        return;
    }
    const auto grabbed = [this](std::initializer_list<MoveDirection> handles) {
        return std::ranges::find(handles, _moveDirection) != handles.end();
    };
    using enum MoveDirection;
    if (grabbed({Body, TopLeft, BottomLeft, Left})) _startPoint.x += offset.x;
    if (grabbed({Body, TopLeft, Top, TopRight})) _startPoint.y += offset.y;
    if (grabbed({Body, TopRight, Right, BottomRight})) _endPoint.x += offset.x;
    if (grabbed({Body, BottomRight, Bottom, BottomLeft})) _endPoint.y += offset.y;
}

void MDrawRect::stopMoveHandle() {
    _moveDirection = MoveDirection::None;
    MDrawLine::stopMoveHandle();
}

void MDrawRect::drawContent(gfx::Context& context) {
    paintOutline(context, boxOutline(frame(), rectArcRadius()));
}

bool MDrawRect::isArea() const {
    return drawType() != 0 || !text(fillProperty.name).empty();
}

void MDrawRect::paintOutline(gfx::Context& context, const gfx::Path& outline) const {
    const gfx::GraphicsStateGuard guard(context);
    if (const auto fill = gfx::Color::fromHex(text(fillProperty.name))) {
        const gfx::GraphicsStateGuard ownColor(context);
        context.setFillColor(*fill);
        context.beginPath();
        context.addPath(outline);
        context.fill();
    }
    context.beginPath();
    context.addPath(drawType() == 1 ? outline : withDashes(outline));
    if (drawType() == 0 || drawType() == 2) context.stroke();
    if (drawType() == 1 || drawType() == 2) context.fill();
}

void MDrawRect::drawSlectedStateContent(gfx::Context& context) {
    context.beginPath();
    context.addRect(frame());
    context.stroke();
}

void MDrawRect::drawContentHandle(gfx::Context& context) {
    const gfx::Rect box = frame();
    drawHandleAtPoint(context, box.origin);
    drawHandleAtPoint(context, {box.maxX(), box.minY()});
    drawHandleAtPoint(context, {box.maxX(), box.maxY()});
    drawHandleAtPoint(context, {box.minX(), box.maxY()});
}

ToolDetails MDrawRect::keptDetails() const {
    ToolDetails kept = details();
    if (_rectArcRadius != usualArcRadius()) kept.push_back({radiusKey, _rectArcRadius * 1.0});
    return kept;
}

bool MDrawRect::takeDetail(std::string_view name, const ToolDetailValue& value) {
    const auto* const radius = std::get_if<double>(&value);
    if (name != radiusKey || !radius) return false;
    constexpr double largest = 1e6;
    _rectArcRadius = static_cast<std::int32_t>(std::clamp(*radius, -largest, largest));
    return true;
}

std::string MDrawRect::measureText() const {
    const gfx::Size size = uprightFrame().size;
    const auto text = [this](double value, bool isSquare) {
        return measureValue(unitConvertIsSquare(value, isSquare));
    };
    return measureLabel("Width") + ": " + text(size.width, false) + " " + unit() + "\n" +
           measureLabel("Height") + ": " + text(size.height, false) + " " + unit() + "\n" +
           measureLabel("Area") + ": " + text(size.width * size.height, true) + " sq" + unit();
}

}  // namespace kalim
