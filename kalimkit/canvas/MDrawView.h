#pragma once

#include <optional>

#include "kalimkit/canvas/CanvasPicture.h"
#include "kalimkit/canvas/MDrawViewDelegate.h"
#include "kalimkit/canvas/ToolType.h"
#include "kalimkit/canvas/ZoomedCanvasView.h"
#include "kalimkit/tool/MDrawLogUtil.h"
#include "kalimkit/tool/MDrawTool.h"

namespace kalim::ui {
class RotationGestureRecognizer;
}

namespace kalim {

class CanvasArrangement;
class CanvasByKeys;
class MDrawMutableSelect;
class MDrawText;
class MUndoManager;
class StepListener;
struct Document;
struct ExportedPicture;
struct SealedDocument;
enum class FingerState;
struct CanvasParts;

// The canvas: the picture and the tools drawn over it. It turns touches into new tools, selections,
// moves and rotations, records each complete step for undo, shows everything, and exports the
// composite. Nothing that it hands out, pictures or sealed documents, tells of what sealed and
// solid mosaic patches hide (MosaicStyle): it is drawn from a copy of the picture that has those
// pixels overwritten first, with all that the picture's file holds together with them
// (gfx::Image::grid()).
class KALIM_API MDrawView : public ZoomedCanvasView {
public:
    // ---- making
    static std::shared_ptr<MDrawView> initWithFrame(const gfx::Rect& frame);
    void setDrawViewdelegate(std::weak_ptr<MDrawViewDelegate> delegate);
    // Whether what costs people work or nerves is mended: every step has its record, what is drawn
    // stays as it is. A drag draws, over other tools as well, taps select, and the selection is
    // dragged; patches, too. All freehand ink is kept, and so is what is zoomed in when the view
    // gets another size. Off at first, and best switched on before the first touch.
    bool forgiving() const;
    void setForgiving(bool forgiving);
    // Whether it only shows: fingers zoom and move it, and change nothing. Off at first.
    bool isReadOnly() const { return _isReadOnly; }
    void setReadOnly(bool isReadOnly) { _isReadOnly = isReadOnly; }
    // What a pointer can do that a fingertip cannot: handles on the middles of sides as well, and
    // one that turns; a tap on what is selected does not let it go. On a forgiving canvas alone.
    // Off at first.
    bool fineHandles() const;
    void setFineHandles(bool fine);
    // Whether shapes that are dragged and resized let themselves be laid along others and along the
    // picture, unless control is held; on a forgiving canvas alone. Off at first.
    bool snaps() const;
    void setSnaps(bool snaps);
    // Sets the host's callback for log texts, for the whole process.
    static void setLogTransferToBlock(MDrawLogUtil::LogTransferBlock block);

    // ---- the picture
    // Takes a new picture, turned upright and fitted into the view, and forgets every tool, step
    // and cut. Null leaves the canvas without a picture. The blocks that mosaic patches show are
    // computed a millisecond later, or when the first patch needs them.
    void setSnipImage(const gfx::ImageRef& image);
    // What is on the canvas as a document, but for the bytes of the picture's file, which the host
    // has. Like every export it first ends what is under way.
    Document document();
    // The same to be given away: with its picture, which holds nothing that a patch hides or a crop
    // has cut off; drawings outside of the crop are left out.
    SealedDocument sealedDocument();
    // Takes a document and its picture, decoded, in the place of all that is there, as it was where
    // it was saved, whatever size this view has. Its tools have no steps. Answers with what is
    // wrong, such as a picture of another size: nothing has happened then.
    std::optional<std::string> openDocument(const Document& document, const gfx::ImageRef& picture);
    // Who hears of every finished step, as a text of what it has changed; not owned. Nothing is
    // written down while there is nobody.
    void setStepListener(std::weak_ptr<StepListener> listener);
    // How the canvas was before its first step: the text of a document without the picture's bytes,
    // see DocumentReading::needsBytes.
    std::string stepsSetUp() const;
    // Plays steps again on a canvas that has been set up so by openDocument() and has none. The
    // tools, the stacks, their snapshots and the colours that tools share are then what they were,
    // and later steps follow on. Answers with what is wrong with a step: it and those after it have
    // not happened.
    std::optional<std::string> replaySteps(std::span<const std::string> steps);
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
    // How the picture that exportImageAtPictureScale() handed out last came from the canvas's one,
    // so that a file of it can keep what nothing covers as it is; nothing for any other.
    std::optional<ExportedPicture> exportedPicture(const gfx::ImageRef& image) const;
    // All of the picture, and nothing beyond it, at its own scale as the one above, with all that
    // is drawn there, whatever its cut: what the cut is chosen from. Null without a picture.
    gfx::ImageRef exportUncutImage();
    // What the view shows at present, at the screen's scale, selection and open text field and all.
    // No patch is shown as the preview that hides nothing: what is being drawn is finished first.
    // Null for a view without a size.
    gfx::ImageRef exportImageForScale();
    // The picture seen through a Gaussian with a standard deviation of 100 pixels, larger by what
    // the blur adds. Of the canvas's own picture without what is hidden for certain. Null for null
    // and where it would be too large.
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
    bool clipsToPicture() const;
    void setClipsToPicture(bool clips);
    // Shows another part of the picture, and turns it, as a step of undo like any other: nothing of
    // what is drawn changes, canvas points stay those of the whole picture as it is unturned, and
    // what lies outside of the part is hidden, in every export as well. Ends what is under way, and
    // glides to the part from how the view is shown, or from where somebody has shown the part
    // already, view points. Answers whether there is such a step: not without a picture, for what
    // isCutOf() refuses, and for what shows nothing else.
    bool setPictureCut(const PictureCut& cut) { return setPictureCutSeenAt(cut, {}); }
    bool setPictureCutSeenAt(const PictureCut& cut, const gfx::Rect& seenAt);
    // The same at once and without a step, for a picture that comes with its cut. Answers whether
    // it is one of the picture.
    bool resetPictureCut(const PictureCut& cut);
    bool isDirty() const;
    // Under the picture and where drawings reach beyond it; white at first.
    const gfx::ColorRef& defualtBackgroundColor() const;
    void setDefualtBackgroundColor(gfx::ColorRef color);

    // ---- what new tools are, and what the selection becomes
    // The class of the next gesture by its tool-type number; a number without a class draws
    // nothing.
    void beginDrawingForTypeWithDrawType(std::int64_t type, std::uint64_t drawType);
    // The same by the class itself, also for kinds that a host brings along. Answers whether tools
    // of the class are begun by touch; where they are not, nothing changes. Those that are made
    // point by point are where setPlacesPoints() says so.
    bool beginDrawingWithClass(const ToolClass& toolClass, std::uint64_t drawType = 0);
    // The same by the class's name; false for a name without one.
    bool beginDrawingWithClassNamed(const std::string& name, std::uint64_t drawType = 0);
    const ToolClass* drawToolClass() const;
    // Whether kinds that are made point by point (ToolBeginning::Taps) are made by fingers on the
    // canvas: each tap sets a point, and so does the end of a drag, to which a line leads
    // meanwhile. A tap on the first point ends the shape, and so do two taps at one place, or a
    // shape that has all its points. The whole shape is one step; undo() takes points back until
    // then. Off at first: the canvas leaves them to its host then.
    bool placesPoints() const;
    void setPlacesPoints(bool places);
    // Whether a shape is under way that still gets points.
    bool isPlacingPoints() const;
    // The shape under way ends as it is, as a step, or goes without one. Answers whether there was
    // any; one with too few points is dropped.
    bool completePoints();
    bool dropPoints();
    // Also restyles selected tools that are exactly of the type's class.
    void setDrawTypeForType(std::uint64_t drawType, std::int64_t type);
    std::uint64_t drawType() const;
    // Also recolours the selection, or on a forgiving canvas the text that is being typed. Null is
    // ignored.
    void setDrawColorIsTranslucent(gfx::ColorRef color, bool isTranslucent);
    const gfx::ColorRef& color() const;
    // Also applies to the selection, or on a forgiving canvas to the text that is being typed.
    // Widths that are not finite or below zero are ignored.
    void setDrawLineWidth(double width);
    double lineWidth() const;
    // What else people choose of a kind's look (ToolProperty), for what is selected, as a step, and
    // for what the pen in hand draws from now on; a text that is being typed on a forgiving canvas
    // instead of the selection. Whether there is any that has it and can take the value.
    bool setToolProperty(const std::string& name, const ToolPropertyValue& value);
    // The same of a text that makes a tool and is no choice from a list, see ToolRow::details; with
    // "picture" and what smallPictureText() makes of one, stamps show it where their "sign" is
    // "picture".
    bool setToolDetail(const std::string& name, const std::string& text);
    // The value that all of the selection have; nothing where they differ. Without a selection that
    // of the pen.
    std::optional<ToolPropertyValue> toolProperty(const std::string& name) const;
    // What is set between the two is only shown, on what is selected, as while a slider is dragged:
    // it is no step, and goes when it ends. On a forgiving canvas, and with a selection, alone.
    // Undo, a gesture's cancelling, a touch, an export, and a change of the selection break it off.
    // The end tells whether nothing has.
    void beginRestyling();
    bool endRestyling();
    // Those that all of the selection have, or else those of the pen.
    std::vector<const ToolProperty*> toolProperties() const;
    // The colours that outline texts, by the texts' colours. Texts in other colours are outlined in
    // white, or in black where they adapt and white contrasts too little.
    using ColorPairs = std::vector<std::pair<gfx::ColorRef, gfx::ColorRef>>;
    void setTextMaskColorsParForTextColors(ColorPairs maskColors);

    // ---- measuring; reaches every tool, also those made later
    // Units per point; 0 means uncalibrated.
    void setCalibration(double calibration);
    void setUnit(std::string unit);
    void setShowMeasurement(bool show);

    // ---- tools and selection
    // In drawing order, the topmost last.
    const ToolList& tools() const;
    bool hasTools() const { return !tools().empty(); }
    bool hasDrawed() const { return !tools().empty(); }
    // Takes in a tool that the caller made and drove by points, as a finished and recorded step. It
    // keeps its width and style, and gets the canvas's colour if it has none. Answers whether it is
    // on the canvas: null, a group, a tool that is not valid and one that has been recorded before
    // are refused, and one that goes beyond the area budget is taken back.
    bool addTool(const ToolRef& tool);
    // Makes these the selection, in this order. Tools that are not on the canvas, are still being
    // created or are named twice are passed over; none left clears the selection.
    void selectTools(const ToolList& tools);
    void selectNone();
    bool hasSelectedTools() const;
    // The selection group; null when nothing is selected.
    const std::shared_ptr<MDrawMutableSelect>& handingTools() const;
    // Finds the topmost finished tool under a canvas point; null for none.
    ToolRef testHitTestSelectTool(gfx::Point p) const;
    // The tool that the current gesture is creating; null between gestures.
    const ToolRef& handingTool() const;
    void deleteSelectedTools();
    // What else is done with finished tools: aligning, ordering, grouping, copying and so on. It
    // holds the canvas.
    std::shared_ptr<CanvasArrangement> arrangement();
    // The same for keys, with what an assistive technology says of it. It holds the canvas.
    std::shared_ptr<CanvasByKeys> byKeys();
    // No undo reverses these.
    void clearTools();
    void removeInvaildTools();
    // Also ends the editing of a text, and a creation under way: a tool that is valid by now stays.
    void finalizeCurrentDrawing();
    // Edits the text that is all that is selected; whether there is one.
    bool editSelectedText();
    // Ends the editing of a text, if there is any.
    void finishEditText();
    // The text that is being edited; null for none.
    const std::shared_ptr<MDrawText>& curEdittingTextTool() const;

    // ---- undo
    // Whether anything happened. Both drop the selection first; with fine handles what is still
    // there is selected again.
    bool undo();
    bool redo();
    // A forgiving canvas counts a freehand drawing that still waits for more strokes as a step.
    bool canUndo() const;
    bool canRedo() const;
    MUndoManager& undoManager();

    // ---- gestures
    // What the one finger on the canvas is doing, see FingerState.h.
    FingerState fingerState() const;
    ui::RotationGestureRecognizer& rotationGesture() { return *_rotationGesture; }
    // What a finger draws goes without a record, and what it drags is again as it was, on a
    // forgiving canvas; the finger has done its work. Whether there was anything.
    bool cancelGesture();
    // What a press of a pointer would do there, view points.
    std::optional<ui::Cursor> cursorAt(gfx::Point p) override;
    void handleRotationGesture(ui::GestureState state, double rotation);
    // Edits the text at the place, if there is one; view points.
    void handleDoubleTapGesture(gfx::Point place);
    void touchesBegan(const ui::TouchEvent& event) override;
    void touchesMoved(const ui::TouchEvent& event) override;
    void touchesEnded(const ui::TouchEvent& event) override;
    void touchesCancelled(const ui::TouchEvent& event) override;
    void touchPredicted(const ui::Touch& touch, const std::vector<gfx::Point>& places) override;
    void pointerEntered(gfx::Point p) override { pointerMoved(p); }
    void pointerMoved(gfx::Point p) override;
    void pointerExited() override;
    // Of the environment's userDefault(), on where nothing is said: whether fingers only zoom and
    // move a forgiving canvas once a pen has touched its window, and leave drawing to the pen.
    static constexpr const char* penOnlySetting = "penOnly";
    // The finished tools in drawing order, but for the text that is being edited: that is a text
    // field meanwhile.
    std::vector<ui::AccessibilityElement> accessibilityElements() override;
    // As a tap on the tool alone: it becomes the selection, or leaves it. A text that is selected
    // is edited instead.
    bool activateAccessibilityElement(std::uint64_t key) override;
    // Has everything drawn anew at the next frame. Whoever changes a tool of the canvas by itself
    // calls it; the canvas's own operations draw again what they changed.
    void invalidateLayers();
    // How many tools the last frame drew, into layers or onto the screen; one that several damaged
    // rectangles meet counts for each.
    int lastDrawnTools() const;

    ~MDrawView() override;

protected:
    MDrawView();
    void init(const gfx::Rect& frame) override;
    void drawRect(gfx::Context& context, const gfx::Rect& dirty) override;
    void layoutSubviews() override;
    void didMoveToWindow() override;
    bool mayMoveView() const override;
    bool mayZoomView() const override;
    void viewGestureDidBegin() override;
    void viewGestureDidEnd() override;

private:
    void addGestures();
    bool fitIntoView();
    bool beginsViewing(const ui::TouchEvent& event);
    bool isForViewing(const ui::TouchEvent& event) const;
    gfx::AffineTransform placingContent(const gfx::Rect& seenAt) const;
    void showCut(const PictureCut& cut, const std::optional<Seen>& from);
    void takePicture(const gfx::ImageRef& image,
                     const std::optional<CanvasPicture::Settlement>& settlement);
    std::shared_ptr<CanvasParts> held();

    std::unique_ptr<CanvasParts> _parts;
    std::shared_ptr<ui::RotationGestureRecognizer> _rotationGesture;
    double _canvasBasis = 0;
    bool _isReadOnly = false;
    // The fingers that are down do not draw.
    bool _isViewing = false;
};

}  // namespace kalim
