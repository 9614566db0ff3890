#include "kalimkit/editor/screen/TesselViewController.h"

#include <utility>

#include "kalimkit/theme/HexColor.h"
#include "kalimkit/tool/MDrawLogUtil.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/gesture/TapGestureRecognizer.h"

namespace kalim {

namespace {

constexpr const char* ringHintKey = "canUseRingAnimation";
constexpr int confirmButtonTag = 100001;

}  // namespace

// ---- making

std::shared_ptr<TesselViewController>
TesselViewController::initWithSourceImageScaleNeedInitAnimateFromRectFromScaleWithDelegate(
    gfx::ImageRef image, float scale, bool needInitAnimate, const gfx::Rect& fromRect,
    double fromScale, std::weak_ptr<TesselViewControllerDelegate> delegate) {
    struct Constructible : TesselViewController {};
    std::shared_ptr<TesselViewController> controller = std::make_shared<Constructible>();
    controller->_needInitAnimate = needInitAnimate;
    controller->_fromScale = fromScale;
    controller->_fromRect = fromRect;
    controller->_fsacal = scale;
    controller->_delegate = std::move(delegate);
    controller->_snipImage = std::move(image);
    return controller;
}

std::shared_ptr<TesselViewController>
TesselViewController::initWithSourceImageNeedInitAnimateFromRectWithDelegate(
    gfx::ImageRef image, bool needInitAnimate, const gfx::Rect& fromRect,
    std::weak_ptr<TesselViewControllerDelegate> delegate) {
    return initWithSourceImageScaleNeedInitAnimateFromRectFromScaleWithDelegate(
        std::move(image), 0, needInitAnimate, fromRect, 0, std::move(delegate));
}

std::shared_ptr<TesselViewController> TesselViewController::initWithSourceImageWithDelegate(
    gfx::ImageRef image, std::weak_ptr<TesselViewControllerDelegate> delegate) {
    return initWithSourceImageNeedInitAnimateFromRectWithDelegate(std::move(image), false, {},
                                                                  std::move(delegate));
}

TesselViewController::~TesselViewController() {
    MDrawLogUtil::sharedInstance().clearLogTransferBlock(this);
}

std::shared_ptr<TesselViewController> TesselViewController::self() {
    return std::static_pointer_cast<TesselViewController>(shared_from_this());
}

void TesselViewController::after(double delay, std::function<void(TesselViewController&)> step) {
    const std::weak_ptr<TesselViewController> weakSelf = self();
    ui::Environment::current().runLoop().after(delay, [weakSelf, step = std::move(step)] {
        if (const auto controller = weakSelf.lock()) step(*controller);
    });
}

void TesselViewController::log(const std::string& text, const char* method) {
    MDrawLogUtil::sharedInstance().logInfoMethodName(text, method);
}

// ---- for the host

void TesselViewController::setTopNavigationItemTitle(bool isCloseButton, const std::string& title) {
    makeToolView();
    if (isCloseButton) {
        _toolView->closeButton()->setTitle(title);
    } else {
        _toolView->confirmButton()->setTitle(title);
    }
    _toolView->setNeedsLayout();
}

void TesselViewController::setForgiving(bool forgiving) {
    _forgiving = forgiving;
    if (_drawView) _drawView->setForgiving(forgiving);
    if (!_penPopView) return;
    for (const auto& picker : {_colorPopView, _sizePopView, _penPopView})
        picker->setTakesTouchesWhileFolding(forgiving);
}

void TesselViewController::setCanvasBasis(double points) {
    _canvasBasis = points;
    if (_drawView) _drawView->setCanvasBasis(points);
}

void TesselViewController::setLaysPictureBetweenBars(bool lays) {
    _laysPictureBetweenBars = lays;
    if (_drawView) view()->setNeedsLayout();
}

void TesselViewController::setClipsToPicture(bool clips) {
    _clipsToPicture = clips;
    if (_drawView) _drawView->setClipsToPicture(clips);
}

void TesselViewController::setLargestMagnification(double pixels) {
    _largestMagnification = pixels;
    if (_drawView) _drawView->setLargestMagnification(pixels);
}

void TesselViewController::setLogTranferBlock(std::function<void(const std::string& text)> block) {
    _transBlock = std::move(block);
    doApplyTransBlockToCoreModel();
}

void TesselViewController::doApplyTransBlockToCoreModel() {
    MDrawLogUtil& relay = MDrawLogUtil::sharedInstance();
    // Not what another editor, or the application, has set.
    if (!_transBlock) return relay.clearLogTransferBlock(this);
    const std::weak_ptr<TesselViewController> weakSelf = self();
    const auto forward = [weakSelf](const std::string& text) {
        const auto controller = weakSelf.lock();
        if (!controller) return;
        // The host may replace the callback while it runs.
        const auto block = controller->_transBlock;
        if (block) block(text);
    };
    relay.setLogTransferBlock(forward, this);
}

void TesselViewController::setDelegate(std::weak_ptr<TesselViewControllerDelegate> delegate) {
    _delegate = std::move(delegate);
}

// ---- coming and going

void TesselViewController::viewDidLoad() {
    view()->setBackgroundColor(gfx::makeColor(0, 0, 0));
    initSubviews();
}

void TesselViewController::viewWillAppear(bool /*animated*/) {
    ui::Environment::current().setStatusBarHidden(true, false);
}

void TesselViewController::viewDidAppear(bool /*animated*/) {
    setNeedsStatusBarAppearanceUpdate();
    after(0, [](TesselViewController& controller) { controller.setUpAfterAppearance(); });
}

void TesselViewController::viewWillDisappear(bool /*animated*/) {
    log("draw viewWillDisappear ", "viewWillDisappear:");
    ui::Environment::current().setStatusBarHidden(false, false);
}

void TesselViewController::viewDidDisappear(bool /*animated*/) {
    // A question that nobody can answer for the editor any more.
    if (const auto sheet = std::exchange(_actionSheet, nullptr)) sheet->removeFromSuperview();
    // Hidden by the way out; whoever shows the editor again is to see it.
    if (!_viewAnimateImageView) _drawView->setHidden(_needInitAnimate);
}

void TesselViewController::setUpAfterAppearance() {
    initData();
    initSubviews2();
    // An editor that comes back to the screen keeps the tool that the user has.
    if (!std::exchange(_hasAppeared, true)) initDraw();
    resetOffset();
    animateEditShape();
    after(0.25, [](TesselViewController& controller) { controller.startRingHint(); });
}

void TesselViewController::startRingHint() {
    // On until the user has once opened the panel.
    const bool isWanted = ui::Environment::current().userDefault(ringHintKey).value_or(true);
    _penView->setCanUseRingAnimation(isWanted);
    log(std::string("draw canUseRingAnimation ") + (isWanted ? "1" : "0"), "viewDidAppear:");
    // The panel covers it; closing that shows it.
    if (!_showPanel && !_isAnimation) _penView->ringAnimationOp(1);
}

int TesselViewController::clickAtPenView() {
    const auto alive = self();
    if (_penView->canUseRingAnimation()) {
        ui::Environment::current().setUserDefault(ringHintKey, false);
        _penView->ringAnimationOp(0);
        _penView->setCanUseRingAnimation(false);
    }
    if (_isAnimation) return 0;
    if (_showPanel) {
        hidePop();
    } else {
        showPop();
    }
    return 0;
}

// ---- set-up

void TesselViewController::initSubviews() {
    _shouldBlinkPenview = true;
    makeCanvas();
    if (_needInitAnimate) {
        makeTransitionView(_snipImage);
        placeTransitionView(_fromRect, _fromScale);
        view()->addSubview(_viewAnimateImageView);
    }
    _maskView = QNTMaskView::init();
    _maskView->setBackgroundColor(nullptr);
    _maskView->setHidden(true);
    _maskView->setDelegate(self());
    view()->addSubview(_maskView);

    makeToolView();
    _toolView->setAlpha(_needInitAnimate ? 0 : 1);
    view()->addSubview(_toolView);

    _nibView = TesselDot::initWithSize(2);
    _nibView->setColor(gfx::makeColor(1, 0, 0));
    _nibView->setResponseConfig(false);
    _nibView->setHidden(true);
    view()->addSubview(_nibView);

    makePenButton();
    makePanel();
}

void TesselViewController::makeCanvas() {
    _drawView = MDrawView::initWithFrame({});
    _drawView->setLargestMagnification(_largestMagnification);
    _drawView->setForgiving(_forgiving);
    _drawView->setClipsToPicture(_clipsToPicture);
    _drawView->setCanvasBasis(_canvasBasis);
    _drawView->setFScal(_fsacal);
    _drawView->setHidden(_needInitAnimate);
    doApplyTransBlockToCoreModel();
    const gfx::ColorRef black = gfx::makeColor(0, 0, 0);
    _drawView->setTextMaskColorsParForTextColors(
        {{gfx::makeColor(1, 1, 1), black}, {colorWithHexString("FFF700"), black}});
    _drawView->setSnipImage(_snipImage);
    _drawView->setDrawViewdelegate(self());
    _drawView->setAccessibilityRole(ui::AccessibilityRole::Canvas);
    _drawView->setAccessibilityLabel(ui::Environment::current().localizedString("画布"));
    view()->addSubview(_drawView);
}

void TesselViewController::makeToolView() {
    if (_toolView) return;
    _toolView = TesselTopTool::init();
    _toolView->setDelegate(self());
}

void TesselViewController::makePenButton() {
    _penView = TesselPenView::initWithFrame({});
    _penView->setDelegate(self());
    _penView->setAlpha(0);
    view()->addSubview(_penView);
}

void TesselViewController::makePanel() {
    const std::weak_ptr<TesselViewController> weakSelf = self();
    _panelView = ui::View::initWithFrame({});
    const auto tap = std::make_shared<ui::TapGestureRecognizer>();
    tap->setDelegate(self());
    tap->setHandler([weakSelf](ui::GestureRecognizer& recognizer) {
        if (recognizer.state() != ui::GestureState::Ended) return;
        if (const auto controller = weakSelf.lock()) controller->clickAtMaskView();
    });
    _panelView->addGestureRecognizer(tap);
    _panelView->setHidden(true);
    view()->addSubview(_panelView);

    _confirmButton = TesselConfirmButton::init();
    _confirmButton->setTag(confirmButtonTag);
    _confirmButton->addAction(ui::ControlEvent::TouchUpInside, [weakSelf](ui::Control&) {
        if (const auto controller = weakSelf.lock()) controller->clickAtConfirm();
    });
    _confirmButton->setHidden(true);
    view()->addSubview(_confirmButton);
}

}  // namespace kalim
