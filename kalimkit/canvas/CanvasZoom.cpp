#include "kalimkit/canvas/CanvasZoom.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "kalimkit/canvas/PictureLayout.h"
#include "kalimkit/image/PictureCut.h"

namespace kalim {

namespace {

constexpr double ordinaryMinScale = 0.5;
// So close to a zoom of 1 the canvas counts as not zoomed.
constexpr double unzoomedTolerance = 0.0001;
// View points of the content that a pan leaves in sight, in either direction.
constexpr double leftInSight = 44;

// How far to move so that the content, shown from `low` to `high`, lies in the middle of a view of
// this length, or covers it where it is longer.
double moveToCentre(double low, double high, double length) {
    if (high - low <= length) return (length - (low + high)) / 2;
    if (low > 0) return -low;
    return high < length ? length - high : 0;
}

// How far to move so that enough of the content stays in sight.
double moveIntoReach(double low, double high, double length) {
    const double least = std::min({leftInSight, high - low, length});
    if (low > length - least) return length - least - low;
    return high < least ? least - high : 0;
}

}  // namespace

void CanvasZoom::setPlace(const Place& place) {
    _place = place;
    update();
}

void CanvasZoom::reset() {
    const CanvasZoom old = std::exchange(*this, {});
    _imposedScale = old._imposedScale;
    setPlace(old._place);
}

// ---- what is in force

void CanvasZoom::update() {
    _toView = canvasToView(_place.canvasCenter, _place.bounds.center() + _move, shownScale(),
                           _curRotateDegree, _place.quarterTurns);
    _toCanvas = _toView.inverted();
}

double CanvasZoom::scale() const {
    const double scale = _contextScale * _tmpContextScale;
    if (_isChosen || std::abs(1 - scale) >= unzoomedTolerance) return scale;
    if (_imposedScale > 0.01F) return _imposedScale;
    return _place.isScreenShot ? 0.86 : scale;
}

void CanvasZoom::setImposedScale(float scale) {
    if (!std::isfinite(scale)) return;
    _imposedScale = scale;
    update();
}

// ---- bringing the content into the view

bool CanvasZoom::isLargerThanView(const gfx::Rect& content) const {
    // What fits exactly may come out too large by the last bits.
    constexpr double tolerance = 1e-9;
    const gfx::Size shown = shownSize(content);
    return shown.width > _place.bounds.size.width + tolerance ||
           shown.height > _place.bounds.size.height + tolerance;
}

void CanvasZoom::clamp() {
    _contextScale = std::max(std::min(_contextScale, _place.largestScale), _defaultMinScale);
    update();
}

void CanvasZoom::fit(const gfx::Rect& content) {
    allowOrdinaryZoom();
    if (isLargerThanView(content)) {
        const gfx::Size shown = shownSize(content);
        const gfx::Size room = _place.bounds.size;
        const double fitting =
            scale() * std::min(room.width / shown.width, room.height / shown.height);
        // A pinch under way goes on from there.
        _contextScale = fitting / _tmpContextScale;
        _defaultMinScale = std::min(fitting, ordinaryMinScale);
    }
    clamp();
    centre(content);
}

void CanvasZoom::allowOrdinaryZoom() {
    _defaultMinScale = ordinaryMinScale;
}

void CanvasZoom::showWhole(const gfx::Rect& content) {
    _contextScale = 1;
    _isChosen = false;
    _move = {};
    update();
    fit(content);
}

void CanvasZoom::zoomTo(double scale, const gfx::Rect& content) {
    zoomAbout(_place.bounds.center(), [&] {
        _contextScale = scale;
        _isChosen = true;
        clamp();
    });
    isSmallerThanView(content) ? centre(content) : keepInReach(content);
}

// Holds where the content is smaller in either direction.
bool CanvasZoom::isSmallerThanView(const gfx::Rect& content) const {
    const gfx::Size shown = shownSize(content);
    const gfx::Size room = _place.bounds.size;
    return shown.width < room.width || shown.height < room.height;
}

gfx::Size CanvasZoom::shownSize(const gfx::Rect& content) const {
    return turnedSize(content.size, _place.quarterTurns) * shownScale();
}

// Where the content is seen, from the bounds' corner on.
gfx::Rect CanvasZoom::placeInBounds(const gfx::Rect& content) const {
    return _toView.apply(content).offset(gfx::Point{} - _place.bounds.origin);
}

void CanvasZoom::centre(const gfx::Rect& content) {
    const gfx::Rect shown = placeInBounds(content);
    const gfx::Size room = _place.bounds.size;
    _move = _move + gfx::Point{moveToCentre(shown.minX(), shown.maxX(), room.width),
                               moveToCentre(shown.minY(), shown.maxY(), room.height)};
    update();
}

void CanvasZoom::keepInReach(const gfx::Rect& content) {
    const gfx::Rect shown = placeInBounds(content);
    const gfx::Size room = _place.bounds.size;
    _move = _move + gfx::Point{moveIntoReach(shown.minX(), shown.maxX(), room.width),
                               moveIntoReach(shown.minY(), shown.maxY(), room.height)};
    update();
}

// ---- two fingers

// Keeps the canvas point under a view point where it is while the scale changes.
void CanvasZoom::zoomAbout(gfx::Point focus, const std::function<void()>& change) {
    const gfx::Point fixed = _toCanvas.apply(focus);
    change();
    update();
    _move = _move + (focus - _toView.apply(fixed));
    update();
}

void CanvasZoom::beginPinch() {
    _contextScale = scale() / _tmpContextScale;
    _isChosen = true;
    _isPinching = true;
    // The fingers can go back to where they began.
    _defaultMinScale = std::min(_defaultMinScale, _contextScale);
}

void CanvasZoom::pinch(double factor, gfx::Point focus) {
    zoomAbout(focus, [&] { _tmpContextScale = factor; });
}

void CanvasZoom::endPinch(gfx::Point focus, const gfx::Rect& content) {
    _shownBeforeClamping = _toView;
    _isPinching = false;
    zoomAbout(focus, [this] {
        _contextScale *= _tmpContextScale;
        _tmpContextScale = 1;
        clamp();
    });
    _isPictureShrinked = isSmallerThanView(content);
}

void CanvasZoom::beginPan() {
    _isPanning = true;
    _panTranslation = {};
}

void CanvasZoom::pan(gfx::Point translation) {
    _move = _move + (translation - std::exchange(_panTranslation, translation));
    update();
}

gfx::AffineTransform CanvasZoom::settle(const gfx::Rect& content) {
    const auto before = std::exchange(_shownBeforeClamping, std::nullopt).value_or(_toView);
    if (std::exchange(_isPictureShrinked, false)) {
        centre(content);
    } else {
        keepInReach(content);
    }
    return before;
}

}  // namespace kalim
