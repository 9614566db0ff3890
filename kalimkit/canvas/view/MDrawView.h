#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "kalimkit/canvas/model/MDrawLogUtil.h"
#include "kalimkit/canvas/model/MUndoManager.h"
#include "kalimkit/canvas/view/MDrawMutableSelect.h"
#include "kalimkit/canvas/view/MDrawViewDelegate.h"
#include "kalimkit/canvas/view/ToolType.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Image.h"
#include "kalimkit/ui/touch/RotationGestureRecognizer.h"
#include "kalimkit/ui/view/View.h"

namespace kalim {

// The canvas: the picture and the tools drawn over it. It turns touches into new tools, selections,
// moves and rotations, records each complete step for undo, shows everything, and exports the
// composite. Lengths are points; "canvas" points are those of the picture and the tools, which
// zoom, pan and rotation map to the view's own.
class KALIM_API MDrawView : public ui::View, public MUndoManagerDelegate {
public:
    // ---- making
    static std::shared_ptr<MDrawView> initWithFrame(const gfx::Rect& frame);
    void setDrawViewdelegate(std::weak_ptr<MDrawViewDelegate> delegate);
    // The host's callback for log texts, for the whole process.
    static void setLogTransferToBlock(MDrawLogUtil::LogTransferBlock block);

    // ---- the picture
    // Takes a new picture, turned upright and fitted into the view, and forgets every tool and
    // step. Null leaves the canvas without a picture.
    void setSnipImage(const gfx::ImageRef& image);
    // The upright, fitted picture; null when there is none.
    const gfx::ImageRef& bgImg() const { return _bgImg; }
    // Where it lies, canvas points.
    const gfx::Rect& bgImgRect() const { return _bgImgRect; }
    // The content: the picture's rectangle united with every tool's extent, canvas points.
    const gfx::Rect& ctxRect() const { return _ctxRect; }
    // The content at the screen's scale, without selection or handles, on an opaque bitmap. Null
    // when there is no content or no surface of its size can be had.
    gfx::ImageRef exportImage();
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
    // Also ends a creation under way: a tool that is valid by now stays.
    void finalizeCurrentDrawing();

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
    // The factor at which the canvas is shown.
    double getScale() const;
    double contextScale() const { return _contextScale; }
    // A scale for display while the canvas is not zoomed; 0 for none.
    void setFScal(float scale);

    // ---- gestures
    bool enableGesture() const { return _enableGesture; }
    // Two-finger gestures.
    void setEnableGesture(bool enable) { _enableGesture = enable; }
    ui::RotationGestureRecognizer& rotationGesture() { return *_rotationGesture; }
    void handleRotationGesture(ui::GestureState state, double rotation);
    void touchesBegan(const ui::TouchEvent& event) override;
    void touchesMoved(const ui::TouchEvent& event) override;
    void touchesEnded(const ui::TouchEvent& event) override;
    void touchesCancelled(const ui::TouchEvent& event) override;

    // How many tools the last frame drew.
    int lastDrawnTools() const { return _drawnTools; }

    // ---- from the undo manager
    void canUndoStateChangedCanRedo(bool canUndo, bool canRedo) override;
    void toolsStateChangedState(const ToolRef& tool, State state) override;

protected:
    MDrawView() = default;
    void init(const gfx::Rect& frame) override;
    void drawRect(gfx::Context& context, const gfx::Rect& dirty) override;
    void layoutSubviews() override;

private:
    // ---- touches (MDrawViewTouches.cpp)
    void updateDrawStateTouches(std::int32_t phase, std::size_t touchCount);
    bool isSingleFinger() const { return (_drawState & 1U) != 0; }
    void drawDown(gfx::Point p);
    void drawMoveFromPointToPoint(gfx::Point from, gfx::Point to);
    void drawUp(gfx::Point p);
    bool finishCreation(gfx::Point p);
    void stopDrawing();
    void finishDrag();
    void finishTap(gfx::Point p);
    bool isBeingCreated() const;
    void creatMDrawToolInPoint(gfx::Point p);
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
    void notifySelection();
    void recordSelectionChange();
    void refreshCalibrations();
    void applyMeasuring(MDrawTool& tool) const;

    bool stepHistory(bool (*step)(MUndoManager&));

    // ---- content rectangle (MDrawViewContent.cpp)
    gfx::Rect contentRect() const;
    bool refreshContextRect();

    // ---- rendering (MDrawViewRendering.cpp)
    enum ItemKinds : unsigned { SelectedItems = 1, DrawingItems = 2, NormalItems = 4 };
    void processViewTransform();
    void drawCanvas(gfx::Context& context, const gfx::Rect& rect) const;
    gfx::Rect shownPictureRect(const gfx::Context& context) const;
    void drawSnipImage(gfx::Context& context, const gfx::Rect& rect) const;
    // Both answer how many tools they drew.
    int drawAllItems(gfx::Context& context, unsigned kinds);
    int drawAllSelectedItemsNeedSelectedSate(gfx::Context& context, bool needSelectedState);
    gfx::Rect getDrawImageRect() const;
    bool isScreenShot() const;

    std::shared_ptr<MDrawView> self();

    std::weak_ptr<MDrawViewDelegate> _drawViewdelegate;
    std::shared_ptr<ToolList> _tools;
    std::unique_ptr<MUndoManager> _undoManager;
    std::shared_ptr<ui::RotationGestureRecognizer> _rotationGesture;

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

    // The picture.
    gfx::ImageRef _bgImg;
    gfx::Rect _bgImgRect;
    gfx::Rect _ctxRect;
    gfx::ColorRef _defualtBackgroundColor;
    bool _isDirty = false;

    // The view.
    double _contextScale = 1.0;
    double _tmpContextScale = 1.0;
    gfx::Point _viewMove;
    // Radians, in spite of its name.
    double _curRotateDegree = 0;
    float _fScal = 0;
    gfx::AffineTransform _mViewTransform;
    gfx::AffineTransform _mViewInvertTransform;
    int _drawnTools = 0;
};

}  // namespace kalim
