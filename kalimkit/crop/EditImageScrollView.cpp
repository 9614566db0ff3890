#include "kalimkit/crop/EditImageScrollView.h"

#include <algorithm>

#include "kalimkit/ui/gesture/PanGestureRecognizer.h"
#include "kalimkit/ui/gesture/PinchGestureRecognizer.h"

namespace kalim {

namespace {

bool isDrawingTool(std::int32_t tool) {
    return (tool >= 0 && tool <= 3) || tool == 5;
}

}  // namespace

// ---- making

std::shared_ptr<EditImageScrollView> EditImageScrollView::initWithFrame(const gfx::Rect& frame) {
    struct Constructible : EditImageScrollView {};
    const std::shared_ptr<EditImageScrollView> view = std::make_shared<Constructible>();
    view->init(frame);
    return view;
}

void EditImageScrollView::init(const gfx::Rect& frame) {
    ScrollView::init(frame);
    setClipsToBounds(false);
    setAlwaysBounceHorizontal(true);
    setAlwaysBounceVertical(true);
    _imageView = EditImageView::initWithFrame({});
    _imageView->setDelegate(std::static_pointer_cast<EditImageScrollView>(shared_from_this()));
    addSubview(_imageView);
    _toolRotation = std::make_shared<ui::RotationGestureRecognizer>();
    _toolGestures = {std::make_shared<ui::PanGestureRecognizer>(),
                     std::make_shared<ui::PinchGestureRecognizer>(), _toolRotation,
                     std::make_shared<ui::TapGestureRecognizer>(),
                     std::make_shared<ui::LongPressGestureRecognizer>()};
    for (const auto& gesture : _toolGestures) {
        gesture->setEnabled(false);
        addGestureRecognizer(gesture);
    }
}

// ---- the picture

gfx::Rect EditImageScrollView::imageFrame() const {
    return toSuperview().apply(_imageView->frame());
}

void EditImageScrollView::placeImage(gfx::Size size, double zoomScale, gfx::Point origin) {
    setMinimumZoomScale(std::min(minimumZoomScale(), zoomScale));
    setMaximumZoomScale(std::max(maximumZoomScale(), zoomScale));
    setZoomScale(zoomScale);
    const gfx::Size shown = size * zoomScale;
    _imageView->setBounds({{}, size});
    _imageView->setCenter({shown.width / 2, shown.height / 2});
    _imageView->layoutIfNeeded();
    setContentSize(shown);
    setContentOffset(frame().origin - origin);
}

CropZoomLimits EditImageScrollView::zoomLimitsFor(gfx::Size frame) const {
    const double pixels = _imageView->pixelsSeen().width;
    const gfx::Size size = _imageView->bounds().size;
    return pixels > 0 ? cropZoomLimits(size, frame, size.width / pixels) : CropZoomLimits{};
}

gfx::Point EditImageScrollView::coveringOffset(gfx::Point offset) const {
    return {horizontalRange().clamped(offset.x), verticalRange().clamped(offset.y)};
}

// ---- tools

void EditImageScrollView::useImageTool(std::int32_t tool) {
    for (const auto& gesture : _toolGestures)
        gesture->setEnabled(isDrawingTool(tool));
    _imageView->useImageTool(tool);
}

bool EditImageScrollView::admitsGesture(const ui::GestureRecognizer& /*recognizer*/) const {
    if (!_admitsGestures && _refused) _refused();
    return _admitsGestures;
}

// ---- the crop

void EditImageScrollView::cropImage(const gfx::Rect& frame) {
    _cropFrame = frame;
    setBouncesZoom(true);
    adjustScrollViewZoomScale();
    adjustScrollViewContentInset();
}

void EditImageScrollView::adjustScrollViewZoomScale() {
    const CropZoomLimits limits = zoomLimitsFor(_lastGridFrame.size);
    setMinimumZoomScale(limits.minimum);
    setMaximumZoomScale(std::max(limits.maximum, zoomScale()));
}

void EditImageScrollView::adjustScrollViewContentInset() {
    const gfx::Rect own = frame();
    const gfx::Rect& grid = _lastGridFrame;
    setContentInset({grid.minY() - own.minY(), grid.minX() - own.minX(), own.maxY() - grid.maxY(),
                     own.maxX() - grid.maxX()});
}

// ---- delegate

void EditImageScrollView::editImageViewDidStartDraw() {
    if (const auto delegate = _m_delegate.lock()) delegate->editImageViewDidStartDraw();
}

void EditImageScrollView::editImageViewdidEndDraw() {
    if (const auto delegate = _m_delegate.lock()) delegate->editImageViewdidEndDraw();
}

}  // namespace kalim
