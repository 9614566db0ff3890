#include "kalimkit/imageedit/crop/EditImageView.h"

namespace kalim {

namespace {

constexpr std::int32_t noTool = -1;
constexpr std::int32_t levelThatShowsEverything = 3;

}  // namespace

std::shared_ptr<EditImageView> EditImageView::initWithFrame(const gfx::Rect& frame) {
    struct Constructible : EditImageView {};
    const std::shared_ptr<EditImageView> view = std::make_shared<Constructible>();
    view->init(frame);
    return view;
}

void EditImageView::init(const gfx::Rect& frame) {
    ImageView::init(frame);
    _overlayView = EditImageCropOverlayView::initWithFrame(bounds());
    addSubview(_overlayView);
}

void EditImageView::layoutSubviews() {
    _overlayView->setFrame(bounds());
}

void EditImageView::drawRect(gfx::Context& context, const gfx::Rect& dirty) {
    if (!_reducedImage || context.transform().isScaleAndTranslation())
        return ImageView::drawRect(context, dirty);
    const gfx::Rect rect = imageRect();
    if (!rect.isEmpty()) context.drawImage(*_reducedImage, rect);
}

void EditImageView::onClickCancelBtn() {
    _imageTool = noTool;
    _overlayView->setOverlayLevel(levelThatShowsEverything);
}

void EditImageView::editImageViewDidStartDraw() {
    if (const auto delegate = _delegate.lock()) delegate->editImageViewDidStartDraw();
}

void EditImageView::editImageViewdidEndDraw() {
    if (const auto delegate = _delegate.lock()) delegate->editImageViewdidEndDraw();
}

}  // namespace kalim
