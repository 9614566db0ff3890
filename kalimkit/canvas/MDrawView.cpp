#include "kalimkit/canvas/MDrawView.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "kalimkit/canvas/ToolClasses.h"
#include "kalimkit/shapes/MDrawLine.h"

namespace kalim {

// ---- making

std::shared_ptr<MDrawView> MDrawView::initWithFrame(const gfx::Rect& frame) {
    struct Constructible : MDrawView {};
    const std::shared_ptr<MDrawView> view = std::make_shared<Constructible>();
    view->init(frame);
    return view;
}

void MDrawView::init(const gfx::Rect& frame) {
    View::init(frame);
    setMultipleTouchEnabled(true);
    _tools = std::make_shared<ToolList>();
    _undoManager = std::make_unique<MUndoManager>(_tools);
    _undoManager->setDelegate(self());
    _newTools.toolClass = &MDrawLine::Class();
    _newTools.color = gfx::makeColor(0, 1, 0);
    _defualtBackgroundColor = gfx::makeColor(1, 1, 1);

    _drawFreeLineHelper = MDrawFreeLineHelper::init();
    _drawFreeLineHelper->setDelegate(self());
    addGestures();
    _picture.take(nullptr, room());
    placeCanvas();
}

void MDrawView::addGestures() {
    _rotationGesture = std::make_shared<ui::RotationGestureRecognizer>();
    _doubleTapGesture = std::make_shared<ui::TapGestureRecognizer>();
    _doubleTapGesture->setNumberOfTapsRequired(2);
    watch(_rotationGesture, [this](ui::GestureState state) {
        handleRotationGesture(state, _rotationGesture->rotation());
    });
    addViewGestures();
    watch(_doubleTapGesture, [this](ui::GestureState state) {
        if (state != ui::GestureState::Ended) return;
        handleDoubleTapGesture(_doubleTapGesture->locationIn(this));
    });
}

std::shared_ptr<MDrawView> MDrawView::self() {
    return std::static_pointer_cast<MDrawView>(shared_from_this());
}

void MDrawView::setDrawViewdelegate(std::weak_ptr<MDrawViewDelegate> delegate) {
    _drawViewdelegate = std::move(delegate);
}

void MDrawView::setForgiving(bool forgiving) {
    if (forgiving == this->forgiving()) return;
    _newTools.rules.forgiving = forgiving;
    _undoManager->setRules(_newTools.rules);
    if (_handingTools) _handingTools->setRules(_newTools.rules);
    for (const ToolRef& tool : *_tools)
        tool->setRules(_newTools.rules);
    invalidateLayers();
}

void MDrawView::setLogTransferToBlock(MDrawLogUtil::LogTransferBlock block) {
    MDrawLogUtil::sharedInstance().setLogTransferBlock(std::move(block));
}

void MDrawView::layoutSubviews() {
    fitIntoView();
    placeCanvas();
    placeTypingView();
    updateLayers();
}

// Whether the view's size or the screen's scale asked for anything.
bool MDrawView::fitIntoView() {
    const bool isUnused = !_picture.source() && !hasTools() && !canUndo() && !canRedo();
    const gfx::AffineTransform before = mViewTransform();
    const Fitting fitting = fitPicture(isUnused);
    if (fitting == Fitting::Nothing) return false;
    const auto alive = self();
    if (fitting == Fitting::Settled) {
        _ctxRect = contentRect();
        _mosaic.take(_picture);
    }
    if (fitting != Fitting::NewScale) {
        fitResized();
        followView(before);
    }
    invalidateLayers();
    return true;
}

// The field of a text that is being typed would stay behind.
bool MDrawView::mayMoveView() const {
    return ZoomedCanvasView::mayMoveView() && !_curEdittingTextTool;
}

void MDrawView::viewGestureDidBegin() {
    if (const auto delegate = _drawViewdelegate.lock()) delegate->didCanvasScaleAndPanStart();
}

void MDrawView::viewGestureDidEnd() {
    if (const auto delegate = _drawViewdelegate.lock()) delegate->didCanvasScaleAndPanEnd();
}

// ---- the picture

void MDrawView::setSnipImage(const gfx::ImageRef& image) {
    const auto alive = self();
    finishEditText();
    deleteCurrentHandlingTool();
    _drawFreeLineHelper->reset();
    clearSelection();
    resetView();
    _picture.take(image, room(), _canvasBasis);
    _ctxRect = bgImgRect();
    _mosaic.take(_picture);
    placeCanvas();
    clearTools();
    invalidateLayers();
}

void MDrawView::setCanvasBasis(double points) {
    constexpr double largest = 10000;
    if (points != 0 && !(points >= 1 && points <= largest)) return;
    if (points == _canvasBasis) return;
    _canvasBasis = points;
    const gfx::ImageRef picture = sourceImage();
    if (!hasTools() && !canUndo() && !canRedo()) setSnipImage(picture);
}

void MDrawView::setClipsToPicture(bool clips) {
    if (clips == _clipsToPicture) return;
    _clipsToPicture = clips;
    _ctxRect = contentRect();
    invalidateLayers();
}

void MDrawView::setDefualtBackgroundColor(gfx::ColorRef color) {
    if (!color) return;
    _defualtBackgroundColor = std::move(color);
    invalidateLayers();
}

// ---- what new tools are

void MDrawView::beginDrawingForTypeWithDrawType(std::int64_t type, std::uint64_t drawType) {
    beginDrawing(getClassForToolType(type), drawType);
}

bool MDrawView::beginDrawingWithClass(const ToolClass& toolClass, std::uint64_t drawType) {
    const bool isByTouch = toolClass.beginning() != ToolBeginning::Taps;
    if (!toolClass.makeWithStartPoint || !isByTouch) return false;
    beginDrawing(&toolClass, drawType);
    return true;
}

void MDrawView::beginDrawing(const ToolClass* toolClass, std::uint64_t drawType) {
    const auto alive = self();
    if (toolClass != _newTools.toolClass) endWaitingDrawing();
    _newTools.toolClass = toolClass;
    if (!_newTools.toolClass) stopDrawing();
    const ToolClass* creating = _handingTool ? &_handingTool->toolClass() : nullptr;
    if (_newTools.toolClass != creating) _newTools.drawType = drawType;
}

void MDrawView::setDrawTypeForType(std::uint64_t drawType, std::int64_t type) {
    _newTools.drawType = drawType;
    const ToolClass* toolClass = getClassForToolType(type);
    if (!toolClass || !isSelectionValid() || _handingTools->drawType() == drawType) return;
    _handingTools->setDrawTypeForType(drawType, toolClass);
    recordSelectionChange();
}

void MDrawView::setDrawColorIsTranslucent(gfx::ColorRef color, bool /*isTranslucent*/) {
    if (!color) return;
    const auto alive = self();
    if (!gfx::equalColors(color, _newTools.color)) endWaitingDrawing();
    _newTools.color = std::move(color);
    if (const auto text = restyledText(); text && !gfx::equalColors(text->color(), this->color())) {
        text->takeColor(this->color());
        return redisplay();
    }
    if (!isSelectionValid() || gfx::equalColors(_handingTools->color(), _newTools.color)) return;
    _handingTools->setColor(_newTools.color);
    recordSelectionChange();
}

void MDrawView::setDrawLineWidth(double width) {
    if (!(width >= 0) || std::isinf(width)) return;
    const auto alive = self();
    if (width != _newTools.lineWidth) endWaitingDrawing();
    _newTools.lineWidth = width;
    if (const auto text = restyledText(); text && text->lineWidth() != width) {
        text->takeLineWidth(width);
        return redisplay();
    }
    if (!isSelectionValid() || _handingTools->lineWidth() == width) return;
    _handingTools->setLineWidth(width);
    if (forgiving()) _handingTools->growToLineWidth();
    recordSelectionChange();
}

// ---- measuring

void MDrawView::setCalibration(double calibration) {
    _newTools.calibration = calibration;
    refreshCalibrations();
}

void MDrawView::setUnit(std::string unit) {
    _newTools.unit = std::move(unit);
    refreshCalibrations();
}

void MDrawView::setShowMeasurement(bool show) {
    _newTools.showMeasurement = show;
    refreshCalibrations();
}

void MDrawView::refreshCalibrations() {
    for (const ToolRef& tool : *_tools)
        _newTools.applyShared(*tool);
    invalidateLayers();
}

// ---- tools

bool MDrawView::addTool(const ToolRef& tool) {
    // A tool with a history belongs, or belonged, to a canvas and its steps.
    if (!tool || tool->mutabaleToolObjType() || !tool->undoMgr().featureList().empty() ||
        !tool->isDrawVaild() || isOnCanvas(tool)) {
        return false;
    }
    const auto alive = self();
    if (!tool->color()) tool->setColor(_newTools.color);
    _newTools.applyShared(*tool);
    adoptText(tool);
    tool->setIsNewBuild(false);
    tool->setSelected(false);
    if (!tool->finalized()) tool->finalize();
    tool->settle();
    _undoManager->addTool(tool);
    _undoManager->addToolSuccess(tool);
    redisplay();
    return isOnCanvas(tool);
}

bool MDrawView::isOnCanvas(const ToolRef& tool) const {
    return std::ranges::find(*_tools, tool) != _tools->end();
}

void MDrawView::deleteSelectedTools() {
    if (!_handingTools) return;
    const auto alive = self();
    // What fingers are still doing is a step of its own, and may have been the selection's last.
    if (forgiving()) endStepUnderWay();
    if (!_handingTools) return;
    _undoManager->removeTool(_handingTools);
    clearSelection();
    refreshContextRect();
    redisplay();
}

void MDrawView::clearTools() {
    const auto alive = self();
    finishEditText();
    _drawFreeLineHelper->reset();
    clearSelection();
    // Nothing of a gesture under way survives, or the next touch would wait for its end.
    _handingTool = nullptr;
    _touch.drawing = false;
    _touch.LastSeletedTestSrcPoint = nullptr;
    _tools->clear();
    _createdTools.clear();
    _undoManager->reset();
    redisplay();
}

void MDrawView::removeInvaildTools() {
    const auto alive = self();
    const ToolList tools = *_tools;
    for (const ToolRef& tool : tools) {
        if (tool->isNewBuild() || tool->isDrawVaild()) continue;
        removeToolFromSelectedTools(tool);
        _undoManager->removeToolFromAllSystem(tool);
    }
}

void MDrawView::finalizeCurrentDrawing() {
    const auto alive = self();
    checkAndEndTextToolEdittingText();
    if (_handingTools) _handingTools->finalize();
    stopDrawing();
    redisplay();
}

// ---- undo

bool MDrawView::undo() {
    return stepHistory([](MUndoManager& manager) { return manager.undo(); });
}

bool MDrawView::redo() {
    return stepHistory([](MUndoManager& manager) { return manager.redo(); });
}

bool MDrawView::stepHistory(bool (*step)(MUndoManager&)) {
    const auto alive = self();
    // What is being typed or fades in is the step that is meant.
    finishEditText();
    // A finger that is still drawing has done its work with that.
    if (forgiving() && isCreating(ToolRecorder::Strokes)) endCreation();
    endFreehand();
    removeInvaildTools();
    clearSelection();
    // What a finger found may be off the canvas after the step.
    _touch.LastSeletedTestSrcPoint = nullptr;
    if (!step(*_undoManager)) return false;
    // A tool that comes back has missed what was set while it was away.
    for (const ToolRef& tool : *_tools)
        _newTools.applyShared(*tool);
    refreshContextRect();
    redisplay();
    return true;
}

void MDrawView::canUndoStateChangedCanRedo(bool canUndo, bool canRedo) {
    const auto alive = self();
    if (const auto delegate = _drawViewdelegate.lock()) {
        const bool waits = hasWaitingDrawing();
        delegate->canUndoStateChangedCanRedo(canUndo || waits, canRedo && !waits);
    }
}

void MDrawView::toolsStateChangedState(const ToolRef& tool, State state) {
    _isDirty = true;
    _drawn.markListChanged();
    _drawn.markChanged(tool);
    if (state != State::AddedOrChanged) dropAbsentFromSelection();
    const gfx::Rect before = _ctxRect;
    const bool isChanged = (tool || state != State::AddedOrChanged) && refreshContextRect();
    if (isChanged && !before.contains(_ctxRect)) autoScaleWhenCtxEnlarged();
    redisplay();
}

}  // namespace kalim
