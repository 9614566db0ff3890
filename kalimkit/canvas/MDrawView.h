#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "kalimkit/canvas/CanvasLayers.h"
#include "kalimkit/canvas/CanvasMosaic.h"
#include "kalimkit/canvas/CanvasTouch.h"
#include "kalimkit/canvas/DrawnTools.h"
#include "kalimkit/canvas/FrameCount.h"
#include "kalimkit/canvas/MDrawMutableSelect.h"
#include "kalimkit/canvas/MDrawViewDelegate.h"
#include "kalimkit/canvas/NewTools.h"
#include "kalimkit/canvas/PatchRim.h"
#include "kalimkit/canvas/RotationUnderWay.h"
#include "kalimkit/canvas/TapMemory.h"
#include "kalimkit/canvas/ToolKeys.h"
#include "kalimkit/canvas/ToolType.h"
#include "kalimkit/canvas/TypingView.h"
#include "kalimkit/canvas/ZoomedCanvasView.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Image.h"
#include "kalimkit/shapes/MDrawFreeLineHelper.h"
#include "kalimkit/shapes/MDrawMosiac.h"
#include "kalimkit/shapes/MDrawText.h"
#include "kalimkit/tool/MDrawLogUtil.h"
#include "kalimkit/tool/MUndoManager.h"
#include "kalimkit/ui/gesture/RotationGestureRecognizer.h"
#include "kalimkit/ui/gesture/TapGestureRecognizer.h"

namespace kalim {

// The canvas: the picture and the tools drawn over it. It turns touches into new tools, selections,
// moves and rotations, records each complete step for undo, shows everything, and exports the
// composite.
class KALIM_API MDrawView : public ZoomedCanvasView,
                            public MUndoManagerDelegate,
                            public MDrawTextDelegate,
                            public MDrawFreeLineHelperDelegate {
public:
    // ---- making
    static std::shared_ptr<MDrawView> initWithFrame(const gfx::Rect& frame);
    void setDrawViewdelegate(std::weak_ptr<MDrawViewDelegate> delegate);
    // Whether what costs people work or nerves is mended: every step has its record, what is drawn
    // stays as it is. A drag draws, over other tools as well, taps select, and the selection is
    // dragged; patches, too. All freehand ink is kept. Off at first, and best switched on before
    // the first touch.
    bool forgiving() const { return _newTools.rules.forgiving; }
    void setForgiving(bool forgiving);
    // The host's callback for log texts, for the whole process.
    static void setLogTransferToBlock(MDrawLogUtil::LogTransferBlock block);

    // ---- the picture
    // Takes a new picture, turned upright and fitted into the view, and forgets every tool and
    // step. Null leaves the canvas without a picture. The blocks that mosaic patches show are
    // computed a millisecond later, or when the first patch needs them.
    void setSnipImage(const gfx::ImageRef& image);
    // The content at the screen's scale, with a canvas basis as large as the view shows it when
    // nothing is zoomed, without selection or handles, on an opaque bitmap: a picture larger than
    // the view comes out at the size at which the view shows it; exportImageAtPictureScale() keeps
    // its pixels. Like every export it first ends what is under way: a shape that a finger is
    // drawing is finished as it is by then, a drawing that waits for more strokes gets its step,
    // and so does a text. Null when there is no content or no surface of its size can be had.
    gfx::ImageRef exportImage();
    // The same content at the scale of the picture as it was handed in: one pixel of the picture is
    // one pixel of the result, and what nothing covers is the picture's own, where it is
    // transparent as well. Drawings and patches are scaled with it. Without a picture as
    // exportImage(). Null as there.
    gfx::ImageRef exportImageAtPictureScale();
    // What the view shows at present, at the screen's scale, selection and open text field and all.
    // No patch is shown as the preview that hides nothing: what is being drawn is finished first.
    // Null for a view without a size.
    gfx::ImageRef exportImageForScale();
    // The picture seen through a Gaussian with a standard deviation of 100 pixels, larger by what
    // the blur adds. Null for null and where it would be too large.
    gfx::ImageRef filterImg(const gfx::ImageRef& image) const;
    // What canvas points are. 0, as at first: those of the view that settles the canvas. Else they
    // belong to the picture, whose longer side has so many of them, from 1 to 10000; the view shows
    // it fitted, larger than it is only in whole multiples. Widths, texts and mosaic blocks are
    // then the same parts of the picture in every view, and what belongs to the screen, such as
    // handles, keeps its size there. Other values are ignored. In force at once while nothing is
    // drawn, else from the next picture on.
    double canvasBasis() const { return _canvasBasis; }
    void setCanvasBasis(double points);
    // What the hosts of the editor choose.
    static constexpr double usualBasis = 1000;
    // Whether what goes beyond the picture is cut at its edge, so that the content is the picture
    // and nothing grows; without a picture there is no edge. Off at first: the content grows then.
    bool clipsToPicture() const { return _clipsToPicture; }
    void setClipsToPicture(bool clips);
    bool isDirty() const { return _isDirty; }
    // Under the picture and where drawings reach beyond it; white at first.
    const gfx::ColorRef& defualtBackgroundColor() const { return _defualtBackgroundColor; }
    void setDefualtBackgroundColor(gfx::ColorRef color);

    // ---- what new tools are, and what the selection becomes
    // The class of the next gesture by its tool-type number; a number without a class draws
    // nothing.
    void beginDrawingForTypeWithDrawType(std::int64_t type, std::uint64_t drawType);
    // The same by the class itself, also for kinds that a host brings along. Answers whether tools
    // of the class are begun by touch; where they are not, nothing changes.
    bool beginDrawingWithClass(const ToolClass& toolClass, std::uint64_t drawType = 0);
    const ToolClass* drawToolClass() const { return _newTools.toolClass; }
    // Also restyles selected tools that are exactly of the type's class.
    void setDrawTypeForType(std::uint64_t drawType, std::int64_t type);
    std::uint64_t drawType() const { return _newTools.drawType; }
    // Also recolours the selection, or on a forgiving canvas the text that is being typed. Null is
    // ignored.
    void setDrawColorIsTranslucent(gfx::ColorRef color, bool isTranslucent);
    const gfx::ColorRef& color() const { return _newTools.color; }
    // Also applies to the selection, or on a forgiving canvas to the text that is being typed.
    // Widths that are not finite or below zero are ignored.
    void setDrawLineWidth(double width);
    double lineWidth() const { return _newTools.lineWidth; }
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
    // A forgiving canvas counts a freehand drawing that still waits for more strokes as a step.
    bool canUndo() const { return hasWaitingDrawing() || _undoManager->canUndo(); }
    bool canRedo() const { return !hasWaitingDrawing() && _undoManager->canRedo(); }
    MUndoManager& undoManager() { return *_undoManager; }

    // ---- gestures
    ui::RotationGestureRecognizer& rotationGesture() { return *_rotationGesture; }
    void handleRotationGesture(ui::GestureState state, double rotation);
    // On a text: edits it. View points.
    void handleDoubleTapGesture(gfx::Point place);
    void touchesBegan(const ui::TouchEvent& event) override;
    void touchesMoved(const ui::TouchEvent& event) override;
    void touchesEnded(const ui::TouchEvent& event) override;
    void touchesCancelled(const ui::TouchEvent& event) override;

    // ---- accessibility
    // The finished tools in drawing order, but for the text that is being edited: that is a text
    // field meanwhile.
    std::vector<ui::AccessibilityElement> accessibilityElements() override;
    // As a tap on the tool alone: it becomes the selection, or leaves it. A text that is selected
    // is edited instead.
    bool activateAccessibilityElement(std::uint64_t key) override;

    // ---- display
    // Has everything drawn anew at the next frame. Whoever changes a tool of the canvas by itself
    // calls it; the canvas's own operations draw again what they changed.
    void invalidateLayers();
    // How many tools the last frame drew, into layers or onto the screen; one that several damaged
    // rectangles meet counts for each.
    int lastDrawnTools() const { return _count.tools(); }

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
    bool mayMoveView() const override;
    bool mayZoomView() const override { return mayMoveView() && !_rotation.holdsFingers; }
    void viewGestureDidBegin() override;
    void viewGestureDidEnd() override;

private:
    void addGestures();

    // ---- touches (MDrawViewTouches.cpp)
    gfx::Point lastMovePoint() const;
    bool isTapping(const ui::Touch& touch) const;
    void tellDrawnOver();
    double touchScale() const;
    void scaleForScreen(MDrawTool& tool) const;
    void drawDown(gfx::Point p);
    bool endTypingByTouch();
    void drawMoveFromPointToPoint(gfx::Point from, gfx::Point to);
    void drawUp(gfx::Point p);
    bool finishCreation(gfx::Point p);
    bool hasWaitingDrawing() const;
    void endFreehand();
    void endWaitingDrawing();
    void endDrawingOfOtherPen();
    void tellHistory();
    bool makesDot() const;
    void makeDot(gfx::Point p);
    void stopDrawing();
    void endCreation();
    void finishDrag();
    void finishTap(gfx::Point p);
    bool isBeingCreated() const;
    bool isCreating(ToolRecorder recorder) const;
    void creatMDrawToolInPoint(gfx::Point p);
    ToolRef makeTool(gfx::Point p);
    void discard(const ToolRef& tool);
    void deleteCurrentHandlingTool();
    bool isOnCanvas(const ToolRef& tool) const;
    void endRotation(double rotation);

    // ---- selection (MDrawViewSelection.cpp)
    bool isSelectionValid() const { return _handingTools && _handingTools->isValidTools(); }
    bool isPickable(const MDrawTool& tool) const;
    std::shared_ptr<MDrawMutableSelect> makeSelection() const;
    void addToolToSelectedToolsPoint(const ToolRef& tool, gfx::Point p);
    void removeToolFromSelectedTools(const ToolRef& tool);
    void clearSelection();
    void dropSelection();
    void endStepUnderWay();
    void endDragUnderWay();
    void endRotationUnderWay();
    void dropAbsentFromSelection();
    void notifySelection();
    void recordSelectionChange();
    void refreshCalibrations();

    // ---- text (MDrawViewText.cpp)
    bool checkAndEndTextToolEdittingText();
    void editText(const std::shared_ptr<MDrawText>& text);
    void adoptText(const ToolRef& tool);
    std::shared_ptr<MDrawText> restyledText() const;
    std::shared_ptr<ui::View> typingHost();
    gfx::AffineTransform toTyping(const gfx::AffineTransform& toView) const;
    void placeTypingView();
    void keepAboveKeyboard(const MDrawText& text);

    void beginDrawing(const ToolClass* toolClass, std::uint64_t drawType);
    bool stepHistory(bool (*step)(MUndoManager&));

    // ---- accessibility (MDrawViewAccessibility.cpp)
    bool isAnnounced(const MDrawTool& tool) const;
    gfx::Rect announcedFrame(MDrawTool& tool) const;

    // ---- content rectangle (MDrawViewContent.cpp)
    bool cutsAtPicture() const { return _clipsToPicture && _picture.source(); }
    gfx::Rect contentRect() const;
    gfx::Rect exportedRect() const;
    bool refreshContextRect();

    bool fitIntoView();
    void followView(const gfx::AffineTransform& before);

    // ---- layers (MDrawViewLayers.cpp)
    void redisplay();
    void mark(const gfx::Rect& canvasRect);
    void sweepChangedTools();
    void updateLayers();
    ToolRef selectionOnCanvas() const;
    const ToolList& createdTools();
    bool refreshLayers();

    // ---- rendering (MDrawViewRendering.cpp)
    // The picture as it is drawn: which copy, and where on the canvas.
    struct ShownPicture {
        gfx::ImageRef image;
        gfx::Rect rect;
        gfx::Interpolation interpolation = gfx::Interpolation::High;
    };
    ShownPicture pictureToShow(const gfx::Context& context);
    void paintGround(gfx::Context& context, const gfx::Rect& rect);
    void paintItems(gfx::Context& context, const gfx::Rect& rect);
    gfx::Rect shownPicture(const gfx::Context& context, const gfx::ImageRef& image) const;
    std::optional<gfx::Rect> pictureEdge(const gfx::Context& context) const;
    void drawUncounted(gfx::Context& context, MDrawTool& tool) const;
    void drawTool(gfx::Context& context, MDrawTool& tool);
    void drawNormalItems(gfx::Context& context);
    void drawCreatedItems(gfx::Context& context);
    void drawLiveMosaics(gfx::Context& context);
    DrawnPicture drawnPicture(const ShownPicture& picture, const gfx::Rect& ground) const;
    double shownRim() const;
    void drawMosiacTools(gfx::Context& context, const DrawnPicture& picture,
                         const std::function<bool(const MDrawTool&)>& isWanted);
    void settleForExport();
    void drawExportedTools(gfx::Context& context, const DrawnPicture& picture);
    void drawAllSelectedItemsNeedSelectedSate(gfx::Context& context, bool needSelectedState);

    std::shared_ptr<MDrawView> self();

    std::weak_ptr<MDrawViewDelegate> _drawViewdelegate;
    std::shared_ptr<ToolList> _tools;
    std::unique_ptr<MUndoManager> _undoManager;
    std::shared_ptr<MDrawFreeLineHelper> _drawFreeLineHelper;
    std::shared_ptr<ui::RotationGestureRecognizer> _rotationGesture;
    std::shared_ptr<ui::TapGestureRecognizer> _doubleTapGesture;

    NewTools _newTools;

    // The tool that is being created, and the selection.
    ToolRef _handingTool;
    std::shared_ptr<MDrawMutableSelect> _handingTools;
    CanvasTouch _touch;
    RotationUnderWay _rotation;

    TapMemory _taps;
    ToolKeys _toolKeys;
    std::shared_ptr<MDrawText> _curEdittingTextTool;
    ColorPairs _textMaskColorPars;
    // What fields lie in where canvas points are the picture's; null until it is needed.
    std::shared_ptr<TypingView> _typingView;
    // Where the view belongs while a keyboard moves it; nothing while none does.
    std::optional<gfx::Rect> _selfOriginalRect;

    CanvasMosaic _mosaic;
    gfx::ColorRef _defualtBackgroundColor;
    bool _isDirty = false;
    bool _clipsToPicture = false;
    double _canvasBasis = 0;
    // The owner has been told that something is drawn, and not yet that it is not any more.
    bool _isDrawingOver = false;
    // A step beyond the area budget is being undone.
    bool _isTakingBack = false;

    // What is on the screen.
    CanvasLayers _layers;
    DrawnTools _drawn;
    // Those made by a finger and not finished yet; brought up to date when asked for.
    ToolList _createdTools;
    FrameCount _count;
    // A patch is selected, as of the last update of what is on the screen.
    bool _hasLivePatch = false;
};

}  // namespace kalim
