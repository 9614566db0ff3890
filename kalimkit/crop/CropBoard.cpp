#include "kalimkit/crop/CropBoard.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "kalimkit/crop/CropDrag.h"
#include "kalimkit/crop/CropLayout.h"
#include "kalimkit/crop/CropRest.h"
#include "kalimkit/theme/SafeArea.h"
#include "kalimkit/tool/QVGeometry.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

namespace {

// This margin lies around the content; below it the bar has the rotate button above it.
constexpr double contentMargin = 20;
constexpr double barsInSafeArea = 14;
constexpr double bottomBars = 60 + 63;
constexpr double barHeight = 63;
// Of the bar's top from the bottom of the view or of what is safe there.
constexpr double barRise = 60;
constexpr double showDuration = 0.3;
// What makes a zoom differ from the least one.
constexpr double zoomTolerance = 0.01;
// The grid lies under the tool bar.
constexpr std::size_t gridIndex = 1;

}  // namespace

CropBoard::CropBoard(ui::View& view) : _view(view), _timer(ui::Environment::current().runLoop()) {}

// ---- views

void CropBoard::makeBar(std::weak_ptr<EditImageCropToolBarDelegate> delegate) {
    if (_bar) return;
    _bar = EditImageCropToolBarView::init();
    _bar->setBBtnUseWord(true);
    _bar->setDelegate(std::move(delegate));
    layOutBar();
    _bar->setSides(ui::View::Sides::Reading);
    _view.addSubview(_bar);
    // Before the animation that opens the editor, in which the buttons would fly to their places.
    _bar->layoutIfNeeded();
    _bar->setAlpha(1);
}

void CropBoard::layOutBar() const {
    const auto [width, height] = _view.bounds().size;
    _bar->setFrame({0, height - barRise - safeAreaBottom(), width, barHeight});
}

void CropBoard::fadeBar(bool hidden) const {
    if (!_bar) return;
    animate(showDuration, [this, hidden] { _bar->setAlpha(hidden ? 0 : 1); });
}

void CropBoard::makeGrid() {
    if (_grid) return;
    _grid = EditImageCropGridView::initWithFrame(_frame);
    _grid->setUserInteractionEnabled(false);
    _grid->setAlpha(0);
    _view.insertSubview(_grid, gridIndex);
    animate(showDuration, [this] { _grid->setAlpha(1); });
}

void CropBoard::setOverlayLevel(std::int32_t level) const {
    if (const auto shade = overlay()) shade->setOverlayLevel(level);
}

void CropBoard::matchOverlay() const {
    const auto shade = overlay();
    if (!_bar || !_grid || !shade) return;
    shade->setZoomScale(_scroll->zoomScale());
    shade->setBrightFrame(_grid->convertRectTo(_grid->bounds(), shade.get()));
}

void CropBoard::darkenAroundOpeningCrop() const {
    const auto shade = overlay();
    if (!shade || !_openingCrop) return;
    const gfx::Rect share = openingShare();
    const gfx::Size size = _scroll->imageView()->bounds().size;
    shade->setZoomScale(_scroll->zoomScale());
    shade->setBrightFrame({share.minX() * size.width, share.minY() * size.height,
                           share.size.width * size.width, share.size.height * size.height});
    shade->setOverlayLevel(overlayLevelWhenOver);
}

// ---- the picture

void CropBoard::setOrientations(std::int32_t orientation, std::int32_t start) {
    _orientation = orientation;
    _startOrientation = start;
}

void CropBoard::turnPicture(bool isBackwards) {
    _orientation = (_orientation + (isBackwards ? 3 : 1)) % 4;
    _scroll->imageView()->showPicture(_picture, (_orientation - _startOrientation + 4) % 4);
}

CropPicture CropBoard::measures() const {
    gfx::PixelSize raster = _picture ? _picture->pixelSize() : gfx::PixelSize{};
    if ((_orientation - _startOrientation) % 2 != 0) raster = {raster.height, raster.width};
    return {_imageSize, raster, _scroll->zoomScale()};
}

// ---- layout

double CropBoard::safeAreaBottom() const {
    return std::max(safeAreaInsets().bottom - barsInSafeArea, 0.0);
}

// Whole points, so that what fits it touches its sides.
gfx::Rect CropBoard::contentFrame() const {
    const gfx::Size size = _view.bounds().size;
    // The picture does not go by the language.
    const ui::EdgeInsets safe = safeAreaInsets(ui::Environment::current().screen());
    const double top = safe.top + contentMargin;
    const double bottom = safeAreaBottom() + bottomBars + contentMargin;
    const double width = std::floor(size.width - safe.horizontal() - 2 * contentMargin);
    return {safe.left + contentMargin, top, std::max(width, leastCropSide),
            std::max(std::floor(size.height - top - bottom), leastCropSide)};
}

// Moved down by the natural top length: with that the content inset is as it has to be, see
// cropContentInset().
gfx::Rect CropBoard::scrollFrame() const {
    const auto [width, height] = _view.bounds().size;
    const double top = safeAreaInsets().top;
    return {0, _naturalTopLength + top, width, height - 2 * top};
}

void CropBoard::layOutScroll(gfx::Size seen) {
    _laidOutSize = _view.bounds().size;
    _naturalTopLength = cropNaturalTopLength(seen, _laidOutSize);
    _scroll->setFrame(scrollFrame());
}

void CropBoard::layOut() {
    if (_view.bounds().size == _laidOutSize || _isTurning) return;
    if (_bar) layOutBar();
    if (!_isCropping) return;
    const gfx::Rect kept = share();
    // Not as it is laid out, in whole points: what is not cropped is to stay so.
    const gfx::Size pixels = _scroll->imageView()->pixelsSeen();
    const bool isMoving = _isAnimating;
    _laidOutSize = _view.bounds().size;
    stopContent();
    letGoOfFingers();
    layOutScroll(startPlacement().imageSize);
    _originalFrame = startPlacement().frame;
    place(CropPlacement::settled(pixels, kept, contentFrame()));
    // The end of what was moving, which sees to that, does not come.
    if (isMoving) setOverlayLevel(overlayLevelAtRest);
}

// ---- the frame

void CropBoard::setFrame(const gfx::Rect& frame) {
    _frame = frame;
    if (_grid) {
        _grid->setFrame(frame);
        _grid->layoutIfNeeded();
    }
    _scroll->setContentInset(
        cropContentInset(frame, _view.bounds().size, _naturalTopLength, safeAreaInsets().top));
    limitZoom();
    const gfx::Point offset = _scroll->contentOffset();
    const gfx::Point covering = _scroll->coveringOffset(offset);
    if (covering != offset) _scroll->setContentOffset(covering);
    if (!_isAnimating) matchOverlay();
    checkForCanRevert();
}

// A zoom above the largest one stays: the frame has taken it there.
void CropBoard::limitZoom() {
    const auto [size, raster, zoom] = measures();
    const double pointsPerPixel = raster.isEmpty() ? 0 : size.width / raster.width;
    const CropZoomLimits limits = cropZoomLimits(size, _frame.size, pointsPerPixel);
    _scroll->setMinimumZoomScale(limits.minimum);
    _scroll->setMaximumZoomScale(std::max(limits.maximum, zoom));
    if (zoom >= limits.minimum) return;
    // The picture turns about the middle of the frame.
    const gfx::Point middle = _frame.center() - _scroll->frame().origin;
    const gfx::Point place = _scroll->contentOffset() + middle;
    _scroll->setZoomScale(limits.minimum);
    _scroll->setContentOffset(place * (limits.minimum / zoom) - middle);
}

gfx::Rect CropBoard::share() const {
    const gfx::Rect image = _scroll->imageFrame();
    if (image.isEmpty()) return wholePicture();
    return coveredCropShare({(_frame.minX() - image.minX()) / image.size.width,
                             (_frame.minY() - image.minY()) / image.size.height,
                             _frame.size.width / image.size.width,
                             _frame.size.height / image.size.height});
}

void CropBoard::place(const CropPlacement& placement) {
    _imageSize = placement.imageSize;
    _scroll->placeImage(placement.imageSize, placement.zoomScale, placement.image.origin);
    setFrame(placement.frame);
}

CropPlacement CropBoard::startPlacement() const {
    const gfx::PixelSize pixels = _picture->pixelSize();
    return CropPlacement::settled(
        {static_cast<double>(pixels.width), static_cast<double>(pixels.height)}, wholePicture(),
        contentFrame());
}

void CropBoard::placeAtStart() {
    place(startPlacement());
    setOverlayLevel(overlayLevelAtRest);
}

CropPlacement CropBoard::openingPlacement() const {
    if (!_openingCrop) return startPlacement();
    return CropPlacement::settled(partOf({}, _picture->pixelSize()).size, openingShare(),
                                  contentFrame());
}

gfx::Rect CropBoard::openingShare() const {
    const gfx::Size whole = partOf({}, _picture->pixelSize()).size;
    const auto [origin, size] = _openingCrop.value_or(gfx::Rect({}, whole));
    return {origin.x / whole.width, origin.y / whole.height, size.width / whole.width,
            size.height / whole.height};
}

void CropBoard::placeAtOpening() {
    place(openingPlacement());
    setOverlayLevel(overlayLevelAtRest);
}

void CropBoard::restart() {
    _originalFrame = startPlacement().frame;
    placeAtOpening();
}

PictureCut CropBoard::chosenCut() const {
    // Of a pixel; what goes to points and back comes to the same pixels.
    constexpr double tolerance = 1e-3;
    const gfx::PixelSize raster = measures().raster;
    const gfx::Rect part = share();
    const gfx::Rect seen{part.minX() * raster.width, part.minY() * raster.height,
                         part.size.width * raster.width, part.size.height * raster.height};
    const gfx::Rect pixels =
        seen.inset(tolerance, tolerance).roundedOut().intersection(partOf({}, raster));
    const int turns = (_orientation - _startOrientation + 4) % 4;
    const PictureCut cut{turnedPart(pixels, raster, 4 - turns), turns};
    return isCropOf(cut, _picture->pixelSize()) ? cut : PictureCut{std::nullopt, turns};
}

bool CropBoard::isCropped() const {
    const double beyondLeast = _scroll->zoomScale() - _scroll->minimumZoomScale();
    if (beyondLeast > zoomTolerance) return true;
    if (!QVSizeApproximateEqual(_frame.size, _originalFrame.size)) return true;
    return _isAspectRatioLocked &&
           !QVPointApproximateEqual(_scroll->contentOffset(), _originalOffset);
}

void CropBoard::checkForCanRevert() const {
    if (_bar) _bar->canRevertEnable(isRotated() || isCropped());
}

// ---- fingers

void CropBoard::setGesturesEnabled(bool enabled) const {
    if (_gridPan) _gridPan->setEnabled(enabled);
    _scroll->panGestureRecognizer()->setEnabled(enabled);
    _scroll->pinchGestureRecognizer()->setEnabled(enabled);
}

void CropBoard::letGoOfFingers() const {
    setGesturesEnabled(false);
    setGesturesEnabled(true);
}

}  // namespace kalim
