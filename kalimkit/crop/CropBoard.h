#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "kalimkit/crop/CropLimits.h"
#include "kalimkit/crop/CropPlacement.h"
#include "kalimkit/crop/EditImageCropGridView.h"
#include "kalimkit/crop/EditImageCropToolBarView.h"
#include "kalimkit/crop/EditImageScrollView.h"
#include "kalimkit/gfx/Image.h"
#include "kalimkit/gfx/Rect.h"
#include "kalimkit/image/PictureCut.h"
#include "kalimkit/ui/loop/Timer.h"
#include "kalimkit/ui/view/View.h"

namespace kalim {

// What the parts of the crop editor work on: the picture in its scroll view, the frame over it with
// its grid and its darkness, the bar; where all that is, and how it comes to rest. The view owns
// the parts, so that none outlives it; what they set going ends with it. Points of that view.
class CropBoard {
public:
    explicit CropBoard(ui::View& view);

    // ---- time. Where the outside calls in, the view is held meanwhile.
    std::function<void()> whileThere(std::function<void()> step) const;
    void after(double delay, std::function<void()> step) const;
    // Makes changes now, shown over the duration where animations are enabled. The end is called in
    // any case, unless the view is gone.
    void animate(double duration, const std::function<void()>& changes,
                 const std::function<void()>& end = {}) const;
    bool isAnimateEnable() const { return _isAnimateEnable; }
    void setIsAnimateEnable(bool enable) { _isAnimateEnable = enable; }

    // ---- views
    ui::View& view() const { return _view; }
    const std::shared_ptr<EditImageScrollView>& scroll() const { return _scroll; }
    void setScroll(std::shared_ptr<EditImageScrollView> scroll) { _scroll = std::move(scroll); }
    // Null until crop mode begins for the first time, and so is the grid.
    const std::shared_ptr<EditImageCropToolBarView>& bar() const { return _bar; }
    void makeBar(std::weak_ptr<EditImageCropToolBarDelegate> delegate);
    void fadeBar(bool hidden) const;
    const std::shared_ptr<EditImageCropGridView>& grid() const { return _grid; }
    void makeGrid();
    std::shared_ptr<EditImageCropOverlayView> overlay() const { return _overlay.lock(); }
    void takeOverlay() { _overlay = _scroll->imageView()->overlayView(); }
    void setOverlayLevel(std::int32_t level) const;
    void matchOverlay() const;
    // Until there is a frame: all but the opening crop is dark.
    void darkenAroundOpeningCrop() const;

    // ---- the picture: upright, before any turn; null for none
    const gfx::ImageRef& picture() const { return _picture; }
    void setPicture(gfx::ImageRef picture) { _picture = std::move(picture); }
    // The part that the frame lies around when crop mode begins, its pixels; nothing for all of it.
    const std::optional<gfx::Rect>& openingCrop() const { return _openingCrop; }
    void setOpeningCrop(const std::optional<gfx::Rect>& crop) { _openingCrop = crop; }
    // Quarter turns counter-clockwise: as it is seen, and as it was when crop mode began.
    std::int32_t orientation() const { return _orientation; }
    std::int32_t startOrientation() const { return _startOrientation; }
    void setOrientations(std::int32_t orientation, std::int32_t start);
    // It is seen turned by a quarter from then on, so that frame, zoom and cut need not know of
    // turns; its pixels are turned when they are cut.
    void turnPicture(bool isBackwards);
    bool isRotated() const { return _orientation != 0; }
    // Describes what lies under the frame.
    CropPicture measures() const;

    // ---- what goes on
    // Crop mode has begun and its opening is over.
    bool isCropping() const { return _isCropping; }
    void setIsCropping(bool isCropping) { _isCropping = isCropping; }
    // The user has confirmed or left.
    bool isOver() const { return _isOver; }
    void setIsOver(bool isOver) { _isOver = isOver; }
    // A turn is under way, whose end lays everything out.
    bool isTurning() const { return _isTurning; }
    void setIsTurning(bool isTurning) { _isTurning = isTurning; }

    // ---- layout
    gfx::Rect contentFrame() const;
    double safeAreaBottom() const;
    // For a view of another size. What is under way comes to its end first.
    void layOut();
    // Whatever it was laid out for does not count any more.
    void forgetLayout() { _laidOutSize = {}; }
    // Lays out the scroll view for a picture that is seen in that size.
    void layOutScroll(gfx::Size seen);
    gfx::Rect scrollFrame() const;
    double naturalTopLength() const { return _naturalTopLength; }

    // ---- the frame
    const gfx::Rect& frame() const { return _frame; }
    // Changes nothing else.
    void startFrame(const gfx::Rect& frame) { _frame = frame; }
    // Moves grid, inset, zoom limits and bright frame along, and the picture as far as it must to
    // cover the frame.
    void setFrame(const gfx::Rect& frame);
    // The part of the picture that is under it.
    gfx::Rect share() const;
    void place(const CropPlacement& placement);
    // Where picture and frame are while nothing of it is cropped.
    CropPlacement startPlacement() const;
    void placeAtStart();
    // Where they are at first, with the crop that there is already.
    CropPlacement openingPlacement() const;
    void placeAtOpening();
    gfx::Rect openingShare() const;
    // Also keeps what a crop is measured by.
    void restart();
    // What lies under the frame, in whole pixels, and the turns since crop mode began.
    PictureCut chosenCut() const;
    const gfx::Rect& originalFrame() const { return _originalFrame; }
    // Of the picture at a zoom of 1, as it is turned at present.
    gfx::Size imageSize() const { return _imageSize; }
    gfx::Point originalOffset() const { return _originalOffset; }
    void keepOffset() { _originalOffset = _scroll->contentOffset(); }
    bool isAspectRatioLocked() const { return _isAspectRatioLocked; }
    void setIsAspectRatioLocked(bool locked) { _isAspectRatioLocked = locked; }
    bool isCropped() const;
    void checkForCanRevert() const;

    // ---- motion and rest (CropBoardMotion.cpp)
    bool isAnimating() const { return _isAnimating; }
    void animateContent(const std::function<void()>& changes);
    // What moves by itself stays where it is seen at this moment, frame and picture alike; else
    // each part that is not changed next would go on by itself.
    void stopContent();
    // Frame and picture glide back to the middle.
    void moveToCenter();
    // The same, after a delay in which nothing else begins.
    void settleAfter(double delay);
    void settleSoon();
    void stayHere() { _timer.stop(); }
    bool isAboutToSettle() const { return _timer.isRunning(); }
    void contentDidMove() const;

    // ---- fingers
    const std::shared_ptr<ui::PanGestureRecognizer>& gridPan() const { return _gridPan; }
    void setGridPan(std::shared_ptr<ui::PanGestureRecognizer> pan) { _gridPan = std::move(pan); }
    void setGesturesEnabled(bool enabled) const;
    // Those that are down have no more say.
    void letGoOfFingers() const;

private:
    void layOutBar() const;
    void limitZoom();
    void cameToRest(int motion);

    ui::View& _view;
    std::shared_ptr<EditImageScrollView> _scroll;
    std::shared_ptr<EditImageCropToolBarView> _bar;
    std::shared_ptr<EditImageCropGridView> _grid;
    std::weak_ptr<EditImageCropOverlayView> _overlay;
    std::shared_ptr<ui::PanGestureRecognizer> _gridPan;
    gfx::ImageRef _picture;
    std::optional<gfx::Rect> _openingCrop;
    std::int32_t _orientation = 0;
    std::int32_t _startOrientation = 0;
    gfx::Rect _frame;
    gfx::Rect _originalFrame;
    gfx::Size _imageSize;
    gfx::Point _originalOffset;
    double _naturalTopLength = 0;
    // What the layout was made for.
    gfx::Size _laidOutSize;
    // From the end of a drag until the frame goes back to the middle.
    ui::Timer _timer;
    // How many times the content has set off.
    int _motions = 0;
    bool _isAnimating = false;
    bool _isAnimateEnable = true;
    bool _isAspectRatioLocked = false;
    bool _isCropping = false;
    bool _isOver = false;
    bool _isTurning = false;
};

}  // namespace kalim
