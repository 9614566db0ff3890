#include "kalimkit/canvas/CanvasPicture.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "kalimkit/canvas/CanvasMosaic.h"
#include "kalimkit/canvas/PictureLayout.h"
#include "kalimkit/image/MDrawImageUtil.h"
#include "kalimkit/image/SealedBlocks.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

namespace {

// A side that comes out below a point is given one: a very flat picture is squeezed rather than
// lost. Where there is no room at all, the picture stays as it is.
gfx::ImageRef fittedInto(gfx::Size box, const gfx::ImageRef& image, double screenScale) {
    const gfx::ImageRef fitted =
        MDrawImageUtil::resizedImageToFitInSizeScaleIfSmaller(image, box, false, screenScale);
    if (fitted || box.isEmpty()) return fitted ? fitted : image;
    const gfx::PixelSize raster = image->pixelSize();
    const double factor = std::min(box.width / raster.width, box.height / raster.height);
    const gfx::ImageRef squeezed = MDrawImageUtil::resizedImageToSize(
        image, {std::max(raster.width * factor, 1.0), std::max(raster.height * factor, 1.0)},
        screenScale);
    return squeezed ? squeezed : image;
}

}  // namespace

void CanvasPicture::take(const gfx::ImageRef& image, const gfx::Rect& bounds, double basis) {
    *this = {};
    _source = _first = _fitted = _shown = MDrawImageUtil::fixOrientation(image);
    _reductions.take(_source);
    if (_source && basis > 0) {
        _basis = basis;
        settleByBasis();
        return showIn(bounds, ui::Environment::current().screen().scale);
    }
    if (_source) _rect = centredRect(_source->size(), bounds);
    if (!bounds.isEmpty()) settle(bounds);
}

// A side that comes out below a point is given one, as where a view settles the canvas.
void CanvasPicture::settleByBasis() {
    const gfx::PixelSize raster = _source->pixelSize();
    const double points = _basis / std::max({raster.width, raster.height, 1});
    _canvas =
        _rect = {0, 0, std::max(raster.width * points, 1.0), std::max(raster.height * points, 1.0)};
}

void CanvasPicture::settle(const gfx::Rect& bounds) {
    _canvas = _bounds = bounds;
    _screenScale = _firstScale = ui::Environment::current().screen().scale;
    if (!_source) return;
    _fitted = _shown = _first = first();
    _rect = centredRect(_first->size(), bounds);
    if (_cut != PictureCut{}) fit();
}

CanvasPicture::Settlement CanvasPicture::settlement() const {
    return {_canvas, _rect, _basis, _firstScale > 0 ? _firstScale : 1};
}

void CanvasPicture::takeSettled(const gfx::ImageRef& image, const Settlement& settlement,
                                const gfx::Rect& bounds) {
    *this = {};
    _source = _first = _fitted = _shown = MDrawImageUtil::fixOrientation(image);
    _reductions.take(_source);
    _basis = settlement.basis;
    _canvas = settlement.canvas;
    _rect = settlement.rect;
    if (!hasBasis()) {
        _firstScale = settlement.scale;
        if (_source) _first = first();
    }
    showIn(bounds, ui::Environment::current().screen().scale);
}

void CanvasPicture::showIn(const gfx::Rect& bounds, double screenScale) {
    if (bounds.isEmpty() || isShownIn(bounds, screenScale)) return;
    if (!isSettled()) return settle(bounds);
    _bounds = bounds;
    _screenScale = screenScale;
    _fittingScale = 1;
    if (_source) fit();
}

// A part that is shown larger than all of the picture would be is drawn from copies made for the
// zoom: one of the whole picture at that size may be larger than memory.
void CanvasPicture::fit() {
    _fittingScale = scaleIn(_bounds.size);
    const double scale =
        isCropped() ? std::min(_fittingScale, scaleIn(_bounds.size, {})) : _fittingScale;
    if (hasBasis()) {
        _fitted = _shown = redrawn(scale, _screenScale);
    } else {
        _fitted = copy(1, _screenScale);
        _shown = copy(scale, _screenScale);
    }
}

double CanvasPicture::scaleIn(gfx::Size box) const {
    const bool isAsSettled = !hasBasis() && box == _canvas.size && _cut == PictureCut{};
    return isAsSettled || !_source ? 1 : scaleIn(box, _cut);
}

double CanvasPicture::scaleIn(gfx::Size box, const PictureCut& cut) const {
    const gfx::Size size = sizeIn(box, cut);
    const gfx::Size part = turnedSize(partOnCanvas(cut).size, cut.quarterTurns);
    return std::min(size.width / part.width, size.height / part.height);
}

bool CanvasPicture::isShownIn(const gfx::Rect& bounds, double screenScale) const {
    return bounds == _bounds && screenScale == _screenScale;
}

bool CanvasPicture::fillsView() const {
    const gfx::Size shown = turnedSize(part().size, _cut.quarterTurns) * _fittingScale;
    return _source && kalim::fillsView(shown, _bounds.size);
}

gfx::ImageRef CanvasPicture::shownAt(double pixelsPerPoint, PictureReductions::Making making) {
    constexpr double tolerance = 0.5;
    const double wanted = pixelsPerPoint * _rect.size.width;
    if (!_shown || wanted <= _shown->pixelSize().width + tolerance) {
        // A view that rests so has no use for more.
        if (making == PictureReductions::Making::Any) releaseCopies();
        return _lastShown = _shown;
    }
    const gfx::ImageRef copy = _reductions.atLeast(wanted - tolerance, making);
    return _lastShown = copy ? copy : _shown;
}

const gfx::ImageRef& CanvasPicture::repeatedAt(double pixelsPerPoint) const {
    const double wanted = pixelsPerPoint * _rect.size.width;
    // One that is larger than the picture has nothing that the picture does not have.
    const bool isReduced = _shown && _shown->pixelSize().width < _source->pixelSize().width;
    return isReduced && _shown->pixelSize().width + 0.5 >= wanted ? _shown : _source;
}

gfx::ImageRef CanvasPicture::exportedAt(double pixelsPerPoint) {
    if (!_fitted || _cut == PictureCut{}) return _fitted;
    const double wanted = pixelsPerPoint * _rect.size.width;
    if (std::abs(_shown->pixelSize().width - wanted) <= 0.5) return _shown;
    return _reductions.atLeast(wanted, PictureReductions::Making::Any);
}

void CanvasPicture::releaseCopies() {
    _lastShown = nullptr;
    _reductions.release();
}

double CanvasPicture::pixelsPerPoint() const {
    return _source && !_rect.isEmpty() ? _source->pixelSize().width / _rect.size.width : 0;
}

// ---- another picture in its place

CanvasPicture CanvasPicture::over(gfx::ImageRef source) const {
    CanvasPicture other = *this;
    other._source = std::move(source);
    other._first = other._fitted = other._shown = other._lastShown = nullptr;
    other._reductions.take(other._source);
    return other;
}

void CanvasPicture::makeCopies() {
    if (_first || !_source) return;
    _fitted = _shown = _first = first();
    if (!_bounds.isEmpty()) fit();
}

bool CanvasPicture::isShownAs(const CanvasPicture& other) const {
    return _canvas == other._canvas && _rect == other._rect && _basis == other._basis &&
           _cut == other._cut && _firstScale == other._firstScale &&
           isShownIn(other._bounds, other._screenScale);
}

// ---- what of it is shown

void CanvasPicture::setCut(const PictureCut& cut) {
    if (!_source || !isCutOf(cut, _source->pixelSize()) || cut == _cut) return;
    _cut = cut;
    if (!_bounds.isEmpty()) fit();
}

bool CanvasPicture::isCropped() const {
    return _source && isCropOf(_cut, _source->pixelSize());
}

gfx::Rect CanvasPicture::part() const {
    return partOnCanvas(_cut);
}

gfx::Rect CanvasPicture::partOnCanvas(const PictureCut& cut) const {
    if (!_source || !isCropOf(cut, _source->pixelSize())) return _rect;
    const gfx::PixelSize raster = _source->pixelSize();
    const double across = _rect.size.width / raster.width;
    const double down = _rect.size.height / raster.height;
    const auto [origin, size] = partOf(cut, raster);
    return {_rect.minX() + origin.x * across, _rect.minY() + origin.y * down, size.width * across,
            size.height * down};
}

// What the part would measure if it came as a picture to a view of this size, but for the fractions
// of a point that a picture loses there.
gfx::Size CanvasPicture::sizeIn(gfx::Size box, const PictureCut& cut) const {
    const gfx::Size raster = turnedSize(partOf(cut, _source->pixelSize()).size, cut.quarterTurns);
    const gfx::Size natural{raster.width / _source->scale(), raster.height / _source->scale()};
    const bool isSmaller = raster.width < box.width && raster.height < box.height;
    // Lines that are as wide as the picture is large want it to be seen large.
    if (isSmaller && hasBasis()) {
        const double largest = std::min(box.width / raster.width, box.height / raster.height);
        return raster * std::floor(largest);
    }
    if (isSmaller || natural == box) return natural;
    const double factor = std::min(box.width / raster.width, box.height / raster.height);
    return {std::max(raster.width * factor, 1.0), std::max(raster.height * factor, 1.0)};
}

gfx::ImageRef CanvasPicture::blockSource() const {
    if (!hasBasis()) return _first ? _first : first();
    const gfx::PixelSize raster = _source->pixelSize();
    return std::max(raster.width, raster.height) > _basis ? redrawn(1, 1) : _source;
}

int CanvasPicture::sealedLevel() const {
    if (!_source) return smallestSealedBlock;
    const gfx::PixelSize raster = _source->pixelSize();
    const gfx::PixelSize fitted = (_first ? _first : first())->pixelSize();
    const double longest = std::max({raster.width, raster.height, 1});
    const double ofBlocks =
        hasBasis() ? std::min(longest, _basis) : std::max({fitted.width, fitted.height, 1});
    return std::max(static_cast<int>(std::lround(CanvasMosaic::level * longest / ofBlocks)),
                    smallestSealedBlock);
}

// The picture as it was fitted into the canvas, where a view settled that.
gfx::ImageRef CanvasPicture::first() const {
    if (hasBasis() || !isSettled() || _source->size() == _canvas.size) return _source;
    return fittedInto(_canvas.size, _source, _firstScale);
}

gfx::ImageRef CanvasPicture::copy(double factor, double screenScale) const {
    if (factor == 1 && (screenScale == _firstScale || _first == _source)) return _first;
    return redrawn(factor, screenScale);
}

// The picture as many times as large as it lies on the canvas, in whole pixels of the screen. Where
// no surface can be had, a copy of another size serves.
gfx::ImageRef CanvasPicture::redrawn(double factor, double screenScale) const {
    const double pixels = factor * screenScale;
    const gfx::Size size{std::max(std::round(_rect.size.width * pixels), 1.0) / screenScale,
                         std::max(std::round(_rect.size.height * pixels), 1.0) / screenScale};
    const auto surface = ui::Environment::current().device().makeSurface(size, screenScale, false);
    if (!surface) return _first;
    surface->context().setInterpolation(gfx::Interpolation::High);
    surface->context().drawImage(*_source, {{}, size});
    return surface->makeImage();
}

}  // namespace kalim
