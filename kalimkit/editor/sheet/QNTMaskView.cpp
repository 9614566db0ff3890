#include "kalimkit/editor/sheet/QNTMaskView.h"

#include "kalimkit/theme/FrameworkImages.h"

namespace kalim {

std::shared_ptr<QNTMaskView> QNTMaskView::init() {
    struct Constructible : QNTMaskView {};
    const std::shared_ptr<QNTMaskView> mask = std::make_shared<Constructible>();
    mask->init(gfx::Rect{});
    return mask;
}

void QNTMaskView::init(const gfx::Rect& frame) {
    View::init(frame);
    // The check mark closes the panel too, and is announced.
    setAccessibilityHidden(true);
    _gradientView =
        ui::ImageView::initWithImage(imageNamedForFramework("background_mask_gradient"));
    addSubview(_gradientView);
}

void QNTMaskView::touchesBegan(const ui::TouchEvent& event) {
    const auto alive = shared_from_this();
    if (const auto delegate = _delegate.lock()) delegate->clickAtMaskView();
    View::touchesBegan(event);
}

void QNTMaskView::layoutSubviews() {
    _gradientView->setFrame(bounds());
}

}  // namespace kalim
