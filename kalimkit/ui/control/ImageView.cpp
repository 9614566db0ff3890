#include "kalimkit/ui/control/ImageView.h"

#include <algorithm>
#include <utility>

namespace kalim::ui {

gfx::Rect imageRectIn(const gfx::Rect& rect, gfx::Size imageSize, ContentMode mode) {
    if (rect.isEmpty() || imageSize.isEmpty()) return {rect.origin, {}};
    if (mode == ContentMode::ScaleToFill) return rect;
    const double across = rect.size.width / imageSize.width;
    const double down = rect.size.height / imageSize.height;
    double factor = 1;
    if (mode == ContentMode::AspectFit) factor = std::min(across, down);
    if (mode == ContentMode::AspectFill) factor = std::max(across, down);
    const gfx::Size size = imageSize * factor;
    return {rect.midX() - size.width / 2, rect.midY() - size.height / 2, size.width, size.height};
}

// ---- making

std::shared_ptr<ImageView> ImageView::initWithFrame(const gfx::Rect& frame) {
    struct Constructible : ImageView {};
    const std::shared_ptr<ImageView> view = std::make_shared<Constructible>();
    view->init(frame);
    return view;
}

std::shared_ptr<ImageView> ImageView::initWithImage(gfx::ImageRef image) {
    const gfx::Size size = image ? image->size() : gfx::Size{};
    std::shared_ptr<ImageView> view = initWithFrame({{}, size});
    view->setImage(std::move(image));
    return view;
}

void ImageView::init(const gfx::Rect& frame) {
    View::init(frame);
    setUserInteractionEnabled(false);
}

// ---- properties

void ImageView::setImage(gfx::ImageRef image) {
    if (image == _image) return;
    _image = std::move(image);
    setNeedsDisplay();
}

void ImageView::setContentMode(ContentMode mode) {
    if (mode == _contentMode) return;
    _contentMode = mode;
    setNeedsDisplay();
}

gfx::Rect ImageView::imageRect() const {
    return imageRectIn(bounds(), intrinsicContentSize(), _contentMode);
}

// ---- drawing

void ImageView::drawRect(gfx::Context& context, const gfx::Rect& /*dirty*/) {
    const gfx::Rect rect = imageRect();
    if (rect.isEmpty()) return;
    if (!bounds().contains(rect)) context.clipToRect(bounds());
    context.drawImage(*_image, rect);
}

}  // namespace kalim::ui
