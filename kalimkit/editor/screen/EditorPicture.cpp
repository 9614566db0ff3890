#include "kalimkit/editor/screen/EditorPicture.h"

#include <algorithm>
#include <utility>

#include "kalimkit/theme/HexColor.h"
#include "kalimkit/tool/MUndoManager.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

// ---- making

void EditorPicture::makeCanvas(bool isHidden) {
    _canvas = MDrawView::initWithFrame({});
    _canvas->setLargestMagnification(_largestMagnification);
    _canvas->setForgiving(_stage.isForgiving());
    _canvas->setPlacesPoints(_stage.isForgiving());
    _canvas->setClipsToPicture(_clipsToPicture);
    _canvas->setCanvasBasis(_canvasBasis);
    _canvas->setFScal(_fScal);
    _canvas->setHidden(isHidden);
}

void EditorPicture::showCanvas(std::weak_ptr<MDrawViewDelegate> delegate) {
    applyOwnWays();
    _canvas->setSnipImage(_snipImage);
    _canvas->setDrawViewdelegate(std::move(delegate));
    _canvas->setAccessibilityRole(ui::AccessibilityRole::Canvas);
    _canvas->setAccessibilityLabel(ui::Environment::current().localizedString("画布"));
    _stage.view().addSubview(_canvas);
}

// A document that was opened brings others along.
void EditorPicture::applyOwnWays() {
    const gfx::ColorRef black = gfx::makeColor(0, 0, 0);
    _canvas->setTextMaskColorsParForTextColors(
        {{gfx::makeColor(1, 1, 1), black}, {colorWithHexString("FFF700"), black}});
    _canvas->setClipsToPicture(_clipsToPicture);
}

// ---- what the host wants

void EditorPicture::setForgiving(bool forgiving) {
    if (!_canvas) return;
    _canvas->setForgiving(forgiving);
    _canvas->setPlacesPoints(forgiving);
}

void EditorPicture::setLargestMagnification(double pixels) {
    _largestMagnification = pixels;
    if (_canvas) _canvas->setLargestMagnification(pixels);
}

void EditorPicture::setCanvasBasis(double points) {
    _canvasBasis = points;
    if (_canvas) _canvas->setCanvasBasis(points);
}

void EditorPicture::setClipsToPicture(bool clips) {
    _clipsToPicture = clips;
    if (_canvas) _canvas->setClipsToPicture(clips);
}

// ---- changes

std::optional<std::string> EditorPicture::open(const Document& document,
                                               const gfx::ImageRef& picture) {
    if (auto problem = _canvas->openDocument(document, picture)) return problem;
    _isDocument = true;
    _hasCropped = _isCroped = false;
    if (!_snipImage) _snipImage = picture;
    return std::nullopt;
}

void EditorPicture::open(const gfx::ImageRef& image) {
    _isDocument = false;
    _hasCropped = false;
    _hasOpened = true;
    applyOwnWays();
    _canvas->setSnipImage(image);
}

void EditorPicture::takePicked(const gfx::ImageRef& image) {
    if (image) {
        open(image);
    } else {
        _isDocument = false;
        _canvas->setSnipImage(nullptr);
    }
    if (!_snipImage) _snipImage = image;
}

void EditorPicture::takeCropped(const gfx::ImageRef& image) {
    const gfx::ImageRef content = exported();
    // In points the two differ although nothing was cut: what was cut out has a scale of 1.
    if (content && image && content->pixelSize() != image->pixelSize()) _isCroped = true;
    _hasCropped = true;
    _isDocument = false;
    _canvas->setSnipImage(image);
}

bool EditorPicture::takeCut(const PictureCut& cut, const gfx::Rect& seenAt) {
    if (!cutsGeometry()) return false;
    const gfx::PixelSize pixels = _canvas->sourceImage()->pixelSize();
    const int turns = _canvas->pictureCut().quarterTurns;
    const gfx::Size turned = turnedSize(partOf({}, pixels).size, turns);
    const gfx::PixelSize handedOver{static_cast<int>(turned.width),
                                    static_cast<int>(turned.height)};
    PictureCut whole{std::nullopt, (turns + cut.quarterTurns) % 4};
    if (cut.crop) whole.crop = turnedPart(*cut.crop, handedOver, 4 - turns);
    _canvas->setPictureCutSeenAt(whole, _canvas->toSuperview().inverted().apply(seenAt));
    return true;
}

// ---- readings

// Without a picture there is nothing but what is drawn to be cut.
bool EditorPicture::cutsGeometry() const {
    return _cropKeepsDrawings && _canvas && _canvas->sourceImage();
}

bool EditorPicture::hasCropped() const {
    return _hasCropped || (_canvas && _canvas->pictureCut() != PictureCut{});
}

bool EditorPicture::isCroped() const {
    if (_isCroped || !_canvas || !_canvas->sourceImage()) return _isCroped;
    const gfx::PixelSize pixels = _canvas->sourceImage()->pixelSize();
    const PictureCut& cut = _canvas->pictureCut();
    return turnedSize(partOf(cut, pixels).size, cut.quarterTurns) != partOf({}, pixels).size;
}

void EditorPicture::noteSaved() {
    if (_canvas) _savedCount = _canvas->undoManager().changeCount();
}

// What is under way has no step yet, and counts.
bool EditorPicture::isSaved() const {
    return _savedCount == _canvas->undoManager().changeCount() && !_canvas->curEdittingTextTool() &&
           std::ranges::none_of(_canvas->tools(), &MDrawTool::hasUnrecordedChange);
}

bool EditorPicture::hasWork() const {
    if (!_canvas || isSaved()) return false;
    return _isDocument ? _canvas->canUndo() || _hasCropped : _canvas->hasDrawed() || hasCropped();
}

gfx::ImageRef EditorPicture::pictureToCrop() const {
    if (!cutsGeometry()) return exported();
    return turnedImage(_canvas->exportUncutImage(), _canvas->pictureCut().quarterTurns);
}

gfx::Rect EditorPicture::contentToCrop() const {
    return cutsGeometry() ? _canvas->bgImgRect() : _canvas->ctxRect();
}

std::optional<gfx::Rect> EditorPicture::presentCrop() const {
    if (!cutsGeometry()) return std::nullopt;
    const PictureCut& cut = _canvas->pictureCut();
    const gfx::PixelSize pixels = _canvas->sourceImage()->pixelSize();
    if (!isCropOf(cut, pixels)) return std::nullopt;
    return turnedPart(*cut.crop, pixels, cut.quarterTurns);
}

gfx::ImageRef EditorPicture::exported() const {
    return _exportsAtPictureScale ? _canvas->exportImageAtPictureScale() : _canvas->exportImage();
}

gfx::Rect EditorPicture::shown(const gfx::Rect& rect) const {
    return _canvas->toSuperview().apply(_canvas->mViewTransform().apply(rect));
}

}  // namespace kalim
