#include "kalimkit/crop/CropHand.h"

#include <utility>

#include "kalimkit/crop/CropRest.h"
#include "kalimkit/gfx/GraphicsState.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/view/Touch.h"

namespace kalim {

namespace {

constexpr double levelDuration = 0.3;
// Seconds within which two fingers have come together.
constexpr double companionTime = 0.15;

}  // namespace

// ---- on the frame

void CropHand::makePan(std::weak_ptr<ui::GestureDelegate> delegate) {
    if (_board.gridPan()) return;
    const auto recognizer = std::make_shared<ui::PanGestureRecognizer>();
    recognizer->setMaximumNumberOfTouches(1);
    recognizer->setDelegate(std::move(delegate));
    recognizer->setHandler(
        [this, weakView = _board.view().weak_from_this()](ui::GestureRecognizer& moved) {
            const auto alive = weakView.lock();
            if (alive) pan(static_cast<ui::PanGestureRecognizer&>(moved));
        });
    _board.scroll()->panGestureRecognizer()->requireToFail(recognizer);
    _board.view().addGestureRecognizer(recognizer);
    // The view owns both.
    _board.scroll()->setRefusalHandler([this] { takeBack(); });
    _board.setGridPan(recognizer);
}

bool CropHand::takes(const ui::Touch& touch) {
    const ui::GestureState state = _board.gridPan()->state();
    if (state == ui::GestureState::Began || state == ui::GestureState::Changed) takeBack();
    if (state == ui::GestureState::Changed) return false;
    const gfx::Point p = touch.locationIn(&_board.view());
    const auto& bar = _board.bar();
    const bool isOnBar = bar && touch.view() && touch.view()->isDescendantOf(*bar);
    // On its way back to the middle the frame is caught where it is seen.
    if (isOnBar || !isOnCropBorder(p, _board.grid()->shownFrame())) return false;
    _landingPoint = p;
    _isFinger = _takesBack && touch.contact().kind == ui::TouchKind::Finger;
    _landingTime = ui::Environment::current().runLoop().now();
    return true;
}

void CropHand::pan(const ui::PanGestureRecognizer& pan) {
    if (_board.isOver()) return;
    const gfx::Point p = pan.locationIn(&_board.view());
    const bool isOver =
        pan.state() == ui::GestureState::Ended || pan.state() == ui::GestureState::Cancelled;
    if (pan.state() == ui::GestureState::Began) takeHold(p);
    _board.scroll()->setAdmitsGestures(isOver);
    if (isOver) _board.settleSoon();
    if (!_isTakenBack) dragTo(p);
    isOver || _isTakenBack || !_isFinger ? hideLoupe() : showLoupe(p);
}

// Two fingers that come together are not meant for an edge.
void CropHand::takeBack() {
    const ui::Time age = ui::Environment::current().runLoop().now() - _landingTime;
    if (!_takesBack || age > companionTime || _edge == CropEdge::None) return;
    _isTakenBack = true;
    hideLoupe();
    _edge = CropEdge::None;
    _board.setFrame(_touchFrame);
}

// All that lies under the finger: the picture in its place, and the frame.
void CropHand::showLoupe(gfx::Point p) {
    if (!_loupe) {
        _loupe = ui::Loupe::showOver(_board.view(), [this](gfx::Context& context) {
            const auto draw = [&context](ui::View& part) {
                const gfx::GraphicsStateGuard guard(context);
                context.translate(part.frame().minX(), part.frame().minY());
                part.renderIn(context);
            };
            draw(*_board.scroll());
            draw(*_board.grid());
        });
    }
    _loupe->moveTo(p);
}

void CropHand::hideLoupe() {
    if (const auto loupe = std::exchange(_loupe, nullptr)) loupe->removeFromSuperview();
}

void CropHand::takeHold(gfx::Point p) {
    _board.scroll()->stopMoving();
    begin();
    _isTakenBack = false;
    _touchPoint = p;
    _touchFrame = _board.frame();
    _limits = CropLimits::from(
        cropOutcome(_board.measures(), _touchFrame.size, _board.contentFrame().size));
    _edge = edgeAt(p);
    // A quick finger has left the edge before the drag begins.
    if (_edge == CropEdge::None) _edge = edgeAt(_landingPoint);
}

void CropHand::dragTo(gfx::Point p) {
    const CropDrag drag{_edge,
                        _touchPoint,
                        _touchFrame,
                        _board.contentFrame(),
                        _board.isAspectRatioLocked(),
                        _board.measures(),
                        _limits};
    _board.setFrame(drag.frameAt(p, _board.frame()));
}

void CropHand::begin() {
    if (!_board.isTurning()) {
        _board.stopContent();
        _board.matchOverlay();
        _board.animate(levelDuration, [this] { _board.setOverlayLevel(overlayLevelInDrags); });
        if (!_keepsRotateButton) _board.bar()->hideRotateBtnWithAnimation(true, true);
    }
    _board.stayHere();
}

// ---- on the picture

void CropHand::beginMoving() {
    if (_board.isCropping()) begin();
}

void CropHand::endMoving() {
    const EditImageScrollView& scroll = *_board.scroll();
    const bool isMoving = scroll.isDragging() || scroll.isZooming() || scroll.isDecelerating() ||
                          scroll.isZoomBouncing();
    if (_board.isCropping() && !_board.isOver() && !isMoving) _board.settleSoon();
}

}  // namespace kalim
