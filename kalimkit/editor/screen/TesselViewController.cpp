#include "kalimkit/editor/screen/TesselViewController.h"

#include <utility>

#include "kalimkit/editor/screen/EditorParts.h"
#include "kalimkit/tool/MDrawLogUtil.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

namespace {

// The ring around the pen button comes so long after the appearance.
constexpr double ringDelay = 0.25;

}  // namespace

// ---- making

TesselViewController::TesselViewController()
    : EditorReading(static_cast<ui::ViewController&>(*this)) {}

std::shared_ptr<TesselViewController>
TesselViewController::initWithSourceImageScaleNeedInitAnimateFromRectFromScaleWithDelegate(
    gfx::ImageRef image, float scale, bool needInitAnimate, const gfx::Rect& fromRect,
    double fromScale, std::weak_ptr<TesselViewControllerDelegate> delegate) {
    struct Constructible : TesselViewController {};
    std::shared_ptr<TesselViewController> controller = std::make_shared<Constructible>();
    controller->parts().transition.setStart(needInitAnimate, fromRect, fromScale);
    controller->parts().picture.setFScal(scale);
    controller->parts().picture.setSnipImage(std::move(image));
    controller->_delegate = std::move(delegate);
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

// ---- for the host

void TesselViewController::setTopNavigationItemTitle(bool isCloseButton, const std::string& title) {
    makeToolView();
    TesselTopTool& bar = *parts().bar;
    if (isCloseButton) {
        bar.closeButton()->setTitle(title);
    } else {
        bar.confirmButton()->setTitle(title);
    }
    bar.setNeedsLayout();
}

bool TesselViewController::exportsAtPictureScale() const {
    return parts().picture.exportsAtPictureScale();
}

void TesselViewController::setExportsAtPictureScale(bool exports) {
    parts().picture.setExportsAtPictureScale(exports);
}

double TesselViewController::largestMagnification() const {
    return parts().picture.largestMagnification();
}

void TesselViewController::setLargestMagnification(double pixels) {
    parts().picture.setLargestMagnification(pixels);
}

bool TesselViewController::forgiving() const {
    return parts().stage.isForgiving();
}

void TesselViewController::setForgiving(bool forgiving) {
    parts().stage.setForgiving(forgiving);
    if (isViewLoaded()) view()->setRejectsPalms(forgiving);
    parts().picture.setForgiving(forgiving);
    parts().pickers.setTakesTouchesWhileFolding(forgiving);
}

bool TesselViewController::cropKeepsDrawings() const {
    return parts().picture.cropKeepsDrawings();
}

void TesselViewController::setCropKeepsDrawings(bool keeps) {
    parts().picture.setCropKeepsDrawings(keeps);
}

double TesselViewController::canvasBasis() const {
    return parts().picture.canvasBasis();
}

void TesselViewController::setCanvasBasis(double points) {
    parts().picture.setCanvasBasis(points);
}

void TesselViewController::setLaysPictureBetweenBars(bool lays) {
    _laysPictureBetweenBars = lays;
    if (parts().picture.canvas()) view()->setNeedsLayout();
}

bool TesselViewController::clipsToPicture() const {
    return parts().picture.clipsToPicture();
}

void TesselViewController::setClipsToPicture(bool clips) {
    parts().picture.setClipsToPicture(clips);
}

bool TesselViewController::offersHidingStyles() const {
    return parts().choice.offersHidingStyles();
}

void TesselViewController::setOffersHidingStyles(bool offers) {
    parts().choice.setOffersHidingStyles(offers);
}

const EditorOffer& TesselViewController::offer() const {
    return parts().offer;
}

void TesselViewController::setOffer(EditorOffer offer) {
    const auto alive = self();
    EditorParts& all = parts();
    all.offer = std::move(offer);
    if (!all.pickers.areMade()) return;
    all.pickers.makeAnew(*all.panel.view(), self());
    all.choice.showPen();
    view()->setNeedsLayout();
}

bool TesselViewController::remembersTools() const {
    return parts().memory.isOn();
}

void TesselViewController::setRemembersTools(bool remembers) {
    parts().memory.setOn(remembers);
}

void TesselViewController::rememberTool() {
    parts().memory.store(parts().choice.pen(), *parts().picture.canvas());
}

bool TesselViewController::isReadOnly() const {
    return parts().stage.isReadOnly();
}

void TesselViewController::setReadOnly(bool isReadOnly) {
    if (isReadOnly == parts().stage.isReadOnly()) return;
    const auto alive = self();
    view();
    parts().picture.canvas()->finalizeCurrentDrawing();
    parts().picture.canvas()->selectNone();
    if (isReadOnly && editImageInitialView()) leaveCrop();
    parts().picture.canvas()->setReadOnly(isReadOnly);
    parts().stage.setReadOnly(isReadOnly);
}

const std::shared_ptr<EditorShell>& TesselViewController::shell() const {
    return parts().stage.shell();
}

void TesselViewController::setShell(std::shared_ptr<EditorShell> shell) {
    if (shell == parts().stage.shell()) return;
    const auto alive = self();
    view();
    EditorParts& all = parts();
    all.panel.drop();
    // Nobody goes on choosing it.
    drawView()->endRestyling();
    all.stage.setShell(std::move(shell));
    all.closing.shellDidChange();
    if (all.stage.shell()) all.pen.ring(false);
    // What only a pointer can do.
    const bool isForPointer = all.stage.shell() != nullptr;
    drawView()->setFineHandles(isForPointer);
    drawView()->setSnaps(isForPointer);
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

gfx::ImageRef TesselViewController::exportedImage() {
    return parts().picture.exported();
}

void TesselViewController::startAnimateIn(const std::function<void()>& alongside) {
    const auto alive = self();
    parts().transition.start(alongside);
    bringPenButton();
}

void TesselViewController::startAnimateOut(const gfx::Rect& target,
                                           std::function<void(bool finished)> completion) {
    const auto alive = self();
    if (!parts().picture.isCroped()) return parts().transition.leave(target, std::move(completion));
    if (completion) completion(false);
}

// ---- coming and going

void TesselViewController::viewDidLoad() {
    view()->setBackgroundColor(gfx::makeColor(0, 0, 0));
    view()->setRejectsPalms(forgiving());
    initSubviews();
}

void TesselViewController::viewWillAppear(bool /*animated*/) {
    ui::Environment::current().setStatusBarHidden(true, false);
}

void TesselViewController::viewDidAppear(bool /*animated*/) {
    setNeedsStatusBarAppearanceUpdate();
    parts().stage.after(0, [this] { setUpAfterAppearance(); });
}

void TesselViewController::viewWillDisappear(bool /*animated*/) {
    MDrawLogUtil::sharedInstance().logInfoMethodName("draw viewWillDisappear ",
                                                     "viewWillDisappear:");
    ui::Environment::current().setStatusBarHidden(false, false);
}

void TesselViewController::viewDidDisappear(bool /*animated*/) {
    parts().closing.drop();
    // Hidden by the way out; whoever shows the editor again is to see it.
    const PictureTransition& transition = parts().transition;
    if (!transition.view()) parts().picture.canvas()->setHidden(transition.isNeeded());
}

void TesselViewController::setUpAfterAppearance() {
    EditorParts& all = parts();
    all.pickers.makeDots();
    if (!all.pickers.areMade()) {
        all.pickers.makeRows(*all.panel.view(), self());
        all.buttons.make([this] { clickConfigEdit(); }, [this] { clickDelete(); });
        all.stage.layout();
    }
    // An editor that comes back to the screen keeps the tool that the user has.
    if (!std::exchange(_hasAppeared, true) && !all.buttons.isOut()) {
        all.choice.begin();
        all.memory.leave(all.choice.pen(), *all.picture.canvas());
        if (const auto last = all.memory.lastPen()) all.choice.take(*last);
        all.choice.recall(all.memory);
        blinkPenview();
        all.stage.tellShell();
    }
    all.pickers.fold();
    all.buttons.move();
    all.stage.after(ringDelay, [this] { startRingHint(); });
}

void TesselViewController::startRingHint() {
    parts().pen.allowRing();
    // The panel covers it; closing that shows it.
    if (!shell() && parts().panel.state() == EditorPanel::State::Closed) parts().pen.ring(true);
}

// ---- set-up

void TesselViewController::initSubviews() {
    EditorParts& all = parts();
    all.pen.setShouldBlink(true);
    all.picture.makeCanvas(all.transition.isNeeded());
    doApplyTransBlockToCoreModel();
    all.picture.showCanvas(self());
    all.transition.prepare();
    all.stage.makeChrome();
    all.panel.makeMask(self());
    makeToolView();
    all.bar->setAlpha(all.transition.isNeeded() ? 0 : 1);
    all.stage.chrome()->addSubview(all.bar);
    makeNib();
    all.pen.make(self());
    all.panel.make(
        self(), [this] { clickAtMaskView(); }, [this] { clickAtConfirm(); });
    all.panel.setDidClose([this] {
        parts().buttons.editingEnded();
        parts().buttons.move();
    });
}

void TesselViewController::makeToolView() {
    if (parts().bar) return;
    parts().bar = TesselTopTool::init();
    parts().bar->setDelegate(self());
}

void TesselViewController::makeNib() {
    const auto nib = TesselDot::initWithSize(2);
    nib->setColor(gfx::makeColor(1, 0, 0));
    nib->setResponseConfig(false);
    nib->setHidden(true);
    parts().stage.chrome()->addSubview(nib);
    parts().nib = nib;
}

}  // namespace kalim
