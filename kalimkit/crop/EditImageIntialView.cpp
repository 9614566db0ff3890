#include "kalimkit/crop/EditImageIntialView.h"

#include <utility>

#include "kalimkit/crop/CropParts.h"
#include "kalimkit/crop/CropRest.h"
#include "kalimkit/gfx/Color.h"
#include "kalimkit/image/MDrawImageUtil.h"
#include "kalimkit/theme/SafeArea.h"
#include "kalimkit/theme/TallPhone.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

namespace {

constexpr std::int32_t cropTool = 4;

}  // namespace

// ---- making

EditImageIntialView::EditImageIntialView() : _parts(std::make_unique<Parts>(*this)) {}

EditImageIntialView::~EditImageIntialView() = default;

std::shared_ptr<EditImageIntialView> EditImageIntialView::initWithFrame(const gfx::Rect& frame) {
    struct Constructible : EditImageIntialView {};
    const std::shared_ptr<EditImageIntialView> view = std::make_shared<Constructible>();
    view->init(frame);
    return view;
}

void EditImageIntialView::init(const gfx::Rect& frame) {
    View::init(frame);
    setSides(Sides::Fixed);
    setBackgroundColor(gfx::makeColor(0, 0, 0));
    setMultipleTouchEnabled(true);
    setClipsToBounds(true);
    setAccessibilityRole(ui::AccessibilityRole::Group);
    setAccessibilityLabel(ui::Environment::current().localizedString("裁剪"));
    const auto scroll = EditImageScrollView::initWithFrame(bounds());
    scroll->setDelegate(self());
    scroll->setM_delegate(self());
    addSubview(scroll);
    _parts->board.setScroll(scroll);
}

std::shared_ptr<EditImageIntialView> EditImageIntialView::self() {
    return std::static_pointer_cast<EditImageIntialView>(shared_from_this());
}

// ---- opening

void EditImageIntialView::onEditImageWithEditEntrance(const gfx::ImageRef& /*image*/,
                                                      std::int32_t /*entrance*/) {
    const auto alive = self();
    const std::weak_ptr<EditImageIntialView> weakSelf = alive;
    _parts->board.fadeBar(false);
    const auto delegate = _delegate.lock();
    if (!delegate) return;
    delegate->getOriginalImage([weakSelf](const gfx::ImageRef& original, std::int32_t) {
        if (const auto view = weakSelf.lock()) view->didGetOriginalImage(original);
    });
    delegate->getDisplayImage([weakSelf](const gfx::ImageRef& shown, std::int32_t, std::int32_t) {
        const auto view = weakSelf.lock();
        if (view && shown && !view->_parts->board.picture())
            view->showImage(MDrawImageUtil::fixOrientation(shown));
    });
}

void EditImageIntialView::didGetOriginalImage(const gfx::ImageRef& image) {
    const gfx::ImageRef upright = MDrawImageUtil::fixOrientation(image);
    _parts->board.setPicture(upright);
    if (!upright) return OnClickEditImageBackBarButton();
    if (const auto delegate = _delegate.lock())
        _parts->board.setOpeningCrop(delegate->originalCrop());
    showImage(upright);
    onCropEditImage();
}

// Where whoever opened the editor shows it; else where it fits.
void EditImageIntialView::showImage(const gfx::ImageRef& image) {
    const auto delegate = _delegate.lock();
    std::optional<gfx::Rect> seen = delegate ? delegate->originalImageFrame() : std::nullopt;
    if (seen && seen->isEmpty()) seen = std::nullopt;
    if (seen) seen = toSuperview().inverted().apply(*seen);
    _parts->opening.show(image, seen);
}

void EditImageIntialView::onCropEditImage() {
    if (!_parts->board.picture()) return;
    eIScrollView()->useImageTool(cropTool);
    startCropView(eIScrollView()->cropFrame());
    _isToolBarOccupy = true;
}

void EditImageIntialView::startCropView(const gfx::Rect& frame) {
    if (_parts->board.picture()) _parts->opening.begin(frame, self(), self());
}

// ---- layout

bool EditImageIntialView::isiPhoneX() {
    return isTallPhone(ui::Environment::current().screen());
}

double EditImageIntialView::safeAreaTop() const {
    return safeAreaInsets().top;
}

void EditImageIntialView::safeAreaDidChange() {
    // Laid out for another one.
    _parts->board.forgetLayout();
    setNeedsLayout();
    if (cropToolBar()) cropToolBar()->setNeedsLayout();
}

void EditImageIntialView::layoutSubviews() {
    _parts->board.layOut();
}

// ---- the frame

void EditImageIntialView::updateCropLinesWithPoint(gfx::Point p) {
    _parts->hand.dragTo(p);
}

void EditImageIntialView::setCropFrame(const gfx::Rect& frame) {
    _parts->board.setFrame(frame);
}

void EditImageIntialView::matchOverlayViewToCropGridView() {
    _parts->board.matchOverlay();
}

void EditImageIntialView::moveContentToCenter() {
    const auto alive = self();
    _parts->board.moveToCenter();
}

bool EditImageIntialView::shouldReceiveTouch(const ui::GestureRecognizer& recognizer,
                                             const ui::Touch& touch) {
    return &recognizer != gridPanGes().get() || _parts->hand.takes(touch);
}

// ---- the picture moves under the frame

std::shared_ptr<ui::View> EditImageIntialView::viewForZoomingInScrollView(ui::ScrollView&) {
    return eIScrollView() ? eIScrollView()->imageView() : nullptr;
}

void EditImageIntialView::scrollViewDidScroll(ui::ScrollView& /*view*/) {
    _parts->board.contentDidMove();
}

void EditImageIntialView::scrollViewDidZoom(ui::ScrollView& /*view*/) {
    _parts->board.contentDidMove();
}

void EditImageIntialView::scrollViewWillBeginDragging(ui::ScrollView& /*view*/) {
    _parts->hand.beginMoving();
}

void EditImageIntialView::scrollViewWillBeginZooming(ui::ScrollView& /*view*/) {
    _parts->hand.beginMoving();
}

void EditImageIntialView::scrollViewDidEndDragging(ui::ScrollView& /*view*/,
                                                   bool /*willDecelerate*/) {
    _parts->hand.endMoving();
}

void EditImageIntialView::scrollViewDidEndDecelerating(ui::ScrollView& /*view*/) {
    _parts->hand.endMoving();
}

void EditImageIntialView::scrollViewDidEndZooming(ui::ScrollView& /*view*/, double /*scale*/) {
    _parts->hand.endMoving();
}

// ---- turns

void EditImageIntialView::onCropToolBarRotateBtnClicked() {
    if (isRotationIconLocked()) return;
    const auto alive = self();
    _parts->board.stayHere();
    _parts->turns.turnTo(nextCropOrientation(currentRotationOrientation()), isAnimateEnable(), {});
}

void EditImageIntialView::rotateImageToOrientationWithAnimationCompletion(std::int32_t orientation,
                                                                          bool animated,
                                                                          Completion completion) {
    const auto alive = self();
    _parts->turns.turnTo(orientation, animated, std::move(completion));
}

// ---- reverting

void EditImageIntialView::checkForCanRevert() {
    _parts->board.checkForCanRevert();
}

void EditImageIntialView::onCropToolBarRevertBtnClicked() {
    if (!isRotationIconLocked()) revertLayoutContentImage();
}

void EditImageIntialView::revertLayoutContentImage() {
    const auto alive = self();
    CropBoard& board = _parts->board;
    if (!board.isCropping() || board.isTurning()) return;
    board.stopContent();
    board.letGoOfFingers();
    board.scroll()->stopMoving();
    board.stayHere();
    const std::int32_t turns = cropQuarterTurns(board.orientation(), board.startOrientation());
    // The bright frame cannot grow along, so the darkness goes, and is back once all is bright.
    const auto fadeOverlay = [&board] { board.setOverlayLevel(overlayLevelInDrags); };
    if (turns != 0) {
        board.animate(cropSettleDuration, fadeOverlay);
        return _parts->turns.turnBy(turns, wholePicture(), isAnimateEnable(), {});
    }
    board.animateContent([&] {
        board.placeAtStart();
        fadeOverlay();
    });
    board.bar()->hideRotateBtnWithAnimation(false, true);
}

}  // namespace kalim
