#include <cmath>
#include <string>

#include "kalimkit/crop/CropParts.h"
#include "kalimkit/crop/EditImageIntialView.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

// ---- accessibility

std::vector<ui::AccessibilityElement> EditImageIntialView::accessibilityElements() {
    const CropBoard& board = _parts->board;
    if (!board.grid() || !board.picture()) return {};
    gfx::PixelSize pixels = board.picture()->pixelSize();
    if (board.orientation() % 2 != 0) pixels = {pixels.height, pixels.width};
    const gfx::Rect share = board.share();
    // The pixels that the frame touches, but for what the arithmetic leaves beside it.
    const auto length = [](double from, double part, int whole) {
        constexpr double tolerance = 1e-6;
        return std::to_string(std::lround(std::ceil((from + part) * whole - tolerance) -
                                          std::floor(from * whole + tolerance)));
    };
    return {{.key = 1,
             .role = ui::AccessibilityRole::Image,
             .label = ui::Environment::current().localizedString("裁剪框"),
             .value = length(share.minX(), share.size.width, pixels.width) + " × " +
                      length(share.minY(), share.size.height, pixels.height),
             .frame = board.frame()}};
}

// ---- what the parts say

bool EditImageIntialView::isRotated() const {
    return _parts->board.isRotated();
}

bool EditImageIntialView::isCropped() const {
    return _parts->board.isCropped();
}

bool EditImageIntialView::hasChanged() const {
    const CropBoard& board = _parts->board;
    // Where there was a crop already there is something to revert from the beginning on.
    if (!board.openingCrop()) return canRevert();
    if (!board.isCropping() || !board.picture()) return false;
    return board.chosenCut() != PictureCut{board.openingCrop(), 0};
}

bool EditImageIntialView::canRevert() const {
    return _parts->board.bar() && _parts->board.bar()->revertBtnEnable();
}

CropEdge EditImageIntialView::cropEdgeForPoint(gfx::Point p) const {
    return _parts->hand.edgeAt(p);
}

gfx::Rect EditImageIntialView::contentFrame() const {
    return _parts->board.contentFrame();
}

double EditImageIntialView::safeAreaBottom() const {
    return _parts->board.safeAreaBottom();
}

const std::shared_ptr<EditImageScrollView>& EditImageIntialView::eIScrollView() const {
    return _parts->board.scroll();
}

const std::shared_ptr<EditImageCropToolBarView>& EditImageIntialView::cropToolBar() const {
    return _parts->board.bar();
}

const std::shared_ptr<EditImageCropGridView>& EditImageIntialView::cropGridView() const {
    return _parts->board.grid();
}

std::shared_ptr<EditImageCropOverlayView> EditImageIntialView::overlayView() const {
    return _parts->board.overlay();
}

const std::shared_ptr<ui::PanGestureRecognizer>& EditImageIntialView::gridPanGes() const {
    return _parts->board.gridPan();
}

const std::shared_ptr<ui::RotationGestureRecognizer>&
EditImageIntialView::rotationGestureRecognizer() const {
    return _parts->board.scroll()->rotationGestureRecognizer();
}

const std::shared_ptr<ui::PinchGestureRecognizer>& EditImageIntialView::pinchGestureRecognizer()
    const {
    return _parts->board.scroll()->pinchGestureRecognizer();
}

const std::shared_ptr<ui::PanGestureRecognizer>& EditImageIntialView::panGestureRecognizer() const {
    return _parts->board.scroll()->panGestureRecognizer();
}

const gfx::Rect& EditImageIntialView::cropFrame() const {
    return _parts->board.frame();
}

const gfx::Rect& EditImageIntialView::cropOriginalFrame() const {
    return _parts->board.originalFrame();
}

CropEdge EditImageIntialView::cropEdge() const {
    return _parts->hand.edge();
}

gfx::Point EditImageIntialView::cropTouchPoint() const {
    return _parts->hand.touchPoint();
}

const gfx::Rect& EditImageIntialView::cropTouchFrame() const {
    return _parts->hand.touchFrame();
}

double EditImageIntialView::naturalTopLength() const {
    return _parts->board.naturalTopLength();
}

gfx::Size EditImageIntialView::oldStartImageFrameSize() const {
    return _parts->board.imageSize();
}

gfx::Point EditImageIntialView::originalScrollViewOffset() const {
    return _parts->board.originalOffset();
}

std::int32_t EditImageIntialView::currentRotationOrientation() const {
    return _parts->board.orientation();
}

std::int32_t EditImageIntialView::startRotationOrientation() const {
    return _parts->board.startOrientation();
}

bool EditImageIntialView::isTimerRunning() const {
    return _parts->board.isAboutToSettle();
}

bool EditImageIntialView::isAnimating() const {
    return _parts->board.isAnimating();
}

bool EditImageIntialView::isCropOver() const {
    return _parts->board.isOver();
}

bool EditImageIntialView::isCropStartAnimationReady() const {
    return _parts->opening.isReady();
}

bool EditImageIntialView::isRotating() const {
    return _parts->board.isTurning();
}

bool EditImageIntialView::isRotationIconLocked() const {
    return _parts->turns.isLocked();
}

bool EditImageIntialView::isAnimateEnable() const {
    return _parts->board.isAnimateEnable();
}

void EditImageIntialView::setIsAnimateEnable(bool enable) {
    _parts->board.setIsAnimateEnable(enable);
}

bool EditImageIntialView::isAspectRatioLocked() const {
    return _parts->board.isAspectRatioLocked();
}

void EditImageIntialView::setIsAspectRatioLocked(bool locked) {
    _parts->board.setIsAspectRatioLocked(locked);
}

void EditImageIntialView::setForgiving(bool forgiving) {
    _parts->hand.setTakesBack(forgiving);
}

std::optional<ui::Cursor> EditImageIntialView::cursorAt(gfx::Point p) {
    using ui::Cursor;
    constexpr Cursor cursors[] = {Cursor::Move,       Cursor::ResizeEW,   Cursor::ResizeEW,
                                  Cursor::ResizeNS,   Cursor::ResizeNS,   Cursor::ResizeNWSE,
                                  Cursor::ResizeNESW, Cursor::ResizeNESW, Cursor::ResizeNWSE};
    const auto& pan = _parts->board.gridPan();
    const bool isDragged = pan && (pan->state() == ui::GestureState::Began ||
                                   pan->state() == ui::GestureState::Changed);
    const CropEdge held = isDragged ? _parts->hand.edge() : CropEdge::None;
    const bool isOnEdge = cropGridView() && isOnCropBorder(p, cropFrame());
    const CropEdge edge = held != CropEdge::None ? held
                          : isOnEdge             ? _parts->hand.edgeAt(p)
                                                 : CropEdge::None;
    return cursors[static_cast<std::size_t>(edge)];
}

bool EditImageIntialView::isInit() const {
    return _parts->hand.keepsRotateButton();
}

void EditImageIntialView::setIsInit(bool isInit) {
    _parts->hand.setKeepsRotateButton(isInit);
}

}  // namespace kalim
