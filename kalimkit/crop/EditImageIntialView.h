#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>

#include "kalimkit/crop/CropEdge.h"
#include "kalimkit/crop/CropLimits.h"
#include "kalimkit/crop/CropPlacement.h"
#include "kalimkit/crop/EditImageCropGridView.h"
#include "kalimkit/crop/EditImageCropToolBarDelegate.h"
#include "kalimkit/crop/EditImageCropToolBarView.h"
#include "kalimkit/crop/EditImageInitialViewDelegate.h"
#include "kalimkit/crop/EditImageScrollView.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Image.h"
#include "kalimkit/ui/control/ScrollViewDelegate.h"
#include "kalimkit/ui/gesture/GestureDelegate.h"
#include "kalimkit/ui/loop/Timer.h"
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
    // Back to the middle of the content, animated.
    void moveContentToCenter();

    // ---- turns
    // The completion is told true at the end; at once, where the picture is turned so already. An
    // orientation that is no turn away is ignored, and the completion told false.
    void rotateImageToOrientationWithAnimationCompletion(std::int32_t orientation, bool animated,
                                                         Completion completion = {});
    bool isRotated() const { return _currentRotationOrientation != 0; }

    // ---- reverting
    void checkForCanRevert();
    bool isCropped() const;
    bool canRevert() const { return _cropToolBar && _cropToolBar->revertBtnEnable(); }
    // Frame, zoom and turns become what they were when crop mode began.
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
    const std::shared_ptr<EditImageScrollView>& eIScrollView() const { return _eIScrollView; }
    const std::shared_ptr<EditImageCropToolBarView>& cropToolBar() const { return _cropToolBar; }
    const std::shared_ptr<EditImageCropGridView>& cropGridView() const { return _cropGridView; }
    std::shared_ptr<EditImageCropOverlayView> overlayView() const { return _overlayView.lock(); }
    const std::shared_ptr<ui::PanGestureRecognizer>& gridPanGes() const { return _gridPanGes; }

    // ---- gestures on the picture
    const std::shared_ptr<ui::RotationGestureRecognizer>& rotationGestureRecognizer() const {
        return _eIScrollView->rotationGestureRecognizer();
    }
    const std::shared_ptr<ui::PinchGestureRecognizer>& pinchGestureRecognizer() const {
        return _eIScrollView->pinchGestureRecognizer();
    }
    const std::shared_ptr<ui::PanGestureRecognizer>& panGestureRecognizer() const {
        return _eIScrollView->panGestureRecognizer();
    }

    // The screen's safe area is another now.
    void safeAreaDidChange();

    // ---- accessibility
    // The crop frame, with the pixels across and down that it cuts out; none before crop mode.
    std::vector<ui::AccessibilityElement> accessibilityElements() override;

    // ---- geometry
    const gfx::Rect& cropFrame() const { return _cropFrame; }
    const gfx::Rect& cropOriginalFrame() const { return _cropOriginalFrame; }
    // The frame stays inside: between the top and the rotate button.
    gfx::Rect contentFrame() const;
    CropEdge cropEdge() const { return _cropEdge; }
    gfx::Point cropTouchPoint() const { return _cropTouchPoint; }
    const gfx::Rect& cropTouchFrame() const { return _cropTouchFrame; }
    double naturalTopLength() const { return _naturalTopLength; }
    // Of the picture at a zoom of 1, as it is turned at present.
    gfx::Size oldStartImageFrameSize() const { return _oldStartImageFrameSize; }
    gfx::Point originalScrollViewOffset() const { return _originalScrollViewOffset; }
    // What the screen's safe area keeps free; the bars need 14 points less at the bottom.
    double safeAreaTop() const;
    double safeAreaBottom() const;
    static bool isiPhoneX();

    // ---- states
    // Quarter turns counter-clockwise since crop mode began, 0 to 3.
    std::int32_t currentRotationOrientation() const { return _currentRotationOrientation; }
    std::int32_t startRotationOrientation() const { return _startRotationOrientation; }
    // The frame is about to go back to the middle.
    bool isTimerRunning() const { return _timer.isRunning(); }
    bool isAnimating() const { return _isAnimating; }
    bool isToolBarOccupy() const { return _isToolBarOccupy; }
    bool isCropOver() const { return _isCropOver; }
    bool isCropStartAnimationReady() const { return _isCropStartAnimationReady; }
    bool isRotating() const { return _isRotating; }
    bool isRotationIconLocked() const { return _isRotationIconLocked; }
    // Whether opening, turning, reverting and leaving are animated; at first they are.
    bool isAnimateEnable() const { return _isAnimateEnable; }
    void setIsAnimateEnable(bool enable) { _isAnimateEnable = enable; }
    // The frame becomes, and stays, a square.
    bool isAspectRatioLocked() const { return _isAspectRatioLocked; }
    void setIsAspectRatioLocked(bool locked) { _isAspectRatioLocked = locked; }
    // Whether confirming a crop that keeps every pixel where it is leaves by the back button's
    // path, so that nothing is replaced. Off at first.
    bool leavesWhenUnchanged() const { return _leavesWhenUnchanged; }
    void setLeavesWhenUnchanged(bool leaves) { _leavesWhenUnchanged = leaves; }
    // Keeps the rotate button in sight during drags.
    bool isInit() const { return _isInit; }
    void setIsInit(bool isInit) { _isInit = isInit; }

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
    // The pan of the frame: touches that land on its border, and no second finger.
    bool shouldReceiveTouch(const ui::GestureRecognizer& recognizer,
                            const ui::Touch& touch) override;

protected:
    EditImageIntialView() : _timer(runLoop()) {}
    void init(const gfx::Rect& frame) override;
    void layoutSubviews() override;

private:
    static ui::RunLoop& runLoop();
    std::shared_ptr<EditImageIntialView> self();
    void after(double delay, void (EditImageIntialView::*step)());
    // Makes changes now, shown over the duration where animations are enabled. The end is called in
    // any case, unless the editor is gone.
    void animate(double duration, const std::function<void()>& changes,
                 const std::function<void()>& end = {});

    // ---- opening (EditImageIntialViewOpening.cpp)
    void didGetOriginalImage(const gfx::ImageRef& image);
    gfx::Rect placeAtOpening(const gfx::ImageRef& image) const;
    void showImage(const gfx::ImageRef& image);
    void makeToolBar();
    void layoutToolBar();
    void startAnimateToCropFrame();
    void postStartCropView();
    void makeGrid();
    void makeGridPan();
    void initContentImage();
    void restoreLayoutContentImage();
    void cropStartAnimationIsReady() { _isCropStartAnimationReady = true; }
    void setEditImageToolBarHiddenWithAnimationInBeganOrEndPhase(bool hidden);

    // ---- layout
    void layoutContent();
    gfx::Rect scrollFrame() const;
    gfx::Rect cropShare() const;
    CropPlacement startPlacement() const;
    CropPicture cropPicture() const;
    void place(const CropPlacement& placement);
    void setScrollViewMaxMinZoomScale();
    void contentDidMove();

    // ---- drags
    void gridPanGestureRecognized(ui::PanGestureRecognizer& pan);
    void croppingView();
    void finishCroppingView() { startTimer(); }
    void finishMovingContent();
    void startTimer();
    void startTimer(double interval);
    void triggerTimer();
    void resetTimer() { _timer.stop(); }
    void animateContent(const std::function<void()>& changes);
    void contentCameToRest(int motion);
    void stopContent();

    // ---- turns (EditImageIntialViewTurns.cpp)
    void turnTo(std::int32_t quarterTurns, const gfx::Rect& share, bool animated,
                Completion completion);
    CropPlacement placementAfter(std::int32_t quarterTurns, const gfx::Rect& share) const;
    void anchorAt(gfx::Point p);
    void showTurn(std::int32_t quarterTurns, const CropPlacement& placement, double scale);
    void finishTurn(std::int32_t quarterTurns, const gfx::Rect& share);
    void rotateImageDirectly(bool isBackwards);
    void commitRotateChanges();
    void revertRotateChanges();
    void revertAllRotationChangesInEditPhase();
    void setGesturesEnabled(bool enabled);
    void letGoOfFingers();

    // ---- leaving
    gfx::Rect cutRect() const;
    bool keepsWholePicture() const;
    gfx::ImageRef cutImage() const;
    void saveProperties();
    void clearOperation();
    void cancelCropToolBar();
    void goBackToEditView() { OnClickEditImageBackBarButton(); }
    void onCropDone() { OnClickEditImageDoneBarButton(); }
    void endEditImageView();

    std::weak_ptr<EditImageInitialViewDelegate> _delegate;
    std::shared_ptr<EditImageScrollView> _eIScrollView;
    std::shared_ptr<EditImageCropToolBarView> _cropToolBar;
    std::shared_ptr<EditImageCropGridView> _cropGridView;
    std::weak_ptr<EditImageCropOverlayView> _overlayView;
    std::shared_ptr<ui::PanGestureRecognizer> _gridPanGes;
    // Upright, before any turn.
    gfx::ImageRef _originalImage;

    gfx::Rect _cropFrame;
    gfx::Rect _cropOriginalFrame;
    CropEdge _cropEdge = CropEdge::None;
    // Where the finger landed whose drag may follow.
    gfx::Point _landingPoint;
    gfx::Point _cropTouchPoint;
    gfx::Rect _cropTouchFrame;
    CropLimits _cropLimits;
    double _naturalTopLength = 0;
    gfx::Size _oldStartImageFrameSize;
    gfx::Point _originalScrollViewOffset;
    // What the layout was made for.
    gfx::Size _laidOutSize;
    std::int32_t _currentRotationOrientation = 0;
    std::int32_t _startRotationOrientation = 0;

    // From the end of a drag until the frame goes back to the middle.
    ui::Timer _timer;
    // Crop mode has begun and its opening is over.
    bool _isCropping = false;
    bool _isAnimating = false;
    // How many times the content has set off.
    int _motions = 0;
    bool _isToolBarOccupy = false;
    bool _isCropOver = false;
    bool _isCropStartAnimationReady = false;
    bool _isAnimateEnable = true;
    bool _isRotating = false;
    bool _isRotationIconLocked = false;
    bool _isAspectRatioLocked = false;
    bool _isInit = false;
    bool _leavesWhenUnchanged = false;
    bool _isFadingOut = false;
};

}  // namespace kalim
