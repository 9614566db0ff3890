#include "kalimkit/tool/MDrawTool.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <map>
#include <optional>
#include <utility>

#include "kalimkit/tool/QVGeometry.h"

namespace kalim {

namespace {

// The last index handed out per class name; absent until the first tool of the process is named.
std::optional<std::map<std::string, int, std::less<>>>& nameMgr() {
    static std::optional<std::map<std::string, int, std::less<>>> indexes;
    return indexes;
}

// Truncates toward zero; what does not fit is brought to the nearest limit, NaN to zero.
int truncated(double value) {
    if (std::isnan(value)) return 0;
    constexpr double limit = 1'000'000;
    return static_cast<int>(std::min(std::max(value, -limit), limit));
}

std::string propertyKey(std::string_view name) {
    return "property-" + std::string(name);
}

constexpr std::string_view groupsKey = "MDrawTool-groups";
constexpr std::string_view lockedKey = "MDrawTool-locked";

// Numbers with a blank after each, and back.
std::string textOf(const std::vector<std::int64_t>& numbers) {
    std::string text;
    for (const std::int64_t number : numbers)
        text += std::to_string(number) + " ";
    return text;
}

std::vector<std::int64_t> numbersOf(std::string_view text) {
    std::vector<std::int64_t> numbers;
    while (!text.empty()) {
        const std::size_t end = text.find(' ');
        std::from_chars(text.data(), text.data() + end, numbers.emplace_back());
        text.remove_prefix(end + 1);
    }
    return numbers;
}

gfx::Point scaledAbout(gfx::Point center, double factor, gfx::Point p) {
    return center + (p - center) * factor;
}

}  // namespace

ToolRef MDrawTool::initWithStartPoint(gfx::Point start) {
    return makeAt<MDrawTool>(start);
}

MDrawTool::~MDrawTool() = default;

const ToolClass& MDrawTool::Class() {
    static constexpr ToolProperty properties[] = {opacityProperty};
    static const ToolClass toolClass{
        "MDrawTool", nullptr, &MDrawTool::makeToolAt<MDrawTool>, {.properties = properties}};
    return toolClass;
}

void MDrawTool::init() {
    static const gfx::ColorRef selectionColor = gfx::makeColor(112 / 255.0, 208 / 255.0, 1.0);
    _handleFillColor = selectionColor;
    _handleSize = 14;
    _handleLineWidthSize = 2;
    _handleViewScale = 1.0;
    setLineWidth(8.0);
    setCalibration(0.0);
    setUnit("px");
    initName();
}

void MDrawTool::initName() {
    const std::string_view className = toolClass().name;
    int index = 0;
    // Only the very first tool of the process gets index 0; later classes start at 1 on purpose.
    if (!nameMgr()) {
        nameMgr().emplace();
    } else {
        const auto found = nameMgr()->find(className);
        index = (found == nameMgr()->end() ? 0 : found->second) + 1;
    }
    nameMgr()->insert_or_assign(std::string(className), index);
    _name = std::string(className) + ":Index:" + std::to_string(index);
}

void MDrawTool::takeName(std::string name) {
    constexpr std::string_view mark = ":Index:";
    const std::size_t place = name.rfind(mark);
    int index = 0;
    const char* const end = name.data() + name.size();
    if (place != std::string::npos &&
        std::from_chars(name.data() + place + mark.size(), end, index).ptr == end && nameMgr()) {
        int& last = (*nameMgr())[name.substr(0, place)];
        last = std::max(last, index);
    }
    _name = std::move(name);
}

void MDrawTool::resetNames() {
    nameMgr().reset();
}

void MDrawTool::drawThrough(std::span<const gfx::Point> points) {
    if (points.empty()) return;
    for (const gfx::Point p : points)
        drawMove(p);
    drawUp(points.back());
}

void MDrawTool::finalize() {
    _finalized = true;
    limitValidFeatrue();
}

void MDrawTool::finalize(gfx::Point end) {
    _endPoint = end;
}

gfx::Rect MDrawTool::frame() const {
    return gfx::Rect::spanning(_startPoint, _endPoint);
}

gfx::Rect MDrawTool::frameIncludeLineWidth() const {
    const double margin = -reachBeyondFrame();
    return _transform.apply(frame().inset(margin, margin));
}

gfx::Point MDrawTool::invertPoint(gfx::Point p) const {
    return isTurnedByContext() ? _mInvertTransform.apply(p) : p;
}

gfx::Point MDrawTool::transformPoint(gfx::Point p) const {
    return isTurnedByContext() ? _transform.apply(p) : p;
}

gfx::Rect MDrawTool::uprightFrame() const {
    gfx::Rect box = frame();
    if (quarterTurns() % 2 == 0 || isTurnedByQuarters()) return box;
    const gfx::Point middle = box.center();
    std::swap(box.size.width, box.size.height);
    box.origin = middle - gfx::Point{box.size.width / 2, box.size.height / 2};
    return box;
}

void MDrawTool::reCalcCenter() {
    const gfx::Rect box = frame();
    _centerPoint = box.center();
    _preScalePoint = {box.maxX(), box.maxY()};
}

double MDrawTool::unitConvertIsSquare(double value, bool isSquare) const {
    if (_calibration == 0) return value;
    const double factor = _calibration * _unitScale;
    return isSquare ? value * factor * factor : value * factor;
}

bool MDrawTool::hitTest(gfx::Point p) {
    return frame().contains(invertPoint(p));
}

bool MDrawTool::hitOnHandle(gfx::Point) {
    return false;
}

bool MDrawTool::testHitOnHandle(gfx::Point) {
    return false;
}

bool MDrawTool::isPointOnHandle(gfx::Point p, gfx::Point handle) const {
    if (_viewScale > 0 || _rules.fineHandles) return isPointOnScreenHandle(p, handle);
    const double width = lineWidth();
    const double reach = (width < _handleSize ? _handleSize : width) + 14;
    const double extension = reach / _handleViewScale;
    const int half = _handleSize / 2;
    const double side = extension + _handleSize;
    return gfx::Rect(handle.x - half - extension * 0.5, handle.y - half - extension * 0.5, side,
                     side)
        .contains(p);
}

// Answers in points of the screen.
double MDrawTool::handleSizeOnScreen() const {
    return _lineWidth > 30 ? 16 : 14;
}

// As large on the screen as on a canvas whose points are those of the view.
bool MDrawTool::isPointOnScreenHandle(gfx::Point p, gfx::Point handle) const {
    const double size = handleSizeOnScreen();
    const double width = std::clamp(lineWidth() * _viewScale, size, 2 * size);
    // A pointer has less need of room around a handle than a fingertip.
    const double half = onCanvas((width + (_rules.fineHandles ? 8 : 14 + size)) / 2);
    return gfx::Rect(handle.x - half, handle.y - half, 2 * half, 2 * half).contains(p);
}

gfx::Point MDrawTool::tryMovePointEndPoint(gfx::Point p1, gfx::Point p2) {
    const gfx::Point from = invertPoint(p1);
    const gfx::Point to = invertPoint(p2);
    const gfx::Point delta = to - from;
    const gfx::Point oldStart = _startPoint;
    const gfx::Point oldEnd = _endPoint;
    const bool isBody = _moveDirection == MoveDirection::Body;
    // A body moves by the canvas's own delta, everything else by the unrotated one.
    moveByOffsetEndPoint(isBody ? p2 - p1 : delta, to);
    if (!isDrawVaild()) {
        if (_moveDirection == MoveDirection::Scale) {
            _startPoint = oldStart;
            _endPoint = oldEnd;
        } else {
            // The body, too, steps back by the unrotated delta, not by what moved it; that is
            // meant.
            moveByOffsetEndPoint(-delta, to - delta);
        }
        return p1;
    }
    if (isBody) return p2;
    const double change =
        QVPointDistance(_startPoint, _endPoint) - QVPointDistance(oldStart, oldEnd);
    if (std::abs(change) > 0.01) {
        // The rotation is about the middle, which has moved: keep the turned shape in its place.
        const gfx::Point middle = QVMidPoint(_startPoint, _endPoint);
        const gfx::Point drift = _transform.apply(middle) - middle;
        _startPoint += drift;
        _endPoint += drift;
    }
    return p2;
}

void MDrawTool::moveByOffsetEndPoint(gfx::Point, gfx::Point end) {
    if (_moveDirection != MoveDirection::Scale || _preScalePoint == end) return;
    _startPoint = scaledAbout(_centerPoint, _zoomScale, _startPoint);
    _endPoint = scaledAbout(_centerPoint, _zoomScale, _endPoint);
}

void MDrawTool::rotateChangedWithAngle(double angle) {
    _rotateAngle = _lastRotateAngle + angle;
}

void MDrawTool::rotateEndedWithAngle(double angle) {
    _rotateAngle = _lastRotateAngle + angle;
    _lastRotateAngle = _rotateAngle;
}

void MDrawTool::stopMoveHandle() {
    limitValidFeatrue();
}

void MDrawTool::setDrawType(std::uint64_t) {
    _drawType = 0;
}

void MDrawTool::setLineWidth(double width) {
    _lineWidth = width;
    updateHandleSize();
}

void MDrawTool::setHandleViewScale(double scale) {
    _handleViewScale = scale;
    updateHandleSize();
}

void MDrawTool::updateHandleSize() {
    const double scale = _handleViewScale;
    int size = _lineWidth > 30 ? 16 : 14;
    if (scale > 1) {
        size = truncated(scale * size);
        // 14 even where the base size is 16: deliberate.
        if (14 / scale < size) size = truncated(14 / scale);
    } else {
        size = truncated(size / scale);
    }
    if (size <= 3) {
        _handleSize = 4;
        _handleLineWidthSize = 1;
    } else {
        _handleSize = size;
        _handleLineWidthSize = size > 9 ? 2 : 1;
    }
}

void MDrawTool::setUnit(std::string unit) {
    _unit = std::move(unit);
    // These factors do not follow metric ratios, and measurements rely on them as they are.
    if (_unit == "mm") {
        _unitScale = 0.001;
    } else if (_unit == "cm") {
        _unitScale = 0.000001;
    } else {
        _unitScale = 1.0;
    }
}

// ---- properties

std::optional<ToolPropertyValue> MDrawTool::property(std::string_view name) const {
    const ToolProperty* const known = toolClass().propertyNamed(name);
    if (!known) return std::nullopt;
    const auto chosen =
        std::ranges::find(_properties, name, &ToolPropertyValues::value_type::first);
    return chosen == _properties.end() ? known->usualValue() : chosen->second;
}

bool MDrawTool::setProperty(std::string_view name, const ToolPropertyValue& value) {
    const ToolProperty* const known = toolClass().propertyNamed(name);
    if (!known || !known->takes(value)) return false;
    std::erase_if(_properties, [name](const auto& chosen) { return chosen.first == name; });
    if (value != known->usualValue()) _properties.emplace_back(name, value);
    return true;
}

ToolPropertyValues MDrawTool::chosenProperties() const {
    ToolPropertyValues chosen;
    if (_properties.empty()) return chosen;
    for (const ToolProperty& known : toolClass().properties()) {
        const auto value = property(known.name);
        if (value != known.usualValue()) chosen.emplace_back(known.name, *value);
    }
    return chosen;
}

double MDrawTool::number(std::string_view name) const {
    const auto value = property(name);
    const auto* const number = value ? std::get_if<double>(&*value) : nullptr;
    return number ? *number : 0;
}

std::string MDrawTool::text(std::string_view name) const {
    const auto value = property(name);
    const auto* const words = value ? std::get_if<std::string>(&*value) : nullptr;
    return words ? *words : std::string();
}

// ---- history

Feature MDrawTool::getFeature() const {
    Feature feature;
    if (_color) feature.set("MDrawTool-color", _color);
    feature.set("MDrawTool-lineWidth", _lineWidth);
    feature.set("MDrawTool-drawType", static_cast<std::int64_t>(_drawType));
    feature.set("MDrawTool-rotateAngle", _rotateAngle);
    for (const auto& [name, value] : _properties) {
        std::visit([&](const auto& chosen) { feature.set(propertyKey(name), chosen); }, value);
    }
    // Where there is none, snapshots are what they were before there were any.
    if (!_groups.empty()) feature.set(groupsKey, textOf(_groups));
    if (_isLocked) feature.set(lockedKey, std::int64_t{1});
    return feature;
}

void MDrawTool::setFeature(const FeatureRef& feature) {
    if (!feature) return;
    const gfx::ColorRef* color = feature->get<gfx::ColorRef>("MDrawTool-color");
    setColor(color ? *color : nullptr);
    // Width and angle are deliberately read back in single precision.
    if (const double* width = feature->get<double>("MDrawTool-lineWidth")) {
        setLineWidth(static_cast<float>(*width));
    }
    if (const auto* drawType = feature->get<std::int64_t>("MDrawTool-drawType")) {
        setDrawType(static_cast<std::uint64_t>(*drawType));
    }
    if (const double* angle = feature->get<double>("MDrawTool-rotateAngle")) {
        setRotateAngle(static_cast<float>(*angle));
    }
    takeProperties(*feature);
    readArrangement(*feature);
}

void MDrawTool::takeProperties(const Feature& feature) {
    for (const ToolProperty& property : toolClass().properties()) {
        ToolPropertyValue value = property.usualValue();
        const std::string key = propertyKey(property.name);
        if (const auto* const number = feature.get<double>(key)) value = *number;
        if (const auto* const words = feature.get<std::string>(key)) value = *words;
        setProperty(property.name, value);
    }
}

void MDrawTool::readArrangement(const Feature& feature) {
    const auto* groups = feature.get<std::string>(groupsKey);
    _groups = groups ? numbersOf(*groups) : std::vector<std::int64_t>();
    _isLocked = feature.find(lockedKey) != nullptr;
}

bool MDrawTool::updatefeature() {
    if (!isDrawVaild()) return false;
    _undoMgr.setFeature(std::make_shared<const Feature>(getFeature()));
    return true;
}

bool MDrawTool::hasUnrecordedChange() const {
    const FeatureRef recorded = _undoMgr.feature();
    return !recorded || !recorded->isEqual(getFeature());
}

bool MDrawTool::undo() {
    if (!_undoMgr.undo()) return false;
    setFeature(_undoMgr.feature());
    return true;
}

bool MDrawTool::redo() {
    if (!_undoMgr.redo()) return false;
    setFeature(_undoMgr.feature());
    return true;
}

void MDrawTool::revertLastValidfeature() {
    setFeature(_undoMgr.feature());
}

void MDrawTool::resetRedo() {
    _undoMgr.resetRedo();
}

void MDrawTool::reset() {
    _undoMgr.reset();
}

}  // namespace kalim
