#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "kalimkit/crop/CropEdge.h"
#include "kalimkit/crop/EditImageCropGridView.h"
#include "kalimkit/crop/EditImageCropToolBarDelegate.h"
#include "kalimkit/crop/EditImageCropToolBarView.h"
#include "kalimkit/crop/EditImageInitialViewDelegate.h"
#include "kalimkit/crop/EditImageScrollView.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Image.h"
#include "kalimkit/ui/control/ScrollViewDelegate.h"
#include "kalimkit/ui/gesture/GestureDelegate.h"
#include "kalimkit/ui/view/View.h"

namespace kalim {

// The crop editor, as large as the screen: a frame whose edges and corners are dragged, under it
// the picture, which is moved, zoomed and turned by quarters, and the tool bar. The picture always
// covers the frame. Shortly after a drag the frame goes back to the middle, as large as it fits,
// and takes the picture along.
//
// It is opened by onEditImageWithEditEntrance(), opens with an animation, and ends through its
// delegate, which takes it off the screen: with what was cut out, or without. Coordinates are its
// own points; durations are seconds.
class KALIM_API EditImageIntialView : public ui::View,
                                      public EditImageCropToolBarDelegate,
                                      public EditImageOperationDelegate,
                                      public ui::ScrollViewDelegate,
                                      public ui::GestureDelegate {
public:
    using Completion = std::function<void(bool finished)>;

    static std::shared_ptr<EditImageIntialView> initWithFrame(const gfx::Rect& frame);
    ~EditImageIntialView() override;

    // ---- opening
    // Asks the delegate for the picture; neither argument is looked at. Crop mode begins as soon as
    // the picture is there; without one the editor leaves at once, by the back button's path.
    void onEditImageWithEditEntrance(const gfx::ImageRef& image, std::int32_t entrance);
    // Begins crop mode; ignored while no picture is displayed.
    void onCropEditImage();
    // The frame is where the picture is seen at first.
    void startCropView(const gfx::Rect& frame);

    // ---- the frame
    CropEdge cropEdgeForPoint(gfx::Point p) const;
    // Drags the held edge or corner to a point, as far as CropLimits allow.
    void updateCropLinesWithPoint(gfx::Point p);
    // Moves grid, inset, zoom limits and bright frame along, and the picture as far as it must to
    // cover the frame.
    void setCropFrame(const gfx::Rect& frame);
    void matchOverlayViewToCropGridView();
    // Glides back to the middle of the content.
    void moveContentToCenter();

    // ---- turns
    // The completion is told true at the end; at once, where the picture is turned so already. An
    // orientation that is no turn away is ignored, and the completion told false.
    void rotateImageToOrientationWithAnimationCompletion(std::int32_t orientation, bool animated,
                                                         Completion completion = {});
    bool isRotated() const;

    // ---- reverting
    void checkForCanRevert();
    bool isCropped() const;
    bool canRevert() const;
    // Whether another part is under the frame, or it is turned otherwise, than when crop mode
    // began.
    bool hasChanged() const;
    // Frame and zoom become those of the whole picture, and the turns what they were when crop mode
    // began.
    void revertLayoutContentImage();

    // ---- from the tool bar; ignored while the rotation icon is locked
    void onCropToolBarDoneBtnClicked() override;
    void onCropToolBarCancelBtnClicked() override;
    void onCropToolBarRevertBtnClicked() override;
    void onCropToolBarRotateBtnClicked() override;
    void OnClickEditImageBackBarButton();
    // Ignored while no picture is displayed.
    void OnClickEditImageDoneBarButton();
    // Leaves its superview; it fades out with what it shows and takes no touches meanwhile.
    void fadeOut();

    // ---- parts; what crop mode needs is null before it begins for the first time
    const std::shared_ptr<EditImageScrollView>& eIScrollView() const;
    const std::shared_ptr<EditImageCropToolBarView>& cropToolBar() const;
    const std::shared_ptr<EditImageCropGridView>& cropGridView() const;
    std::shared_ptr<EditImageCropOverlayView> overlayView() const;
    const std::shared_ptr<ui::PanGestureRecognizer>& gridPanGes() const;

    // ---- gestures on the picture
    const std::shared_ptr<ui::RotationGestureRecognizer>& rotationGestureRecognizer() const;
    const std::shared_ptr<ui::PinchGestureRecognizer>& pinchGestureRecognizer() const;
    const std::shared_ptr<ui::PanGestureRecognizer>& panGestureRecognizer() const;

    // The screen's safe area is another now.
    void safeAreaDidChange();

    // ---- accessibility
    // The crop frame, with the pixels across and down that it cuts out; none before crop mode.
    std::vector<ui::AccessibilityElement> accessibilityElements() override;

    // ---- geometry
    const gfx::Rect& cropFrame() const;
    const gfx::Rect& cropOriginalFrame() const;
    // The frame stays inside: between the top and the rotate button.
    gfx::Rect contentFrame() const;
    CropEdge cropEdge() const;
    gfx::Point cropTouchPoint() const;
    const gfx::Rect& cropTouchFrame() const;
    double naturalTopLength() const;
    // Of the picture at a zoom of 1, as it is turned at present.
    gfx::Size oldStartImageFrameSize() const;
    gfx::Point originalScrollViewOffset() const;
    // What the screen's safe area keeps free; the bars need 14 points less at the bottom.
    double safeAreaTop() const;
    double safeAreaBottom() const;
    static bool isiPhoneX();

    // ---- states
    // Quarter turns counter-clockwise since crop mode began, 0 to 3.
    std::int32_t currentRotationOrientation() const;
    std::int32_t startRotationOrientation() const;
    // The frame is about to go back to the middle.
    bool isTimerRunning() const;
    bool isAnimating() const;
    bool isToolBarOccupy() const { return _isToolBarOccupy; }
    bool isCropOver() const;
    bool isCropStartAnimationReady() const;
    bool isRotating() const;
    bool isRotationIconLocked() const;
    // Whether opening, turning, reverting and leaving are animated; at first they are.
    bool isAnimateEnable() const;
    void setIsAnimateEnable(bool enable);
    // The frame becomes, and stays, a square.
    bool isAspectRatioLocked() const;
    void setIsAspectRatioLocked(bool locked);
    // Whether confirming a crop that keeps every pixel where it is leaves by the back button's
    // path, so that nothing is replaced. Off at first.
    bool leavesWhenUnchanged() const { return _leavesWhenUnchanged; }
    void setLeavesWhenUnchanged(bool leaves) { _leavesWhenUnchanged = leaves; }
    // Whether a drag of the frame is taken back when a second finger comes at once: two fingers
    // were meant. Off at first.
    void setForgiving(bool forgiving);
    // Over an edge or a corner of the frame the way that it can be dragged; the picture is moved.
    std::optional<ui::Cursor> cursorAt(gfx::Point p) override;
    // Keeps the rotate button in sight during drags.
    bool isInit() const;
    void setIsInit(bool isInit);

    // ---- delegate
    std::shared_ptr<EditImageInitialViewDelegate> delegate() const { return _delegate.lock(); }
    void setDelegate(std::weak_ptr<EditImageInitialViewDelegate> delegate) {
        _delegate = std::move(delegate);
    }

    // ---- for the picture's view and the recognisers
    std::shared_ptr<ui::View> viewForZoomingInScrollView(ui::ScrollView& view) override;
    void scrollViewDidScroll(ui::ScrollView& view) override;
    void scrollViewDidZoom(ui::ScrollView& view) override;
    void scrollViewWillBeginDragging(ui::ScrollView& view) override;
    void scrollViewDidEndDragging(ui::ScrollView& view, bool willDecelerate) override;
    void scrollViewDidEndDecelerating(ui::ScrollView& view) override;
    void scrollViewWillBeginZooming(ui::ScrollView& view) override;
    void scrollViewDidEndZooming(ui::ScrollView& view, double scale) override;
    // The pan of the frame takes touches that land on its border, and no second finger.
    bool shouldReceiveTouch(const ui::GestureRecognizer& recognizer,
                            const ui::Touch& touch) override;

protected:
    EditImageIntialView();
    void init(const gfx::Rect& frame) override;
    void layoutSubviews() override;

private:
    struct Parts;

    std::shared_ptr<EditImageIntialView> self();
    void didGetOriginalImage(const gfx::ImageRef& image);
    void showImage(const gfx::ImageRef& image);

    // ---- leaving
    gfx::Rect cutRect() const;
    bool isUnchanged() const;
    bool keepsWholePicture() const;
    gfx::ImageRef cutImage() const;
    void saveProperties();
    void clearOperation();
    void endEditImageView();

    std::weak_ptr<EditImageInitialViewDelegate> _delegate;
    std::unique_ptr<Parts> _parts;
    bool _isToolBarOccupy = false;
    bool _leavesWhenUnchanged = false;
    bool _isFadingOut = false;
};

}  // namespace kalim
