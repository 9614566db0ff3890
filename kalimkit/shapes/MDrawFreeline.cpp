#include "kalimkit/shapes/MDrawFreeline.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "kalimkit/shapes/MeasureText.h"
#include "kalimkit/shapes/ShapeProperties.h"
#include "kalimkit/shapes/outline/Dashes.h"
#include "kalimkit/shapes/outline/SegmentHit.h"
#include "kalimkit/tool/QVGeometry.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/environment/LateCode.h"

namespace kalim {

namespace {

constexpr ToolDetailRule detailRules[] = {{"linePoints", ToolDetailRule::Type::Lines},
                                          {"linePressures", ToolDetailRule::Type::Lines, false, 0}};
constexpr ToolProperty pressureProperty{
    .name = "pressure", .type = ToolProperty::Type::Switch, .text = "笔压", .usual = 1};
constexpr ToolProperty properties[] = {dashProperty, pressureProperty, opacityProperty};

constexpr std::size_t minimumPoints = 5;
// The margin is points of the screen.
constexpr double hitMargin = 8;
// Boxes are kept in single precision; middles that differ by less are the same.
constexpr double pivotTolerance = 0.01;

}  // namespace

std::shared_ptr<MDrawFreeline> MDrawFreeline::initWithStartPoint(gfx::Point start) {
    return makeAt<MDrawFreeline>(start);
}

const ToolClass& MDrawFreeline::Class() {
    static const ToolClass toolClass{"MDrawFreeline",
                                     &MDrawRect::Class(),
                                     &MDrawTool::makeToolAt<MDrawFreeline>,
                                     {.label = "{color}涂鸦",
                                      .recorder = ToolRecorder::Strokes,
                                      .span = ToolSpan::Free,
                                      .toolType = 4,
                                      .details = detailRules,
                                      .properties = properties}};
    return toolClass;
}

void MDrawFreeline::init() {
    MDrawRect::init();
    setMaskColorByAlpha(Freeline_default_alpha);
}

void MDrawFreeline::drawMove(gfx::Point p) {
    addNewPoint(invertPoint(p));
}

// From where the stroke is by now.
void MDrawFreeline::predict(const std::vector<gfx::Point>& places) {
    if (linePoints().empty() || _needNewLine || linePoints().back().empty()) return;
    const auto include = [this] {
        gfx::Rect box(linePoints().back().back(), {});
        for (const gfx::Point place : _predicted)
            box = box.unionWith({place, {}});
        _addedBox = _addedBox ? _addedBox->unionWith(box) : box;
    };
    include();
    _predicted.clear();
    for (const gfx::Point place : places)
        _predicted.push_back(invertPoint(place));
    include();
}

bool MDrawFreeline::dropStroke() {
    if (linePoints().size() < 2 || _needNewLine) return false;
    _strokes.dropLine();
    _needNewLine = true;
    _predicted.clear();
    rebuildBoundBox();
    strokesChanged();
    return true;
}

void MDrawFreeline::drawUp(gfx::Point p) {
    addNewPoint(invertPoint(p));
    rebuildBoundBox();
    reCalcCenter();
    _isChangedAllOver = true;
}

void MDrawFreeline::addNewPoint(gfx::Point p) {
    const bool wasDrawn = isDrawVaild();
    if (_needNewLine) {
        if (_strokes.lines().empty()) _startPoint = p;
        _strokes.beginLine();
        _needNewLine = false;
    }
    if (!_predicted.empty()) predict({});
    const bool hadTouches = _strokes.hasTouches();
    const std::optional<gfx::Rect> box = _strokes.addPoint(p, penTouch());
    if (box) _addedBox = _addedBox ? _addedBox->unionWith(*box) : *box;
    // The point that makes the tool valid shows the curves before it, too.
    if (isDrawVaild() != wasDrawn) _isChangedAllOver = true;
    // From now on strokes of one width are drawn in another way, too.
    if (_strokes.hasTouches() != hadTouches) _isChangedAllOver = true;
    _recordedLines = _recordedPressures = nullptr;
}

// Nothing where the stroke is of one width.
std::optional<PenTouch> MDrawFreeline::penTouch() const {
    const bool isPen = _contact.kind == ui::TouchKind::Pen && _contact.pressure;
    if (!isPen || !rules().forgiving || number(pressureProperty.name) == 0) return std::nullopt;
    // What draws such strokes may be still to come.
    if (!ui::Environment::current().attachment<ui::LateCode>().isThere(nullptr))
        return std::nullopt;
    const double lean = std::min(std::hypot(_contact.tilt.x, _contact.tilt.y), 90.0);
    return PenTouch{*_contact.pressure, lean};
}

bool MDrawFreeline::isDrawVaild() const {
    return _strokes.pointCount() > (rules().forgiving ? 0 : minimumPoints);
}

bool MDrawFreeline::hasEnoughPoints() const {
    return _strokes.pointCount() >= (rules().forgiving ? 1 : minimumPoints);
}

gfx::Rect MDrawFreeline::frame() const {
    return _strokes.frame();
}

void MDrawFreeline::rebuildBoundBox() {
    const gfx::Point pivot = QVMidPoint(_startPoint, _endPoint);
    const gfx::Point middle = frame().center();
    if (rotateAngle() != 0 && QVPointDistance(pivot, middle) > pivotTolerance) {
        const gfx::Point drift =
            gfx::AffineTransform::rotation(rotateAngle(), pivot).apply(middle) - middle;
        allPointsHandle([drift](gfx::Point p) { return p + drift; });
    }
    _startPoint = frame().origin;
    _endPoint = farCorner();
}

std::vector<gfx::Point> MDrawFreeline::allPoints() const {
    std::vector<gfx::Point> points;
    points.reserve(_strokes.pointCount());
    for (const std::vector<gfx::Point>& line : linePoints())
        points.insert(points.end(), line.begin(), line.end());
    return points;
}

void MDrawFreeline::allPointsHandle(const std::function<gfx::Point(gfx::Point)>& handle) {
    _strokes.mapPoints(handle);
    strokesChanged();
}

void MDrawFreeline::mapPoints(const PointMap& map) {
    allPointsHandle(map);
    _startPoint = frame().origin;
    _endPoint = farCorner();
}

ToolDetails MDrawFreeline::details() const {
    ToolDetails details{{"linePoints", linePoints()}};
    if (_strokes.hasTouches()) details.push_back({"linePressures", linePressures()});
    return details;
}

bool MDrawFreeline::takeDetail(std::string_view name, const ToolDetailValue& value) {
    const auto* const lines = std::get_if<PointLines>(&value);
    if (lines && name == "linePressures") {
        if (!_strokes.setTouches(*lines)) return false;
        strokesChanged();
        return true;
    }
    if (name != "linePoints" || !lines) return false;
    if (*lines != linePoints()) {
        _strokes.setLines(*lines);
        strokesChanged();
    }
    _needNewLine = true;
    return true;
}

void MDrawFreeline::limitValidFeatrue() {
    if (rotateAngle() == 0 && !rules().forgiving) MDrawRect::limitValidFeatrue();
}

bool MDrawFreeline::hitTest(gfx::Point p) {
    const gfx::Point own = invertPoint(p);
    const double margin = onCanvas(hitMargin);
    const double reach = freehandHitReach(lineWidth(), margin);
    if (!hasEnoughPoints() || !frame().inset(-reach, -reach).contains(own)) return false;
    for (const std::vector<gfx::Point>& line : linePoints()) {
        for (std::size_t i = 1; i < line.size(); ++i) {
            if (hitsFreehandSegment(own, line[i - 1], line[i], lineWidth(), margin)) return true;
        }
    }
    return false;
}

bool MDrawFreeline::hitOnHandle(gfx::Point p) {
    // An undone step has put the strokes elsewhere without a word.
    reCalcCenter();
    return MDrawRect::hitOnHandle(p);
}

MoveDirection MDrawFreeline::handleAt(gfx::Point p) {
    const gfx::Rect box = frame();
    // A dot has no size to scale.
    const bool isDot = rules().forgiving && box.size == gfx::Size{};
    if (!isDot && isOnCorner(invertPoint(p), MoveDirection::BottomRight, box))
        return MoveDirection::BottomRight;
    return hitTest(p) ? MoveDirection::Body : MoveDirection::None;
}

void MDrawFreeline::moveByOffsetEndPoint(gfx::Point offset, gfx::Point end) {
    if (_moveDirection != MoveDirection::Body) return scaleTo(end);
    allPointsHandle([offset](gfx::Point p) { return p + offset; });
    _startPoint += offset;
    _endPoint += offset;
    rebuildBoundBox();
}

void MDrawFreeline::scaleTo(gfx::Point finger) {
    setPreScalePoint(farCorner());
    const gfx::Point center = centerPoint();
    if (!hasEnoughPoints() || finger == preScalePoint()) return;
    if (finger.x < center.x || finger.y < center.y) return;
    // Single precision is meant.
    const float from = static_cast<float>(QVPointDistance(preScalePoint(), center));
    const float to = static_cast<float>(QVPointDistance(finger, center));
    // Strokes that lie at one place have no size to scale.
    if (from == 0) return;
    const double factor = to / from;
    allPointsHandle([=](gfx::Point p) { return center + (p - center) * factor; });
    setPreScalePoint(finger);
}

void MDrawFreeline::stopMoveHandle() {
    MDrawRect::stopMoveHandle();
    rebuildBoundBox();
    reCalcCenter();
    _isChangedAllOver = true;
}

bool MDrawFreeline::showsPressure() const {
    return _strokes.hasTouches() && number(pressureProperty.name) != 0;
}

void MDrawFreeline::drawContent(gfx::Context& context) {
    gfx::GraphicsStateGuard guard(context);
    if (isNewBuild() && maskColor()) context.setStrokeColor(*maskColor());
    context.beginPath();
    // Dashes follow each other from the start on, seen or not.
    if (const auto dashes = dashesNamed(text(dashProperty.name), lineWidth())) {
        context.addPath(dashedPath(_strokes.curves(), *dashes, DashFit::FromStart));
    } else if (showsPressure()) {
        context.setFillColor(gfx::Color(context.state().strokeColor));
        _strokes.addInkInSight(context);
        addPredicted(context);
        return context.fill();
    } else {
        _strokes.addCurvesInSight(context);
        addPredicted(context);
    }
    context.stroke();
}

// As one with what is drawn, so that both together are no darker where they meet.
void MDrawFreeline::addPredicted(gfx::Context& context) const {
    if (_predicted.empty()) return;
    const double width = context.state().lineWidth * (showsPressure() ? _strokes.lastShare() : 1);
    gfx::Path ink;
    gfx::Point from = linePoints().back().back();
    if (!showsPressure()) context.moveTo(from);
    for (const gfx::Point place : _predicted) {
        if (showsPressure()) {
            addInk(ink, {from, from, place, place}, width, width);
        } else {
            context.lineTo(place);
        }
        from = place;
    }
    context.addPath(ink);
}

void MDrawFreeline::drawContentHandle(gfx::Context& context) {
    drawHandleAtPoint(context, farCorner());
}

std::optional<gfx::Rect> MDrawFreeline::takeAddedExtent() {
    const std::optional<gfx::Rect> added = std::exchange(_addedBox, std::nullopt);
    const bool isChangedAllOver = std::exchange(_isChangedAllOver, false);
    if (isChangedAllOver || !isNewBuild() || rotateAngle() != 0) return std::nullopt;
    const double reach = lineWidth() * 0.5;
    return added ? added->inset(-reach, -reach) : gfx::Rect{};
}

Feature MDrawFreeline::getFeature() const {
    Feature feature = MDrawRect::getFeature();
    if (!_recordedLines) _recordedLines = std::make_shared<const PointLines>(linePoints());
    feature.set("MDrawFree-linepoint", _recordedLines);
    if (!_strokes.hasTouches()) return feature;
    if (!_recordedPressures)
        _recordedPressures = std::make_shared<const PointLines>(linePressures());
    feature.set("MDrawFree-pressure", _recordedPressures);
    return feature;
}

void MDrawFreeline::setFeature(const FeatureRef& feature) {
    if (!feature) return;
    const auto* const recorded = feature->get<PointLinesRef>("MDrawFree-linepoint");
    const PointLinesRef lines = recorded ? *recorded : nullptr;
    if (!lines || lines != _recordedLines) {
        const auto* const pressures = feature->get<PointLinesRef>("MDrawFree-pressure");
        _strokes.setLines(lines ? *lines : PointLines{});
        if (pressures && *pressures) _strokes.setTouches(**pressures);
        strokesChanged();
        _recordedLines = lines;
    }
    MDrawRect::setFeature(feature);
}

void MDrawFreeline::setRules(const ToolRules& rules) {
    MDrawRect::setRules(rules);
    _strokes.setShowsTails(rules.forgiving);
    _isChangedAllOver = true;
}

void MDrawFreeline::setColor(gfx::ColorRef color) {
    MDrawRect::setColor(std::move(color));
    setMaskColorByAlpha(Freeline_default_alpha);
}

void MDrawFreeline::setMaskColorByAlpha(double alpha) {
    const gfx::ColorRef own = color();
    setMaskColor(own ? gfx::makeColor(own->withAlpha(alpha)) : nullptr);
    _isChangedAllOver = true;
}

void MDrawFreeline::setLineWidth(double width) {
    MDrawRect::setLineWidth(width);
    _isChangedAllOver = true;
}

void MDrawFreeline::setSelected(bool selected) {
    MDrawRect::setSelected(selected);
    _isChangedAllOver = true;
}

std::string MDrawFreeline::measureText() const {
    double length = 0;
    const gfx::Point* previous = nullptr;
    for (const std::vector<gfx::Point>& line : linePoints()) {
        for (const gfx::Point& point : line) {
            if (previous) length += QVPointDistance(*previous, point);
            previous = &point;
        }
    }
    // No space before the colon, unlike the straight line: both forms are meant.
    return measureLabel("Length") + ": " + measureValue(unitConvertIsSquare(length, false)) + " " +
           unit();
}

gfx::Point MDrawFreeline::farCorner() const {
    const gfx::Rect box = frame();
    return {box.maxX(), box.maxY()};
}

void MDrawFreeline::strokesChanged() {
    _recordedLines = _recordedPressures = nullptr;
    _isChangedAllOver = true;
}

}  // namespace kalim
