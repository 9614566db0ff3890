#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "kalimkit/canvas/model/MDrawLogUtil.h"
#include "kalimkit/canvas/model/MUndoManager.h"
#include "kalimkit/canvas/view/CanvasLayers.h"
#include "kalimkit/canvas/view/CanvasPicture.h"
#include "kalimkit/canvas/view/DrawnTools.h"
#include "kalimkit/canvas/view/MDrawMutableSelect.h"
#include "kalimkit/canvas/view/MDrawViewDelegate.h"
#include "kalimkit/canvas/view/ToolType.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Image.h"
#include "kalimkit/imageedit/image/MosaicBlocks.h"
#include "kalimkit/imageedit/mosaic/MDrawMosiac.h"
#include "kalimkit/shapes/MDrawFreeLineHelper.h"
#include "kalimkit/shapes/MDrawText.h"
#include "kalimkit/ui/touch/PanGestureRecognizer.h"
#include "kalimkit/ui/touch/PinchGestureRecognizer.h"
#include "kalimkit/ui/touch/RotationGestureRecognizer.h"
#include "kalimkit/ui/touch/TapGestureRecognizer.h"
#include "kalimkit/ui/view/View.h"

namespace kalim {

class ViewAnimation;

// The canvas: the picture and the tools drawn over it. It turns touches into new tools, selections,
// moves and rotations, records each complete step for undo, shows everything, and exports the
// composite. Lengths are points; "canvas" points are those of the picture and the tools, which
// zoom, pan and rotation map to the view's own. The first size that the view has with a picture
// settles them; when it gets another one, the canvas is shown fitted and centred in it, unzoomed,
// and nothing on it changes.
class KALIM_API MDrawView : public ui::View,
                            public MUndoManagerDelegate,
                            public MDrawTextDelegate,
                            public MDrawFreeLineHelperDelegate {
public:
    // ---- making
    static std::shared_ptr<MDrawView> initWithFrame(const gfx::Rect& frame);
    void setDrawViewdelegate(std::weak_ptr<MDrawViewDelegate> delegate);
    // The host's callback for log texts, for the whole process.
    static void setLogTransferToBlock(MDrawLogUtil::LogTransferBlock block);

    // ---- the picture
    // Takes a new picture, turned upright and fitted into the view, and forgets every tool and
    // step. Null leaves the canvas without a picture. The blocks that mosaic patches show are
    // computed a millisecond later, or when the first patch needs them.
    void setSnipImage(const gfx::ImageRef& image);
    // The upright, fitted picture; null when there is none.
    const gfx::ImageRef& bgImg() const { return _picture.fitted(); }
    // Where it lies, canvas points.
    const gfx::Rect& bgImgRect() const { return _picture.rect(); }
    // The content: the picture's rectangle united with every tool's extent, canvas points.
    const gfx::Rect& ctxRect() const { return _ctxRect; }
    // The content at the screen's scale, without selection or handles, on an opaque bitmap. Ends
    // the editing of a text. Null when there is no content or no surface of its size can be had.
    gfx::ImageRef exportImage();
    // The same content at the scale of the picture as it was handed in: one pixel of the picture is
    // one pixel of the result, and what nothing covers is the picture's own. Drawings and patches
    // are scaled with it. Without a picture as exportImage(). Null as there.
    gfx::ImageRef exportImageAtPictureScale();
    // What the view shows at present, at the screen's scale, selection and all. Null for a view
    // without a size.
    gfx::ImageRef exportImageForScale();
    // The picture seen through a Gaussian with a standard deviation of 100 pixels, larger by what
    // the blur adds. Null for null and where it would be too large.
    gfx::ImageRef filterImg(const gfx::ImageRef& image) const;
    bool isDirty() const { return _isDirty; }
    // Under the picture and where drawings reach beyond it; white at first.
    const gfx::ColorRef& defualtBackgroundColor() const { return _defualtBackgroundColor; }
    void setDefualtBackgroundColor(gfx::ColorRef color);

    // ---- what new tools are, and what the selection becomes
    // The class of the next gesture by its tool-type number; a number without a class draws
    // nothing.
    void beginDrawingForTypeWithDrawType(std::int64_t type, std::uint64_t drawType);
    const ToolClass* drawToolClass() const { return _drawToolClass; }
    // Also restyles selected tools that are exactly of the type's class.
    void setDrawTypeForType(std::uint64_t drawType, std::int64_t type);
    std::uint64_t drawType() const { return _drawType; }
    // Also recolours the selection. Null is ignored.
    void setDrawColorIsTranslucent(gfx::ColorRef color, bool isTranslucent);
    const gfx::ColorRef& color() const { return _color; }
    // Also applies to the selection. Widths that are not finite or below zero are ignored.
    void setDrawLineWidth(double width);
    double lineWidth() const { return _lineWidth; }
    // The colours that outline texts, by the texts' colours. Texts in other colours are outlined in
    // white.
    using ColorPairs = std::vector<std::pair<gfx::ColorRef, gfx::ColorRef>>;
    void setTextMaskColorsParForTextColors(ColorPairs maskColors);

    // ---- measuring; reaches every tool, also those made later
    // Units per point; 0 means uncalibrated.
    void setCalibration(double calibration);
    void setUnit(std::string unit);
    void setShowMeasurement(bool show);

    // ---- tools and selection
    // In drawing order, the topmost last.
    const ToolList& tools() const { return *_tools; }
    bool hasTools() const { return !_tools->empty(); }
    bool hasDrawed() const { return !_tools->empty(); }
    // Takes in a tool that the caller made and drove by points, as a finished and recorded step. It
    // keeps its width and style, and gets the canvas's colour if it has none. Answers whether it is
    // on the canvas: null, a group, a tool that is not valid and one that has been recorded before
    // are refused, and one that goes beyond the area budget is taken back.
    bool addTool(const ToolRef& tool);
    // Makes these the selection, in this order. Tools that are not on the canvas, are still being
    // created or are named twice are passed over; none left clears the selection.
    void selectTools(const ToolList& tools);
    void selectNone();
    bool hasSelectedTools() const { return isSelectionValid(); }
    // The selection group; null when nothing is selected.
    const std::shared_ptr<MDrawMutableSelect>& handingTools() const { return _handingTools; }
    // The topmost finished tool under a canvas point; null for none.
    ToolRef testHitTestSelectTool(gfx::Point p) const;
    // The tool that the current gesture is creating; null between gestures.
    const ToolRef& handingTool() const { return _handingTool; }
    void deleteSelectedTools();
    // Not undoable.
    void clearTools();
    void removeInvaildTools();
    // Also ends the editing of a text, and a creation under way: a tool that is valid by now stays.
    void finalizeCurrentDrawing();
    // Ends the editing of a text, if there is any.
    void finishEditText();
    // The text that is being edited; null for none.
    const std::shared_ptr<MDrawText>& curEdittingTextTool() const { return _curEdittingTextTool; }

    // ---- undo
    // Whether anything happened. Both drop the selection first.
    bool undo();
    bool redo();
    bool canUndo() const { return _undoManager->canUndo(); }
    bool canRedo() const { return _undoManager->canRedo(); }
    MUndoManager& undoManager() { return *_undoManager; }

    // ---- zoom
    // View point to canvas point.
    gfx::Point invertViewPoint(gfx::Point p) const;
    // The factor at which the canvas is shown, over the one that fits it into the view.
    double getScale() const;
    double contextScale() const { return _contextScale; }
    // The smallest zoom; the largest is 2.
    double defaultMinScale() const { return _defaultMinScale; }
    // Brings the zoom within its bounds.
    void checkAndUpdateCTXScale();
    // Zooms out until the content fits the view, and centres it.
    void autoScaleWhenCtxEnlarged();
    // Canvas point to view point: the zoom and move in force, whatever is still being animated.
    const gfx::AffineTransform& mViewTransform() const { return _mViewTransform; }
    // A scale for display while the canvas is not zoomed; 0 for none.
    void setFScal(float scale);

    // ---- gestures
    bool enableGesture() const { return _enableGesture; }
    // Two-finger gestures.
    void setEnableGesture(bool enable) { _enableGesture = enable; }
    ui::RotationGestureRecognizer& rotationGesture() { return *_rotationGesture; }
    ui::PinchGestureRecognizer& pinchGesture() { return *_pinchGesture; }
    ui::PanGestureRecognizer& panGesture() { return *_panGesture; }
    void handleRotationGesture(ui::GestureState state, double rotation);
    // `scale` is the factor since the gesture began, `focus` the view point that stays in place.
    void handlePinchGesture(ui::GestureState state, double scale, gfx::Point focus);
    // View points since the gesture began.
    void handlePanGesture(ui::GestureState state, gfx::Point translation);
    // On a text: edits it. View points.
    void handleDoubleTapGesture(gfx::Point place);
    void touchesBegan(const ui::TouchEvent& event) override;
    void touchesMoved(const ui::TouchEvent& event) override;
    void touchesEnded(const ui::TouchEvent& event) override;
    void touchesCancelled(const ui::TouchEvent& event) override;

    // ---- display
    // Has everything drawn anew at the next frame. Whoever changes a tool of the canvas by itself
    // calls it; the canvas's own operations draw again what they changed.
    void invalidateLayers();
    // How many tools the last frame drew, into layers or onto the screen; one that several damaged
    // rectangles meet counts for each.
    int lastDrawnTools() const { return _drawnTools; }

    // ---- from the undo manager
    void canUndoStateChangedCanRedo(bool canUndo, bool canRedo) override;
    void toolsStateChangedState(const ToolRef& tool, State state) override;

    // ---- from texts
    void drawTextAskForRedraw(MDrawText& text) override;
    void drawTextBeginEdittingText(MDrawText& text) override;
    void drawTextDidEndEditText(MDrawText& text) override;
    void drawTextAskForSaveState(MDrawText& text) override;
    void drawTextDidChangeTextViewHeight(MDrawText& text) override;
    void drawTextKeyboardWillShow(MDrawText& text) override;
    void drawTextKeyboardWillHidden(MDrawText& text) override;
    std::optional<gfx::Rect> drawTextAskForCurrentCtxRect(const MDrawText& text) override;
    std::optional<double> drawTextAskForCurrentCtxScale(const MDrawText& text) override;
    std::optional<gfx::AffineTransform> drawTextAskForCurrentCtxTransform(
        const MDrawText& text) override;
    std::optional<double> drawTextAskForCurrentCtxRotateAngle(const MDrawText& text) override;
    std::optional<gfx::ColorRef> drawTextAskForMaskColor(const MDrawText& text) override;

    // ---- from the freehand helper
    void drawFreelineComplate(const std::shared_ptr<MDrawFreeline>& freeline) override;
    void drawFreelinePropertyChanged(const std::shared_ptr<MDrawFreeline>& freeline) override;

    ~MDrawView() override;

protected:
    MDrawView();
    void init(const gfx::Rect& frame) override;
    void drawRect(gfx::Context& context, const gfx::Rect& dirty) override;
    void layoutSubviews() override;
    void didMoveToWindow() override;

private:
    void addGestures();

    // ---- touches (MDrawViewTouches.cpp)
    void updateDrawStateTouches(std::int32_t phase, std::size_t touchCount);
    bool isSingleFinger() const { return (_drawState & 1U) != 0; }
    void drawDown(gfx::Point p);
    void drawMoveFromPointToPoint(gfx::Point from, gfx::Point to);
    void drawUp(gfx::Point p);
    bool finishCreation(gfx::Point p);
    void endFreehand();
    void stopDrawing();
    void finishDrag();
    void finishTap(gfx::Point p);
    bool isBeingCreated() const;
    bool drawsClass(const ToolClass& toolClass) const;
    void creatMDrawToolInPoint(gfx::Point p);
    ToolRef makeTool(gfx::Point p);
    void discard(const ToolRef& tool);
    void prepareNewTool(MDrawTool& tool) const;
    void deleteCurrentHandlingTool();
    bool isOnCanvas(const ToolRef& tool) const;
    void endRotation(double rotation);

    // ---- selection (MDrawViewSelection.cpp)
    bool isSelectionValid() const { return _handingTools && _handingTools->isValidTools(); }
    void addToolToSelectedToolsPoint(const ToolRef& tool, gfx::Point p);
    void removeToolFromSelectedTools(const ToolRef& tool);
    void clearSelection();
    void dropSelection();
    void endRotationUnderWay();
    void dropAbsentFromSelection();
    void notifySelection();
    void recordSelectionChange();
    void refreshCalibrations();
    void applyMeasuring(MDrawTool& tool) const;

    // ---- text (MDrawViewText.cpp)
    bool checkAndEndTextToolEdittingText();
    void checkAndMarkTextToolTapedInfoTimeStamp(const ToolRef& tool, double time);
    bool isSecondTap(const ToolRef& tool) const;
    void editText(const std::shared_ptr<MDrawText>& text);
    void adoptText(const ToolRef& tool);
    void keepAboveKeyboard(const MDrawText& text);

    // ---- mosaic (MDrawViewMosaic.cpp)
    void forgetMosaic();
    const MosaicBlocks& mosaicBlocks();
    gfx::Paint mosiacImgColor(const gfx::Rect& shownPicture);
    void drawMosiacTools(gfx::Context& context, const gfx::Rect& shownPicture,
                         const std::function<bool(const MDrawTool&)>& isWanted);

    bool stepHistory(bool (*step)(MUndoManager&));

    // ---- content rectangle (MDrawViewContent.cpp)
    gfx::Rect contentRect() const;
    bool refreshContextRect();

    // ---- zoom (MDrawViewZoom.cpp)
    double shownScale() const { return getScale() * _picture.fittingScale(); }
    bool isScreenShot() const { return _picture.fillsView(); }
    bool fitIntoView();
    void followView(const gfx::AffineTransform& before);
    bool isLargerThanView() const;
    void fitContent();
    void processViewTransform();
    bool isViewMoving() const;
    gfx::AffineTransform shownTransform() const;
    void zoomAbout(gfx::Point focus, const std::function<void()>& change);
    gfx::Point centralizedMove() const;
    gfx::Point reachableMove() const;
    void centralizeVisualContext();
    void settleView(const gfx::AffineTransform& from);
    bool mayMoveView() const;
    void beginViewGesture();
    void endViewGesture();
    void resetView();

    // ---- layers (MDrawViewLayers.cpp)
    void redisplay();
    void mark(const gfx::Rect& canvasRect);
    void sweepChangedTools();
    void updateLayers();
    ToolRef selectionOnCanvas() const;
    const ToolList& createdTools();
    bool refreshLayers();
    void paintGround(gfx::Context& context, const gfx::Rect& rect);
    void paintItems(gfx::Context& context, const gfx::Rect& rect);
    void countFrame();

    // ---- rendering (MDrawViewRendering.cpp)
    void drawTool(gfx::Context& context, MDrawTool& tool);
    void drawCanvas(gfx::Context& context, const gfx::Rect& rect) const;
    gfx::Rect shownPictureRect(const gfx::Context& context, const gfx::ImageRef& picture) const;
    static void drawSnipImage(gfx::Context& context, const gfx::ImageRef& picture,
                              const gfx::Rect& rect);
    void drawNormalItems(gfx::Context& context);
    void drawCreatedItems(gfx::Context& context);
    void drawCreatedMosaics(gfx::Context& context);
    void settleForExport();
    void drawExportedTools(gfx::Context& context, const gfx::Rect& picture);
    void drawAllSelectedItemsNeedSelectedSate(gfx::Context& context, bool needSelectedState);

    std::shared_ptr<MDrawView> self();

    std::weak_ptr<MDrawViewDelegate> _drawViewdelegate;
    std::shared_ptr<ToolList> _tools;
    std::unique_ptr<MUndoManager> _undoManager;
    std::shared_ptr<MDrawFreeLineHelper> _drawFreeLineHelper;
    std::shared_ptr<ui::RotationGestureRecognizer> _rotationGesture;
    std::shared_ptr<ui::PinchGestureRecognizer> _pinchGesture;
    std::shared_ptr<ui::PanGestureRecognizer> _panGesture;
    std::shared_ptr<ui::TapGestureRecognizer> _doubleTapGesture;

    // What new tools get.
    const ToolClass* _drawToolClass = nullptr;
    std::uint64_t _drawType = 0;
    gfx::ColorRef _color;
    double _lineWidth = 7.0;
    double _calibration = 0;
    // Empty until the host chooses one; tools then keep their own.
    std::string _unit;
    bool _showMeasurement = false;

    // The current gesture.
    ToolRef _handingTool;
    std::shared_ptr<MDrawMutableSelect> _handingTools;
    bool _drawing = false;
    bool _isMoved = false;
    // The gesture has done its work, such as ending the editing of a text.
    bool _abortTouch = false;
    bool _inHandleLastSeletedTools = false;
    // The unselected tool that was under the finger at touch-down.
    ToolRef LastSeletedTestSrcPoint;
    gfx::Point _lastMouseDownPoint;
    gfx::Point _lastMouseMovePoint;
    // Bit 0 stays set while a gesture has had a single finger throughout.
    unsigned _drawState = 0;
    bool _enableGesture = true;
    // The selection that a rotation gesture turns, and by how much so far, radians.
    std::shared_ptr<MDrawMutableSelect> _rotatedTools;
    double _rotation = 0;
    // The gesture goes on, but what it turned has been let go.
    bool _isRotationOver = false;

    // The text that was tapped last, and when, seconds of the wall clock.
    ToolRef _preTapTextTool;
    double _preTapTextTime = 0;
    std::shared_ptr<MDrawText> _curEdittingTextTool;
    ColorPairs _textMaskColorPars;
    // Where the view belongs while a keyboard moves it; nothing while none does.
    std::optional<gfx::Rect> _selfOriginalRect;

    CanvasPicture _picture;
    // Of the fitted picture; nothing until somebody needs them.
    std::optional<MosaicBlocks> _mosaicBlocks;
    // The delayed call that computes them; 0 for none.
    std::uint64_t _mosaicWork = 0;
    gfx::Rect _ctxRect;
    gfx::ColorRef _defualtBackgroundColor;
    bool _isDirty = false;
    // A step beyond the area budget is being undone.
    bool _isTakingBack = false;

    // The view.
    double _contextScale = 1.0;
    double _tmpContextScale = 1.0;
    double _defaultMinScale = 0.5;
    gfx::Point _viewMove;
    // Radians, in spite of its name.
    double _curRotateDegree = 0;
    float _fScal = 0;
    gfx::AffineTransform _mViewTransform;
    gfx::AffineTransform _mViewInvertTransform;
    bool _isPinching = false;
    bool _isPanning = false;
    // The pinch has left the content smaller than the view.
    bool _isPictureShrinked = false;
    // How a pinch left the view before the zoom was brought within its bounds.
    std::optional<gfx::AffineTransform> _shownBeforeClamping;
    // Of a pan under way, as last heard.
    gfx::Point _panTranslation;
    // On the way from an earlier zoom and move to those in force; none while the view rests.
    std::unique_ptr<ViewAnimation> _viewAnimation;

    // What is on the screen.
    CanvasLayers _layers;
    DrawnTools _drawn;
    // Those made by a finger and not finished yet; brought up to date when asked for.
    ToolList _createdTools;
    int _drawnTools = 0;
    // Drawn into a layer since the last frame, for the next one.
    int _drawnAhead = 0;
    std::uint64_t _countedFrame = 0;
};

}  // namespace kalim
