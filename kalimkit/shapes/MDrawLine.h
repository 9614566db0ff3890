#pragma once

#include "kalimkit/gfx/Export.h"
#include "kalimkit/tool/MDrawTool.h"

namespace kalim {

// Draws a straight stroked segment, and is the base of every shape of two points.
class KALIM_API MDrawLine : public MDrawTool {
public:
    static std::shared_ptr<MDrawLine> initWithStartPoint(gfx::Point start);
    static const ToolClass& Class();
    const ToolClass& toolClass() const override { return Class(); }

    void drawDown(gfx::Point p) override;
    void drawMove(gfx::Point p) override;
    // Does nothing once finalized, so that a line keeps the end of its last move.
    void drawUp(gfx::Point p) override;
    // A valid line is longer than 5 points.
    bool isDrawVaild() const override;
    using MDrawTool::finalize;
    void finalize() override;
    // Moves the end point of a line that is too short to the right of its start; the end's y
    // deliberately stays.
    void limitValidFeatrue() override;

    // Within half the width plus 8 points of the segment, and no more than 8 points past its ends.
    bool hitTest(gfx::Point p) override;
    bool hitOnHandle(gfx::Point p) override;
    bool testHitOnHandle(gfx::Point p) override;
    void moveByOffsetEndPoint(gfx::Point offset, gfx::Point end) override;
    void stopMoveHandle() override;
    void rotateChangedWithAngle(double angle) override;
    void rotateEndedWithAngle(double angle) override;

    void drawContent(gfx::Context& context) override;
    void drawContentHandle(gfx::Context& context) override;

    bool isSupportGestureRotate() const override { return true; }
    Feature getFeature() const override;
    void setFeature(const FeatureRef& feature) override;
    std::string measureText() const override;

protected:
    MDrawLine() = default;
    std::unique_ptr<MeasurementLabel> makeMeasurement() override;

    // What of the shape lies under a canvas point: a handle, the body or nothing.
    virtual MoveDirection handleAt(gfx::Point p);
    // Start to end, single precision.
    double length() const;
    // The path as the property "dash" has it drawn with the tool's width.
    gfx::Path withDashes(const gfx::Path& path) const;

private:
    bool isOnEnd(gfx::Point own, gfx::Point handle, gfx::Point other) const;

    // The current rotation gesture has turned the points by this much already, in radians.
    double _preRotateAngle = 0;
};

}  // namespace kalim
