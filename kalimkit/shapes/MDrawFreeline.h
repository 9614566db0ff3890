#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/shapes/MDrawRect.h"
#include "kalimkit/shapes/outline/FreehandStrokes.h"

namespace kalim {

// A freehand drawing of one or more strokes, drawn smoothed, with one handle that scales it. The
// start and end points are kept at the corners of the strokes' bounding box. While the tool is new,
// its strokes are drawn in the mask colour: the tool's own with an alpha that fades in.
class KALIM_API MDrawFreeline : public MDrawRect {
public:
    // The start point is no point of a stroke: those come from moves and the touch-up.
    static std::shared_ptr<MDrawFreeline> initWithStartPoint(gfx::Point start);
    static const ToolClass& Class();
    const ToolClass& toolClass() const override { return Class(); }

    void drawMove(gfx::Point p) override;
    void takeContact(const ui::TouchContact& contact) override { _contact = contact; }
    void predict(const std::vector<gfx::Point>& places) override;
    bool dropStroke() override;
    // Of one stroke, see recognizedStroke().
    ToolRef straightened() const override;
    // MDrawFreeLineHelper finalizes, not the touch-up.
    void drawUp(gfx::Point p) override;
    // Takes a point of a stroke, in the tool's unrotated frame.
    void addNewPoint(gfx::Point p);
    // True: the next point starts a stroke.
    bool needNewLine() const { return _needNewLine; }
    void setNeedNewLine(bool needNewLine) { _needNewLine = needNewLine; }
    // More than 5 points in all. Under forgiving rules every point is ink: one will do.
    bool isDrawVaild() const override;

    // Bounds the points, without the line's width.
    gfx::Rect frame() const override;
    // Puts the two points at the box's corners. A turned drawing stays where it is seen, although
    // it is turned about another middle from now on.
    void rebuildBoundBox();
    // Lists the points of all strokes one after the other.
    std::vector<gfx::Point> allPoints() const;
    // Replaces every point, in order.
    void allPointsHandle(const std::function<gfx::Point(gfx::Point)>& handle);
    void mapPoints(const PointMap& map) override;
    const PointLines& linePoints() const { return _strokes.lines(); }
    // How a pen touched there, see FreehandStrokes::touches().
    const PointLines& linePressures() const { return _strokes.touches(); }
    ToolDetails details() const override;
    bool takeDetail(std::string_view name, const ToolDetailValue& value) override;

    // A turned drawing has no smallest size: its box is what it is turned about. Under forgiving
    // rules none has: letting go of a flat drawing would change it without a record.
    void limitValidFeatrue() override;

    bool hitTest(gfx::Point p) override;
    // Also finds the centre to scale about.
    bool hitOnHandle(gfx::Point p) override;
    // The body moves every point; whatever else is grabbed scales them about centerPoint.
    void moveByOffsetEndPoint(gfx::Point offset, gfx::Point end) override;
    void stopMoveHandle() override;

    void drawContent(gfx::Context& context) override;
    // The selected look is the drawing itself, in the selection's width.
    void drawSlectedStateContent(gfx::Context& context) override { drawContent(context); }
    void drawContentHandle(gfx::Context& context) override;
    std::optional<gfx::Rect> takeAddedExtent() override;

    Feature getFeature() const override;
    void setFeature(const FeatureRef& feature) override;

    // Under forgiving rules strokes are drawn up to their last point.
    void setRules(const ToolRules& rules) override;
    // Freehand is always an outline.
    void setDrawType(std::uint64_t) override { _drawType = 0; }
    // Also sets the mask's alpha back to Freeline_default_alpha.
    void setColor(gfx::ColorRef color) override;
    void setMaskColorByAlpha(double alpha);
    void setLineWidth(double width) override;
    void setSelected(bool selected) override;
    // The gaps between strokes count as segments, and are meant to.
    std::string measureText() const override;

protected:
    MDrawFreeline() = default;
    void init() override;
    // Leaves the points as they are, unlike the boxes.
    MoveDirection handleAt(gfx::Point p) override;

    // Hit tests and scaling need so many.
    virtual bool hasEnoughPoints() const;
    FreehandStrokes& strokes() { return _strokes; }
    const FreehandStrokes& strokes() const { return _strokes; }

private:
    std::optional<PenTouch> penTouch() const;
    bool showsPressure() const;
    void addPredicted(gfx::Context& context) const;
    gfx::Point farCorner() const;
    void scaleTo(gfx::Point finger);
    void strokesChanged();

    FreehandStrokes _strokes;
    bool _needNewLine = true;
    // What the latest snapshot holds, while the strokes are still the same: snapshots share it.
    mutable PointLinesRef _recordedLines;
    mutable PointLinesRef _recordedPressures;
    ui::TouchContact _contact;
    // Where the finger is about to be; shown and nothing else.
    std::vector<gfx::Point> _predicted;
    // The box of the curves since takeAddedExtent was asked, without the line's width.
    std::optional<gfx::Rect> _addedBox;
    // Whether something else has changed the picture since.
    bool _isChangedAllOver = true;
};

}  // namespace kalim
