#include "kalimkit/shapes/MDrawLine.h"

#include "kalimkit/shapes/MDrawMeasurementInfo.h"
#include "kalimkit/shapes/MeasureText.h"
#include "kalimkit/shapes/ShapeProperties.h"
#include "kalimkit/shapes/outline/Dashes.h"
#include "kalimkit/shapes/outline/LineDistance.h"
#include "kalimkit/tool/HandleReach.h"
#include "kalimkit/tool/QVGeometry.h"

namespace kalim {

namespace {

constexpr ToolProperty properties[] = {dashProperty, opacityProperty};

constexpr double minimumLength = 5.0;
constexpr double hitMargin = 8.0;

}  // namespace

std::shared_ptr<MDrawLine> MDrawLine::initWithStartPoint(gfx::Point start) {
    return makeAt<MDrawLine>(start);
}

const ToolClass& MDrawLine::Class() {
    static const ToolClass toolClass{"MDrawLine",
                                     &MDrawTool::Class(),
                                     &MDrawTool::makeToolAt<MDrawLine>,
                                     {.label = "{color}直线",
                                      .span = ToolSpan::Line,
                                      .moveInGroup = MoveDirection::GroupedLine,
                                      .toolType = 6,
                                      .properties = properties}};
    return toolClass;
}

double MDrawLine::length() const {
    return QVPointDistance(_startPoint, _endPoint);
}

void MDrawLine::drawDown(gfx::Point p) {
    _startPoint = _endPoint = invertPoint(p);
}

void MDrawLine::drawMove(gfx::Point p) {
    _endPoint = invertPoint(p);
}

void MDrawLine::drawUp(gfx::Point p) {
    if (finalized()) return;
    _endPoint = invertPoint(p);
    if (isDrawVaild()) finalize();
}

bool MDrawLine::isDrawVaild() const {
    return length() > minimumLength;
}

void MDrawLine::finalize() {
    MDrawTool::finalize();
    limitValidFeatrue();
}

void MDrawLine::limitValidFeatrue() {
    MDrawTool::limitValidFeatrue();
    if (isNewBuild() && _startPoint == _endPoint) return;
    if (!isDrawVaild()) _endPoint.x = _startPoint.x + lineWidth() + 2.0;
}

bool MDrawLine::hitTest(gfx::Point p) {
    const gfx::Point own = invertPoint(p);
    const double margin = onCanvas(hitMargin);
    const double reach = length() + margin;
    return distanceFromLine(own, _startPoint, _endPoint) <= lineWidth() * 0.5 + margin &&
           QVPointDistance(own, _startPoint) <= reach && QVPointDistance(own, _endPoint) <= reach;
}

MoveDirection MDrawLine::handleAt(gfx::Point p) {
    const gfx::Point own = invertPoint(p);
    if (isOnEnd(own, _startPoint, _endPoint)) return MoveDirection::Start;
    if (isOnEnd(own, _endPoint, _startPoint)) return MoveDirection::End;
    return hitTest(p) ? MoveDirection::Body : MoveDirection::None;
}

bool MDrawLine::isOnEnd(gfx::Point own, gfx::Point handle, gfx::Point other) const {
    return isPointOnHandle(own, handle) &&
           (!rules().forgiving || isWithinThirdOfSegment(own, handle, other));
}

bool MDrawLine::hitOnHandle(gfx::Point p) {
    _moveDirection = handleAt(p);
    return _moveDirection != MoveDirection::None;
}

bool MDrawLine::testHitOnHandle(gfx::Point p) {
    return handleAt(p) != MoveDirection::None;
}

void MDrawLine::moveByOffsetEndPoint(gfx::Point offset, gfx::Point end) {
    switch (_moveDirection) {
        case MoveDirection::Body:
            _startPoint += offset;
            _endPoint += offset;
            break;
        case MoveDirection::End:
            _endPoint += offset;
            break;
        case MoveDirection::Start:
            _startPoint += offset;
            break;
        default:
            MDrawTool::moveByOffsetEndPoint(offset, end);
            break;
    }
}

void MDrawLine::stopMoveHandle() {
    MDrawTool::stopMoveHandle();
    _moveDirection = MoveDirection::None;
}

void MDrawLine::drawContent(gfx::Context& context) {
    gfx::GraphicsStateGuard guard(context);
    gfx::Path path;
    path.moveTo(_startPoint);
    path.lineTo(_endPoint);
    context.beginPath();
    context.addPath(withDashes(path));
    context.stroke();
}

gfx::Path MDrawLine::withDashes(const gfx::Path& path) const {
    const std::optional<Dashes> dashes = dashesNamed(text(dashProperty.name), lineWidth());
    return dashes ? dashedPath(path, *dashes, DashFit::ToEnds) : path;
}

void MDrawLine::drawContentHandle(gfx::Context& context) {
    drawHandleAtPoint(context, _startPoint);
    drawHandleAtPoint(context, _endPoint);
}

// Where the drawing context is not turned, the points are.
void MDrawLine::rotateChangedWithAngle(double angle) {
    MDrawTool::rotateChangedWithAngle(angle);
    if (isRotateByRotateCtx()) return;
    const gfx::Point middle = QVMidPoint(_startPoint, _endPoint);
    const auto turn = gfx::AffineTransform::rotation(angle - _preRotateAngle, middle);
    _startPoint = turn.apply(_startPoint);
    _endPoint = turn.apply(_endPoint);
    _preRotateAngle = angle;
}

void MDrawLine::rotateEndedWithAngle(double angle) {
    MDrawTool::rotateEndedWithAngle(angle);
    _preRotateAngle = 0;
}

Feature MDrawLine::getFeature() const {
    Feature feature = MDrawTool::getFeature();
    feature.set("MDrawLine-start", _startPoint);
    feature.set("MDrawLine-end", _endPoint);
    return feature;
}

void MDrawLine::setFeature(const FeatureRef& feature) {
    if (!feature) return;
    if (const auto* start = feature->get<gfx::Point>("MDrawLine-start")) _startPoint = *start;
    if (const auto* end = feature->get<gfx::Point>("MDrawLine-end")) _endPoint = *end;
    MDrawTool::setFeature(feature);
}

std::string MDrawLine::measureText() const {
    // A space before the colon, unlike the boxes: both forms are meant.
    return measureLabel("Length") + " : " + measureValue(unitConvertIsSquare(length(), false)) +
           " " + unit();
}

std::unique_ptr<MeasurementLabel> MDrawLine::makeMeasurement() {
    return MDrawMeasurementInfo::initWithTool(shared_from_this());
}

}  // namespace kalim
