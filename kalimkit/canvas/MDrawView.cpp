#include "kalimkit/canvas/MDrawView.h"

#include <utility>

#include "kalimkit/canvas/CanvasCursor.h"
#include "kalimkit/canvas/CanvasParts.h"
#include "kalimkit/canvas/ToolClasses.h"
#include "kalimkit/ui/gesture/RotationGestureRecognizer.h"
#include "kalimkit/ui/gesture/TapGestureRecognizer.h"
#include "kalimkit/ui/window/Window.h"

namespace kalim {

// ---- making

std::shared_ptr<MDrawView> MDrawView::initWithFrame(const gfx::Rect& frame) {
    struct Constructible : MDrawView {};
    const std::shared_ptr<MDrawView> view = std::make_shared<Constructible>();
    view->init(frame);
    return view;
}

MDrawView::MDrawView() : _parts(std::make_unique<CanvasParts>(*this, shown())) {}

MDrawView::~MDrawView() = default;

void MDrawView::init(const gfx::Rect& frame) {
    View::init(frame);
    setSides(Sides::Fixed);
    setMultipleTouchEnabled(true);
    _parts->history.listen();
    _parts->freehand.listen();
    addGestures();
    shown().picture.take(nullptr, room());
    placeCanvas();
}

void MDrawView::addGestures() {
    _rotationGesture = std::make_shared<ui::RotationGestureRecognizer>();
    watch(_rotationGesture, [this](ui::GestureState state) {
        handleRotationGesture(state, _rotationGesture->rotation());
    });
    addViewGestures();
    const auto doubleTap = std::make_shared<ui::TapGestureRecognizer>();
    doubleTap->setNumberOfTapsRequired(2);
    watch(doubleTap, [this, taps = doubleTap.get()](ui::GestureState state) {
        if (state == ui::GestureState::Ended) handleDoubleTapGesture(taps->locationIn(this));
    });
}

// The parts for somebody who calls from outside: whatever the owner does when it is told of
// something, the canvas is there until the call returns.
std::shared_ptr<CanvasParts> MDrawView::held() {
    return {shared_from_this(), _parts.get()};
}

void MDrawView::setDrawViewdelegate(std::weak_ptr<MDrawViewDelegate> delegate) {
    _parts->home.setOwner(std::move(delegate));
}

bool MDrawView::forgiving() const {
    return _parts->tools.forgiving();
}

void MDrawView::setForgiving(bool forgiving) {
    _parts->pen.setForgiving(forgiving);
    setRejectsPalms(forgiving);
}

bool MDrawView::fineHandles() const {
    return _parts->tools.pen().rules.fineHandles;
}

void MDrawView::setFineHandles(bool fine) {
    _parts->pen.setFineHandles(fine);
}

bool MDrawView::snaps() const {
    return _parts->grip.snaps();
}

void MDrawView::setSnaps(bool snaps) {
    _parts->grip.setSnaps(snaps);
}

void MDrawView::setLogTransferToBlock(MDrawLogUtil::LogTransferBlock block) {
    MDrawLogUtil::sharedInstance().setLogTransferBlock(std::move(block));
}

void MDrawView::layoutSubviews() {
    const auto parts = held();
    fitIntoView();
    placeCanvas();
    parts->typing.place();
    parts->screen.update();
    if (const auto owner = parts->home.owner()) owner->canvasWillShow();
}

void MDrawView::drawRect(gfx::Context& context, const gfx::Rect&) {
    const auto parts = held();
    // A new scale of the screen comes without a layout.
    if (fitIntoView()) parts->screen.update();
    parts->screen.draw(context);
}

// Tells whether the view's size or the screen's scale asked for anything.
bool MDrawView::fitIntoView() {
    const bool isUnused = !sourceImage() && !hasTools() && !canUndo() && !canRedo();
    const gfx::AffineTransform before = mViewTransform();
    const auto zoom = forgiving() ? chosenZoom() : std::nullopt;
    const Fitting fitting = fitPicture(isUnused);
    if (fitting == Fitting::Nothing) return false;
    const auto parts = held();
    if (fitting == Fitting::Settled) {
        parts->content.measure();
        parts->painter.takeMosaic();
    }
    if (fitting != Fitting::NewScale) {
        fitResized();
        if (zoom && fitting == Fitting::Resized) restoreZoom(*zoom);
        parts->typing.followView(before);
    }
    parts->screen.invalidate();
    return true;
}

void MDrawView::didMoveToWindow() {
    if (window()) return;
    _parts->screen.release();
    _parts->painter.hiding().release();
    shown().picture.releaseCopies();
}

// The field of a text that is being typed would stay behind.
bool MDrawView::mayMoveView() const {
    return ZoomedCanvasView::mayMoveView() && !_parts->typing.text();
}

bool MDrawView::mayZoomView() const {
    return mayMoveView() && !_parts->selection.holdsFingers();
}

void MDrawView::viewGestureDidBegin() {
    if (const auto owner = _parts->home.owner()) owner->didCanvasScaleAndPanStart();
}

void MDrawView::viewGestureDidEnd() {
    if (const auto owner = _parts->home.owner()) owner->didCanvasScaleAndPanEnd();
}

// ---- the picture

gfx::ImageRef MDrawView::exportImage() {
    const auto parts = held();
    fitIntoView();
    return parts->exports.image();
}

gfx::ImageRef MDrawView::exportImageAtPictureScale() {
    const auto parts = held();
    fitIntoView();
    return parts->exports.imageAtPictureScale();
}

std::optional<ExportedPicture> MDrawView::exportedPicture(const gfx::ImageRef& image) const {
    return _parts->exports.exportedPicture(image);
}

gfx::ImageRef MDrawView::exportUncutImage() {
    const auto parts = held();
    fitIntoView();
    return parts->exports.uncutImage();
}

gfx::ImageRef MDrawView::exportImageForScale() {
    return held()->exports.imageOfView();
}

gfx::ImageRef MDrawView::filterImg(const gfx::ImageRef& image) const {
    return _parts->exports.blurred(image);
}

void MDrawView::setCanvasBasis(double points) {
    constexpr double largest = 10000;
    if (points != 0 && !(points >= 1 && points <= largest)) return;
    if (points == _canvasBasis) return;
    _canvasBasis = points;
    if (hasTools() || canUndo() || canRedo()) return;
    const gfx::ImageRef picture = sourceImage();
    const PictureCut cut = pictureCut();
    setSnipImage(picture);
    resetPictureCut(cut);
}

bool MDrawView::clipsToPicture() const {
    return _parts->content.clipsToPicture();
}

void MDrawView::setClipsToPicture(bool clips) {
    if (clips == clipsToPicture()) return;
    _parts->content.setClipsToPicture(clips);
    _parts->content.measure();
    _parts->screen.invalidate();
}

bool MDrawView::isDirty() const {
    return _parts->history.isDirty();
}

const gfx::ColorRef& MDrawView::defualtBackgroundColor() const {
    return _parts->painter.background();
}

void MDrawView::setDefualtBackgroundColor(gfx::ColorRef color) {
    if (!color) return;
    _parts->painter.setBackground(std::move(color));
    _parts->screen.invalidate();
}

// ---- what new tools are

void MDrawView::beginDrawingForTypeWithDrawType(std::int64_t type, std::uint64_t drawType) {
    held()->pen.choose(getClassForToolType(type), drawType);
}

bool MDrawView::beginDrawingWithClass(const ToolClass& toolClass, std::uint64_t drawType) {
    const bool isByTouch = toolClass.beginning() != ToolBeginning::Taps || placesPoints();
    if (!toolClass.makeWithStartPoint || !isByTouch) return false;
    held()->pen.choose(&toolClass, drawType);
    return true;
}

bool MDrawView::beginDrawingWithClassNamed(const std::string& name, std::uint64_t drawType) {
    const ToolClass* const toolClass = toolClassNamed(name);
    return toolClass && beginDrawingWithClass(*toolClass, drawType);
}

const ToolClass* MDrawView::drawToolClass() const {
    return _parts->tools.pen().toolClass;
}

bool MDrawView::placesPoints() const {
    return _parts->tools.pen().placesPoints;
}

void MDrawView::setPlacesPoints(bool places) {
    _parts->tools.pen().placesPoints = places;
}

bool MDrawView::isPlacingPoints() const {
    return _parts->finger.isPlacing();
}

bool MDrawView::completePoints() {
    return held()->finger.completePoints();
}

bool MDrawView::dropPoints() {
    return held()->finger.dropPoints();
}

void MDrawView::setDrawTypeForType(std::uint64_t drawType, std::int64_t type) {
    held()->pen.setDrawType(drawType, getClassForToolType(type));
}

std::uint64_t MDrawView::drawType() const {
    return _parts->tools.pen().drawType;
}

void MDrawView::setDrawColorIsTranslucent(gfx::ColorRef color, bool /*isTranslucent*/) {
    held()->pen.setColor(std::move(color));
}

const gfx::ColorRef& MDrawView::color() const {
    return _parts->tools.pen().color;
}

void MDrawView::setDrawLineWidth(double width) {
    held()->pen.setLineWidth(width);
}

bool MDrawView::setToolProperty(const std::string& name, const ToolPropertyValue& value) {
    return held()->pen.setProperty(name, value);
}

bool MDrawView::setToolDetail(const std::string& name, const std::string& text) {
    return held()->pen.setDetail(name, text);
}

std::optional<ToolPropertyValue> MDrawView::toolProperty(const std::string& name) const {
    return _parts->pen.property(name);
}

void MDrawView::beginRestyling() {
    held()->restyling.begin();
}

bool MDrawView::endRestyling() {
    return held()->restyling.end();
}

std::vector<const ToolProperty*> MDrawView::toolProperties() const {
    return _parts->pen.properties();
}

double MDrawView::lineWidth() const {
    return _parts->tools.pen().lineWidth;
}

void MDrawView::setTextMaskColorsParForTextColors(ColorPairs maskColors) {
    _parts->typing.setMaskColors(std::move(maskColors));
    _parts->screen.invalidate();
}

void MDrawView::setCalibration(double calibration) {
    _parts->pen.setCalibration(calibration);
}

void MDrawView::setUnit(std::string unit) {
    _parts->pen.setUnit(std::move(unit));
}

void MDrawView::setShowMeasurement(bool show) {
    _parts->pen.setShowMeasurement(show);
}

// ---- tools and selection

const ToolList& MDrawView::tools() const {
    return _parts->tools.list();
}

bool MDrawView::addTool(const ToolRef& tool) {
    return held()->history.add(tool);
}

void MDrawView::selectTools(const ToolList& tools) {
    held()->selection.select(tools);
}

void MDrawView::selectNone() {
    held()->selection.clear();
}

bool MDrawView::hasSelectedTools() const {
    return _parts->selection.isValid();
}

const std::shared_ptr<MDrawMutableSelect>& MDrawView::handingTools() const {
    return _parts->selection.group();
}

ToolRef MDrawView::testHitTestSelectTool(gfx::Point p) const {
    return _parts->tools.topmostAt(p);
}

const ToolRef& MDrawView::handingTool() const {
    return _parts->finger.tool();
}

void MDrawView::deleteSelectedTools() {
    held()->history.removeSelected();
}

std::shared_ptr<CanvasArrangement> MDrawView::arrangement() {
    return {shared_from_this(), &_parts->arrangement};
}

std::shared_ptr<CanvasByKeys> MDrawView::byKeys() {
    return {shared_from_this(), &_parts->byKeys};
}

void MDrawView::clearTools() {
    held()->history.clear();
}

void MDrawView::removeInvaildTools() {
    held()->history.removeInvalid();
}

void MDrawView::finalizeCurrentDrawing() {
    const auto parts = held();
    parts->typing.end();
    if (const auto group = handingTools()) group->finalize();
    parts->finger.stopDrawing();
    parts->home.redisplay();
}

bool MDrawView::editSelectedText() {
    return held()->typing.editSelected();
}

void MDrawView::finishEditText() {
    held()->typing.finish();
}

const std::shared_ptr<MDrawText>& MDrawView::curEdittingTextTool() const {
    return _parts->typing.text();
}

bool MDrawView::undo() {
    return held()->history.undo();
}

bool MDrawView::redo() {
    return held()->history.redo();
}

bool MDrawView::canUndo() const {
    return _parts->history.canUndo();
}

bool MDrawView::canRedo() const {
    return _parts->history.canRedo();
}

MUndoManager& MDrawView::undoManager() {
    return _parts->tools.undoManager();
}

// ---- gestures

FingerState MDrawView::fingerState() const {
    return _parts->finger.state();
}

bool MDrawView::cancelGesture() {
    const auto parts = held();
    return parts->restyling.breakOff() || parts->finger.cancelGesture();
}

std::optional<ui::Cursor> MDrawView::cursorAt(gfx::Point p) {
    return isReadOnly() ? ui::Cursor::Arrow : canvasCursor(*_parts, p);
}

void MDrawView::handleRotationGesture(ui::GestureState state, double rotation) {
    if (_isReadOnly) return;
    held()->selection.turn(state, rotation, !shown().zoom.isPinching());
}

void MDrawView::handleDoubleTapGesture(gfx::Point place) {
    if (_isReadOnly) return;
    const auto parts = held();
    const ToolRef& created = parts->finger.tool();
    if (created && !created->isDrawVaild()) parts->finger.deleteCreated();
    // The field that is open takes its own taps, whatever lies under it.
    if (parts->typing.text() || parts->finger.isCreating()) return;
    const gfx::Point p = invertViewPoint(place);
    parts->typing.editAt(p);
    if (!parts->typing.text()) parts->finger.pickMemberAt(p);
}

std::vector<ui::AccessibilityElement> MDrawView::accessibilityElements() {
    return _parts->speech.elements();
}

bool MDrawView::activateAccessibilityElement(std::uint64_t key) {
    return !_isReadOnly && held()->speech.activate(key);
}

void MDrawView::invalidateLayers() {
    _parts->screen.invalidate();
}

int MDrawView::lastDrawnTools() const {
    return _parts->screen.drawnTools();
}

}  // namespace kalim
