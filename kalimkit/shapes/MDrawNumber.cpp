#include "kalimkit/shapes/MDrawNumber.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "kalimkit/shapes/Badge.h"
#include "kalimkit/shapes/CountText.h"
#include "kalimkit/shapes/ShapeProperties.h"
#include "kalimkit/shapes/outline/PointerOutline.h"
#include "kalimkit/tool/QVGeometry.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

namespace {

constexpr std::string_view countKey = "count";
constexpr ToolDetailRule detailRules[] = {{countKey, ToolDetailRule::Type::Number, false, 1}};
constexpr double largestCount = 1e6;

constexpr ToolProperty::Choice styles[] = {
    {"1", "1 2 3"}, {"a", "a b c"}, {"A", "A B C"}, {"i", "i ii iii"}};
constexpr ToolProperty properties[] = {
    {.name = "start", .text = "起始编号", .least = 1, .most = 9999, .step = 1, .usual = 1},
    {.name = "style", .type = ToolProperty::Type::Choice, .text = "编号样式", .choices = styles},
    opacityProperty};

// Canvas points.
constexpr double smallestRadius = 10;
constexpr double hitMargin = 6;
// Of the radius.
constexpr double radiusOfWidth = 0.9;
constexpr double rimShare = 0.11;
constexpr double pointerShare = 0.62;
// A tip nearer than this to the middle makes no pointer.
constexpr double shortestPointer = 1.35;
constexpr double fontShare = 1.25;
constexpr double longFontShare = 1.08;
constexpr double textMargin = 0.42;
// Of the font's size: from the middle of what is written to its baseline.
constexpr double digitDrop = 0.355;
constexpr double smallLetterDrop = 0.27;

}  // namespace

std::shared_ptr<MDrawNumber> MDrawNumber::initWithStartPoint(gfx::Point start) {
    return makeAt<MDrawNumber>(start);
}

const ToolClass& MDrawNumber::Class() {
    static const ToolClass toolClass{"MDrawNumber",
                                     &MDrawLine::Class(),
                                     &MDrawTool::makeToolAt<MDrawNumber>,
                                     {.label = "{color}序号",
                                      .beginning = ToolBeginning::TouchDown,
                                      .span = ToolSpan::Free,
                                      .moveInGroup = MoveDirection::Body,
                                      .toolType = 20,
                                      .details = detailRules,
                                      .properties = properties,
                                      .isCounted = true}};
    return toolClass;
}

// ---- creation and dragging

void MDrawNumber::drawUp(gfx::Point p) {
    _endPoint = p;
    if (!hasPointer()) _endPoint = _startPoint;
    finalize();
}

void MDrawNumber::stopMoveHandle() {
    if (!hasPointer()) _endPoint = _startPoint;
    MDrawLine::stopMoveHandle();
}

// ---- counting

std::string MDrawNumber::countSeries() const {
    return std::to_string(std::lround(number("start"))) + text("style");
}

std::string MDrawNumber::countText() const {
    const auto start = static_cast<int>(std::lround(number("start")));
    return kalim::countText(start + _count - 1, text("style"));
}

// ---- geometry

double MDrawNumber::radius() const {
    return smallestRadius + radiusOfWidth * std::max(lineWidth(), 0.0);
}

bool MDrawNumber::hasPointer() const {
    return QVPointDistance(_startPoint, _endPoint) > shortestPointer * radius();
}

gfx::Font MDrawNumber::font() const {
    gfx::Font font;
    font.size = radius() * (countText().size() > 1 ? longFontShare : fontShare);
    font.bold = true;
    return font;
}

double MDrawNumber::textWidth() const {
    const std::vector<double> advances =
        ui::Environment::current().device().advances(countText(), font());
    return std::accumulate(advances.begin(), advances.end(), 0.0);
}

// As wide as its number needs, in the way that it is read.
gfx::Rect MDrawNumber::disc() const {
    const double half = std::max(radius(), textWidth() / 2 + textMargin * radius());
    const bool isSideways = quarterTurns() % 2 != 0;
    const gfx::Rect middle(_startPoint, {});
    return isSideways ? middle.inset(-radius(), -half) : middle.inset(-half, -radius());
}

gfx::Rect MDrawNumber::frame() const {
    return hasPointer() ? disc().unionWith(gfx::Rect(_endPoint, {})) : disc();
}

gfx::Rect MDrawNumber::frameIncludeLineWidth() const {
    const double rim = rimShare * radius();
    return frame().inset(-rim, -rim);
}

bool MDrawNumber::hitTest(gfx::Point p) {
    const double margin = onCanvas(hitMargin);
    if (disc().inset(-margin, -margin).contains(p)) return true;
    if (!hasPointer()) return false;
    const gfx::Point axis = _endPoint - _startPoint;
    const gfx::Point own = p - _startPoint;
    const double length = std::hypot(axis.x, axis.y);
    const double along = (own.x * axis.x + own.y * axis.y) / length;
    const double aside = std::abs(own.x * axis.y - own.y * axis.x) / length;
    const double half = pointerShare * radius() * (1 - along / length);
    return along >= 0 && along <= length + margin && aside <= std::max(half, 0.0) + margin;
}

MoveDirection MDrawNumber::handleAt(gfx::Point p) {
    if (hasPointer() && isPointOnHandle(p, _endPoint)) return MoveDirection::End;
    return hitTest(p) ? MoveDirection::Body : MoveDirection::None;
}

// ---- drawing

void MDrawNumber::drawContent(gfx::Context& context) {
    const gfx::Color paint = color() ? *color() : gfx::Color{0, 0, 0, 0};
    const gfx::GraphicsStateGuard guard(context);
    const BadgeGroup group(context, paint);
    gfx::Path outline = roundBox(disc(), radius());
    if (hasPointer())
        outline.addPath(pointerOutline(_startPoint, _endPoint, pointerShare * radius()));
    fillBadge(context, outline, paint, rimShare * radius());
    drawCount(context);
}

void MDrawNumber::drawCount(gfx::Context& context) const {
    const bool hasSmallLetters = text("style") == "a" || text("style") == "i";
    const double drop = (hasSmallLetters ? smallLetterDrop : digitDrop) * font().size;
    context.concat(gfx::AffineTransform::quarterTurn(-quarterTurns()).about(_startPoint));
    context.drawText(countText(), _startPoint + gfx::Point{-textWidth() / 2, drop}, font());
}

void MDrawNumber::drawSlectedStateContent(gfx::Context& context) {
    const gfx::GraphicsStateGuard guard(context);
    context.beginPath();
    context.addPath(roundBox(disc(), radius()));
    context.stroke();
}

void MDrawNumber::drawContentHandle(gfx::Context& context) {
    if (hasPointer()) drawHandleAtPoint(context, _endPoint);
}

// ---- keeping

ToolDetails MDrawNumber::details() const {
    return {{countKey, _count * 1.0}, {"label", countText()}};
}

ToolDetails MDrawNumber::keptDetails() const {
    return {{countKey, _count * 1.0}};
}

bool MDrawNumber::takeDetail(std::string_view name, const ToolDetailValue& value) {
    const auto* const number = std::get_if<double>(&value);
    if (name != countKey || !number) return false;
    _count = static_cast<int>(std::clamp(*number, 1.0, largestCount));
    return true;
}

}  // namespace kalim
