#include "kalimkit/image/EditImageModView.h"

namespace kalim {

EditImageModView EditImageModView::initWithCurrentView(const std::shared_ptr<ui::View>& view) {
    EditImageModView record = initWithNewView(view);
    if (!view) return record;
    record.pFrame = view->frame();
    record.pTransform = view->transform();
    record.pCenter = view->center();
    record.pAnchorPoint = view->anchorPoint();
    record.hide = view->isHidden();
    return record;
}

EditImageModView EditImageModView::initWithNewView(const std::shared_ptr<ui::View>& view) {
    EditImageModView record;
    record.qvUIView = view;
    return record;
}

EditImageModView EditImageModView::
    initWithCropGridFrameWithScaleWithOffsetWithCropFrameWithImageFrameWithOrientation(
        const gfx::Rect& gridFrame, float scale, gfx::Point offset, const gfx::Rect& cropFrame,
        const gfx::Rect& imageFrame, std::int32_t orientation) {
    EditImageModView record;
    record.pGridFrame = gridFrame;
    record.pScale = scale;
    record.pOffset = offset;
    record.pCropFrame = cropFrame;
    record.pFrame = imageFrame;
    record.pOrientation = orientation;
    return record;
}

bool EditImageModView::isChanged() const {
    if (modProperty == 0) return true;
    const auto covers = [this](Property property) { return (modProperty & property) != 0; };
    const ui::View* view = qvUIView.get();
    const gfx::AffineTransform transform =
        view ? view->transform() : gfx::AffineTransform{0, 0, 0, 0, 0, 0};
    if (covers(Transform) && pTransform != transform) return true;
    if (covers(Frame) && pFrame != (view ? view->frame() : gfx::Rect{})) return true;
    if (covers(Center) && pCenter != (view ? view->center() : gfx::Point{})) return true;
    if (covers(AnchorPoint) && pAnchorPoint != (view ? view->anchorPoint() : gfx::Point{}))
        return true;
    return covers(Hidden) && hide != (view && view->isHidden());
}

}  // namespace kalim
