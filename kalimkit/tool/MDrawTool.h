#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "kalimkit/gfx/AffineTransform.h"
#include "kalimkit/gfx/Color.h"
#include "kalimkit/gfx/Context.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Polygon.h"
#include "kalimkit/gfx/Rect.h"
#include "kalimkit/tool/Feature.h"
#include "kalimkit/tool/MToolUndoManager.h"
#include "kalimkit/tool/MeasurementLabel.h"
#include "kalimkit/tool/MoveDirection.h"
#include "kalimkit/tool/ToolClass.h"
#include "kalimkit/tool/ToolDetail.h"
#include "kalimkit/tool/ToolGround.h"
#include "kalimkit/tool/ToolProperty.h"
#include "kalimkit/tool/ToolRules.h"
#include "kalimkit/ui/view/TouchContact.h"

namespace kalim {

class MDrawTool;
using ToolRef = std::shared_ptr<MDrawTool>;
using ToolList = std::vector<ToolRef>;

// Everything that can lie on the canvas: two defining points, a colour and a width, a rotation
// about the middle of the points, grab handles, a measurement and a history of its own. Points are
// canvas points; the defining points are those of the unrotated tool. Shapes override the hooks;
// the canvas talks to tools through this class alone.
class KALIM_API MDrawTool : public std::enable_shared_from_this<MDrawTool> {
public:
    // ---- making and identity
    static ToolRef initWithStartPoint(gfx::Point start);
    virtual ~MDrawTool();
    static const ToolClass& Class();
    virtual const ToolClass& toolClass() const { return Class(); }
    // The name reads "Class:Index:n"; n counts the tools of that class in this process.
    const std::string& name() const { return _name; }
    void setName(std::string name) { _name = std::move(name); }
    // Takes the name of a tool that it stands for. Names given out later do not repeat it.
    void takeName(std::string name);
    // Forgets the counters behind the names, for tests.
    static void resetNames();

    // ---- creation by a gesture; canvas points
    virtual void drawDown(gfx::Point) {}
    virtual void drawMove(gfx::Point) {}
    virtual void drawUp(gfx::Point) {}
    // How the finger or pen touches at the point that comes next. Most kinds do not care.
    virtual void takeContact(const ui::TouchContact& /*contact*/) {}
    // Where the finger is about to be, canvas points, the farthest last: shown until the next point
    // comes, and nothing that the tool has.
    virtual void predict(const std::vector<gfx::Point>& /*places*/) {}
    // The stroke under way goes; false for kinds that are made of one.
    virtual bool dropStroke() { return false; }
    // As drawMove() while a key asks for a straight stroke; false for kinds that draw none.
    virtual bool drawStraight(gfx::Point) { return false; }
    // The same without a finger, from the point after the start point on; the last one is where the
    // finger would lift.
    virtual void drawThrough(std::span<const gfx::Point> points);
    // What a finger that rests at the end of a stroke wants of it: a new tool without a history,
    // which the finger may go on drawing; null where the stroke looks like nothing else.
    virtual ToolRef straightened() const { return nullptr; }

    // ---- creation point by point (ToolBeginning::Taps), where drawMove() leads a line to the next
    // point and drawUp() sets it; the shape finalizes itself once it has all of them
    // The finger has left without setting a point: nothing leads to it any more.
    virtual void letGoOfPoint() {}
    // Takes the last point back; false where the first alone is left.
    virtual bool takeBackPoint() { return false; }
    // Finalizes the shape as it is by now; false while it has too few points.
    virtual bool completePoints() { return false; }

    // A tool that was made without a canvas comes to one: settles what a finger would have.
    virtual void settle() {}
    // False while the tool is degenerate; the canvas discards it then.
    virtual bool isDrawVaild() const { return true; }
    // Marks the tool as finished and clamps its geometry.
    virtual void finalize();
    // Sets the end point only.
    virtual void finalize(gfx::Point end);
    // Clamps the geometry to valid bounds.
    virtual void limitValidFeatrue() {}

    // ---- geometry
    // The unrotated box of the defining points.
    virtual gfx::Rect frame() const;
    // Grows the frame by half the width, turns it and yields its bounding box.
    virtual gfx::Rect frameIncludeLineWidth() const;
    // Canvas point to the tool's unrotated frame, and back. Both are the identity for tools that
    // are not turned by their drawing context.
    virtual gfx::Point invertPoint(gfx::Point p) const;
    gfx::Point transformPoint(gfx::Point p) const;
    // Quarter turns, counter-clockwise and 0 to 3, by which the picture was turned when the tool
    // was made: what it has of words stands upright on a picture that is turned so. 0 at first.
    // Kinds that are nothing but words are turned back themselves.
    virtual int quarterTurns() const { return _quarterTurns; }
    virtual void setQuarterTurns(int turns) { _quarterTurns = (turns % 4 + 4) % 4; }
    // The frame as it lies on the picture turned so, about the same middle.
    gfx::Rect uprightFrame() const;
    // centerPoint becomes the frame's centre, preScalePoint its far corner.
    void reCalcCenter();
    // Turns points into units, with isSquare square points into square units; uncalibrated it
    // changes nothing.
    double unitConvertIsSquare(double value, bool isSquare) const;

    // ---- hit testing; canvas points, except where said. Tests may normalise the defining points.
    virtual bool hitTest(gfx::Point p);
    // Records in moveDirection what was hit.
    virtual bool hitOnHandle(gfx::Point p);
    virtual bool testHitOnHandle(gfx::Point p);
    // Both points in the tool's unrotated frame: the caller has inverted p already.
    bool isPointOnHandle(gfx::Point p, gfx::Point handle) const;

    // ---- editing
    // One step of a drag from p1 to p2, canvas points. A step that would make the tool invalid is
    // taken back. Answers how far the drag has come: p2, or p1 where the step was taken back.
    virtual gfx::Point tryMovePointEndPoint(gfx::Point p1, gfx::Point p2);
    virtual void moveByOffsetEndPoint(gfx::Point offset, gfx::Point end);
    // Radians since the gesture began.
    virtual void rotateChangedWithAngle(double angle);
    virtual void rotateEndedWithAngle(double angle);
    virtual void stopMoveHandle();
    // Brings a finished tool whose width has changed within the bounds of that width.
    virtual void growToLineWidth() { limitValidFeatrue(); }

    // ---- arranging: what is done to the tool as a whole (MDrawToolArranging.cpp)
    // Carries every point that the tool is made of elsewhere, in the tool's unrotated frame. Kinds
    // with further points than the two override it.
    using PointMap = std::function<gfx::Point(gfx::Point)>;
    virtual void mapPoints(const PointMap& map);
    virtual void moveBy(gfx::Point offset);
    // About a canvas point, radians clockwise. What cannot be turned only goes along.
    virtual void turnBy(gfx::Point center, double angle);
    // Along the canvas's axes, away from a canvas point that stays; both factors are above 0. A
    // turned tool keeps its angle: its sides become as long as the factors make them.
    virtual void scaleBy(gfx::Point fixed, gfx::Size factors);
    // The turn of the tool about its middle as it is now; none for tools that turn their points.
    gfx::AffineTransform turning() const;
    // Bounds the shape as it is seen, turned, canvas points: what it is laid along others by.
    virtual gfx::Rect shownFrame() const { return turning().apply(frame()); }
    // Which groups the tool is in, by their numbers on its canvas, the outermost first.
    const std::vector<std::int64_t>& groups() const { return _groups; }
    void setGroups(std::vector<std::int64_t> groups) { _groups = std::move(groups); }
    // No finger picks a locked tool.
    bool isLocked() const { return _isLocked; }
    void setLocked(bool isLocked) { _isLocked = isLocked; }

    // ---- drawing; the context is in canvas coordinates
    virtual void draw(gfx::Context& context);
    // Of a selected tool the outline and the handles alone, over what is drawn of it elsewhere.
    void drawSelection(gfx::Context& context);
    virtual void drawContent(gfx::Context&) {}
    virtual void drawSlectedStateContent(gfx::Context& context) { drawContent(context); }
    virtual void drawContentHandle(gfx::Context&) {}
    void drawHandleAtPoint(gfx::Context& context, gfx::Point handle) const;
    void drawRotateCenterPoint(gfx::Context& context, gfx::Point center);
    // The label, for a finished tool that is not selected and has a text to show.
    virtual void drawMeasurement(gfx::Context& context);
    // A tool of the ground draws here and not as content: over the picture, which reaches as far as
    // the background (canvas points). The fill is the picture in blocks.
    virtual void drawOnGround(gfx::Context&, const gfx::Paint& /*fill*/,
                              const gfx::Rect& /*background*/) {}
    // What a tool of the ground covers, or one of the shade leaves light, canvas points, as it is
    // turned.
    virtual gfx::Polygon area() const;
    // How dark a tool of the shade wants everything else, from 0 to 1.
    virtual double shade() const { return 0; }
    // The place of the ground, canvas points, that the tool shows once more; nothing for most.
    virtual std::optional<gfx::Rect> repeatedPlace() const { return std::nullopt; }
    // Handed down for the time of a drawing, null afterwards; not owned.
    virtual void setGround(ToolGround* /*ground*/) {}
    // What it is called, with a gap for its colour where that is named; see ToolRow::label.
    virtual const char* label() const { return toolClass().label(); }
    // Whether it covers what lies under its frame for good.
    virtual bool isHiding() const { return false; }
    // Where the tool's picture has changed by drawMove since this was asked last, canvas points,
    // the line's width included, for tools that grow point by point. Nothing where the whole extent
    // may have changed.
    virtual std::optional<gfx::Rect> takeAddedExtent() { return std::nullopt; }
    // What of the content and the label may be seen, canvas points; all of it at first. Handles and
    // the outline of a selected tool are drawn wherever they are.
    const std::optional<gfx::Rect>& visibleRect() const { return _visibleRect; }
    virtual void setVisibleRect(const std::optional<gfx::Rect>& rect) { _visibleRect = rect; }
    // Brings transform and mInvertTransform up to the present points and angle, as drawing does.
    void refreshTransform();

    // ---- capabilities
    virtual bool isSupportGestureRotate() const { return false; }
    // Whether the tool is turned by whole quarters and not by gestures.
    virtual bool isTurnedByQuarters() const { return false; }
    // Whether rotation is applied by turning the drawing context; others turn their own points.
    virtual bool isRotateByRotateCtx() const { return true; }

    // ---- group operations; a single tool is no group
    virtual bool mutabaleToolObjType() const { return false; }
    virtual bool containTool(const ToolRef&) const { return false; }
    virtual void addSubTool(const ToolRef&) {}
    virtual void removeSubTool(const ToolRef&) {}
    virtual void addSubToolToArray(ToolList&) const {}
    virtual void removeSubToolFromArray(ToolList&) const {}
    // For groups: the callback for each member. A single tool answers false.
    using ToolStep = std::function<bool(const ToolRef&)>;
    virtual bool undo(const ToolStep&) { return false; }
    virtual bool redo(const ToolStep&) { return false; }
    // Makes a group of the same members; a single tool answers with null.
    virtual ToolRef copyOfGroup() const { return nullptr; }

    // ---- history
    virtual Feature getFeature() const;
    // Null is ignored; a missing colour becomes none, other missing keys leave their property
    // alone. lastRotateAngle is deliberately not restored.
    virtual void setFeature(const FeatureRef& feature);
    // Records a snapshot of a valid tool; whether it did.
    virtual bool updatefeature();
    // Whether a snapshot taken now would differ from the one in force.
    virtual bool hasUnrecordedChange() const;
    bool undo();
    bool redo();
    void revertLastValidfeature();
    virtual void resetRedo();
    virtual void reset();
    MToolUndoManager& undoMgr() { return _undoMgr; }

    // ---- properties
    gfx::Point startPoint() const { return _startPoint; }
    void setStartPoint(gfx::Point p) { _startPoint = p; }
    gfx::Point endPoint() const { return _endPoint; }
    void setEndPoint(gfx::Point p) { _endPoint = p; }
    // The style within the class; classes with one style store 0 whatever is passed.
    virtual std::uint64_t drawType() const { return _drawType; }
    virtual void setDrawType(std::uint64_t drawType);
    virtual gfx::ColorRef color() const { return _color; }
    virtual void setColor(gfx::ColorRef color) { _color = std::move(color); }
    const gfx::ColorRef& fillColor() const { return _fillColor; }
    void setFillColor(gfx::ColorRef color) { _fillColor = std::move(color); }
    virtual double lineWidth() const { return _lineWidth; }
    virtual void setLineWidth(double width);
    bool selected() const { return _selected; }
    virtual void setSelected(bool selected) { _selected = selected; }
    bool finalized() const { return _finalized; }
    bool isNewBuild() const { return _isNewBuild; }
    void setIsNewBuild(bool isNewBuild) { _isNewBuild = isNewBuild; }
    // As the canvas has handed them down.
    const ToolRules& rules() const { return _rules; }
    virtual void setRules(const ToolRules& rules) { _rules = rules; }
    // Drawn as a member of a group of several, so without handles of its own.
    bool isMutableTool() const { return _isMutableTool; }
    void setIsMutableTool(bool isMutable) { _isMutableTool = isMutable; }
    // Angles are radians.
    double rotateAngle() const { return _rotateAngle; }
    void setRotateAngle(double angle) { _rotateAngle = angle; }
    // Where the next rotation gesture begins.
    double lastRotateAngle() const { return _lastRotateAngle; }
    void setLastRotateAngle(double angle) { _lastRotateAngle = angle; }
    // These are the rotation about the centre as last applied, and its inverse.
    const gfx::AffineTransform& transform() const { return _transform; }
    const gfx::AffineTransform& mInvertTransform() const { return _mInvertTransform; }
    MoveDirection moveDirection() const { return _moveDirection; }
    void setMoveDirection(MoveDirection direction) { _moveDirection = direction; }
    gfx::Point centerPoint() const { return _centerPoint; }
    void setCenterPoint(gfx::Point p) { _centerPoint = p; }
    gfx::Point preScalePoint() const { return _preScalePoint; }
    void setPreScalePoint(gfx::Point p) { _preScalePoint = p; }
    double zoomScale() const { return _zoomScale; }
    void setZoomScale(double scale) { _zoomScale = scale; }
    // A handle's diameter and the width of its outline are canvas points.
    int handleSize() const { return _handleSize; }
    int handleLineWidthSize() const { return _handleLineWidthSize; }
    double handleViewScale() const { return _handleViewScale; }
    virtual void setHandleViewScale(double scale);
    // View points per canvas point, for what belongs to the screen and keeps its size there
    // whatever the canvas's points are: handles, the outline of the selection, a finger's reach. 0,
    // as at first, where canvas points stand for it.
    double viewScale() const { return _viewScale; }
    virtual void setViewScale(double scale) { _viewScale = scale; }
    const gfx::ColorRef& handleFillColor() const { return _handleFillColor; }

    // ---- what people choose of its look, by name; see ToolRow::properties
    // The usual value where nothing was chosen; nothing for a name that the kind does not have.
    virtual std::optional<ToolPropertyValue> property(std::string_view name) const;
    // Whether the kind has it and can take the value; nothing happens otherwise.
    virtual bool setProperty(std::string_view name, const ToolPropertyValue& value);
    // Those that are not as usual, in the order of the kind's list.
    ToolPropertyValues chosenProperties() const;

    // ---- words, for kinds that have some
    virtual std::optional<std::string> words() const { return std::nullopt; }
    virtual void setWords(const std::string&) {}
    // What those hear of it who do not see it: its words, or what stands for them.
    virtual std::optional<std::string> spokenWords() const { return words(); }

    // ---- counting, for kinds of ToolRow::isCounted
    // Tools whose texts are equal count together.
    virtual std::string countSeries() const { return {}; }
    // Which of its series it is, from 1 on in the order in which they were made; the canvas keeps
    // it up while tools come and go. 0 for kinds that are not counted.
    virtual int count() const { return 0; }
    virtual void setCount(int) {}

    // What else there is to say about it, in a fixed order.
    virtual ToolDetails details() const { return {}; }

    // ---- keeping: what besides the common properties makes the tool, see ToolRow::details
    virtual ToolDetails keptDetails() const { return details(); }
    // Becomes as it was when that was named. Whether the kind has such a detail.
    virtual bool takeDetail(std::string_view /*name*/, const ToolDetailValue& /*value*/) {
        return false;
    }
    // The members of a JSON object that a document has for the tool and nobody here knows; empty
    // for none. They are kept for the next document.
    const std::string& foreignKeys() const { return _foreignKeys; }
    void setForeignKeys(std::string json) { _foreignKeys = std::move(json); }

    // ---- measurement
    // Units per point; 0 means uncalibrated.
    double calibration() const { return _calibration; }
    void setCalibration(double calibration) { _calibration = calibration; }
    const std::string& unit() const { return _unit; }
    // Also sets unitScale: um 1, mm 0.001, cm 0.000001 (deliberately so), any other 1.
    void setUnit(std::string unit);
    double unitScale() const { return _unitScale; }
    bool showMeasurement() const { return _showMeasurement; }
    void setShowMeasurement(bool show) { _showMeasurement = show; }
    // Empty when the shape has nothing to say.
    virtual std::string measureText() const { return {}; }

protected:
    MDrawTool() = default;
    // How many canvas points are so many points of the screen.
    double onCanvas(double points) const { return _viewScale > 0 ? points / _viewScale : points; }
    // A property of the kind as its type says; 0 and an empty text for others.
    double number(std::string_view name) const;
    std::string text(std::string_view name) const;
    // A property that the snapshot does not name is as usual again.
    void takeProperties(const Feature& feature);
    // Runs once after construction, base first.
    virtual void init();
    // Constructs a tool and initialises it at a point.
    template <typename Tool>
    static std::shared_ptr<Tool> makeAt(gfx::Point start);
    template <typename Tool>
    static ToolRef makeToolAt(gfx::Point start) {
        return makeAt<Tool>(start);
    }
    // What of a snapshot all kinds read alike.
    void readArrangement(const Feature& feature);
    // How far the content reaches beyond the frame, canvas points.
    virtual double reachBeyondFrame() const { return lineWidth() * 0.5; }
    // The label object, made on first use; none in the base.
    virtual std::unique_ptr<MeasurementLabel> makeMeasurement() { return nullptr; }

    gfx::Point _startPoint;
    gfx::Point _endPoint;
    MoveDirection _moveDirection = MoveDirection::None;
    std::uint64_t _drawType = 0;
    bool _isMutableTool = false;

private:
    void initName();
    void updateHandleSize();
    double handleSizeOnScreen() const;
    bool isPointOnScreenHandle(gfx::Point p, gfx::Point handle) const;
    void rotateAbout(gfx::Point center);
    bool isTurnedByContext() const {
        return (isSupportGestureRotate() || isTurnedByQuarters()) && isRotateByRotateCtx();
    }
    void drawParts(gfx::Context& context, bool hasContent);
    void drawVisibleContent(gfx::Context& context);
    void drawClippedContent(gfx::Context& context);
    void drawSelectedState(gfx::Context& context);

    std::string _name;
    std::string _foreignKeys;
    // The chosen values, in no order.
    ToolPropertyValues _properties;
    int _quarterTurns = 0;
    std::vector<std::int64_t> _groups;
    bool _isLocked = false;
    gfx::ColorRef _color;
    gfx::ColorRef _fillColor;
    double _lineWidth = 0;
    bool _selected = false;
    bool _finalized = false;
    bool _isNewBuild = true;
    ToolRules _rules;
    double _rotateAngle = 0;
    double _lastRotateAngle = 0;
    gfx::AffineTransform _transform;
    gfx::AffineTransform _mInvertTransform;
    gfx::Point _centerPoint;
    gfx::Point _preScalePoint;
    double _zoomScale = 0;
    int _handleSize = 0;
    int _handleLineWidthSize = 0;
    gfx::ColorRef _handleFillColor;
    double _handleViewScale = 1;
    double _viewScale = 0;
    double _calibration = 0;
    std::string _unit;
    double _unitScale = 1;
    bool _showMeasurement = false;
    std::optional<gfx::Rect> _visibleRect;
    std::unique_ptr<MeasurementLabel> _measurement;
    MToolUndoManager _undoMgr;
};

template <typename Tool>
std::shared_ptr<Tool> MDrawTool::makeAt(gfx::Point start) {
    // The constructors are protected, so that nobody gets a tool whose init() has not run.
    struct Constructible : Tool {};
    const std::shared_ptr<Tool> tool = std::make_shared<Constructible>();
    static_cast<MDrawTool&>(*tool).init();
    tool->setStartPoint(start);
    tool->setEndPoint(start);
    return tool;
}

}  // namespace kalim
