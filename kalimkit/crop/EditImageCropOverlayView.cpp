#include "kalimkit/crop/EditImageCropOverlayView.h"

#include <optional>
#include <utility>

#include "kalimkit/gfx/Color.h"
#include "kalimkit/ui/motion/ShapeLayer.h"

namespace kalim {

namespace {

// How far the darkness reaches beyond the overlay, points.
constexpr double margin = 2;
// How far the hole reaches beyond the bright frame, points at a zoom of 1.
constexpr double holeMargin = 1;

std::optional<double> opacityOf(std::int32_t level) {
    switch (level) {
        case 1:
            return 1.0;
        case 2:
            return 0.8;
        case 3:
            return 0.0;
        default:
            return std::nullopt;
    }
}

}  // namespace

std::shared_ptr<EditImageCropOverlayView> EditImageCropOverlayView::initWithFrame(
    const gfx::Rect& frame) {
    struct Constructible : EditImageCropOverlayView {};
    const std::shared_ptr<EditImageCropOverlayView> view = std::make_shared<Constructible>();
    view->init(frame);
    return view;
}

void EditImageCropOverlayView::init(const gfx::Rect& frame) {
    View::init(frame);
    setUserInteractionEnabled(false);
    _blackLayer = ui::View::initWithFrame(layerRect());
    _blackLayer->setBackgroundColor(gfx::makeColor(0, 0, 0));
    addSubview(_blackLayer);
    setMaskPath({});
}

gfx::Rect EditImageCropOverlayView::layerRect() const {
    return {0, 0, bounds().size.width + margin, bounds().size.height + margin};
}

void EditImageCropOverlayView::layoutSubviews() {
    if (_blackLayer->frame() == layerRect()) return;
    _blackLayer->setFrame(layerRect());
    updateMask();
}

void EditImageCropOverlayView::setBrightFrame(const gfx::Rect& frame) {
    if (frame == _brightFrame) return;
    _brightFrame = frame;
    updateMask();
}

void EditImageCropOverlayView::setZoomScale(double scale) {
    if (scale == _zoomScale || !(scale > 0)) return;
    _zoomScale = scale;
    updateMask();
}

// Four rectangles around the hole; where they overlap, they are as dark as elsewhere.
void EditImageCropOverlayView::updateMask() {
    if (_brightFrame == frame() || _brightFrame == gfx::Rect{}) return setMaskPath({});
    const gfx::Rect layer = layerRect();
    const gfx::Rect hole = _brightFrame;
    const double beyond = holeMargin / _zoomScale;
    const double top = hole.minY() - beyond;
    const double right = hole.maxX() + beyond;
    const double bottom = hole.maxY() + beyond;
    const double left = hole.minX() - beyond;
    gfx::Path dark;
    dark.addRect(gfx::Rect::spanning({0, 0}, {layer.maxX(), top}));
    dark.addRect(gfx::Rect::spanning({right, top}, {layer.maxX(), bottom}));
    dark.addRect(gfx::Rect::spanning({0, bottom}, {layer.maxX(), layer.maxY()}));
    dark.addRect(gfx::Rect::spanning({0, top}, {left, bottom}));
    setMaskPath(std::move(dark));
}

void EditImageCropOverlayView::setMaskPath(gfx::Path dark) {
    const auto mask = std::make_shared<ui::ShapeLayer>();
    mask->setFrame(layerRect());
    mask->setFillColor(gfx::makeColor(0, 0, 0));
    mask->setPath(std::move(dark));
    _blackLayer->setMask(mask);
}

void EditImageCropOverlayView::setOverlayLevel(std::int32_t level) {
    if (level == _overlayLevel) return;
    _overlayLevel = level;
    if (const std::optional<double> opacity = opacityOf(level)) _blackLayer->setAlpha(*opacity);
}

}  // namespace kalim
