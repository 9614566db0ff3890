#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/tool/MDrawTool.h"

namespace kalim {

// A polygon made vertex by vertex: every touch-up adds one, until one on the first vertex closes
// and finishes it. The base of the shapes made of vertices. It is never turned, and its vertices
// are in its snapshots under forgiving rules alone.
class KALIM_API MDrawPolyline : public MDrawTool {
public:
    // The point becomes the first vertex.
    static std::shared_ptr<MDrawPolyline> initWithStartPoint(gfx::Point start);
    static const ToolClass& Class();
    const ToolClass& toolClass() const override { return Class(); }

    // Leads the rubber band from the last vertex.
    void drawMove(gfx::Point p) override;
    // On the first vertex it finishes a shape of at least two vertices and does nothing to others.
    void drawUp(gfx::Point p) override;
    // Each point as if a finger had lifted there.
    void drawThrough(std::span<const gfx::Point> points) override;

    void letGoOfPoint() override { _movePoint = {}; }
    bool takeBackPoint() override;
    bool completePoints() override;

    // Bounds the vertices; its size has single precision.
    gfx::Rect frame() const override;
    bool hitOnHandle(gfx::Point p) override;
    bool testHitOnHandle(gfx::Point p) override;
    // Moves the vertex that hitOnHandle found, or all of them.
    void moveByOffsetEndPoint(gfx::Point offset, gfx::Point end) override;
    void stopMoveHandle() override;
    void mapPoints(const PointMap& map) override;
    // Its vertices go round, whatever it can be turned by.
    void turnBy(gfx::Point center, double angle) override;

    // Vertices show their handles unless the shape is finished and not selected.
    void drawContent(gfx::Context& context) override;

    Feature getFeature() const override;
    void setFeature(const FeatureRef& feature) override;

    const std::vector<gfx::Point>& points() const { return _points; }
    ToolDetails details() const override { return {{"points", _points}}; }
    bool takeDetail(std::string_view name, const ToolDetailValue& value) override;
    // The length leaves the closing edge out; the area is truncated to a whole number.
    std::string measureText() const override;

protected:
    MDrawPolyline() = default;
    void init() override;
    std::unique_ptr<MeasurementLabel> makeMeasurement() override;
    template <typename Shape>
    static std::shared_ptr<Shape> makeWithVertex(gfx::Point start);
    template <typename Shape>
    static ToolRef makeToolWithVertex(gfx::Point start) {
        return makeWithVertex<Shape>(start);
    }
    // How many vertices the shape needs.
    virtual std::size_t leastVertices() const { return 2; }
    void useToolColor(gfx::Context& context) const;
    bool isOnFirstVertex(gfx::Point p) const;

    std::vector<gfx::Point> _points;
    // Where the rubber band ends; (0, 0) for none.
    gfx::Point _movePoint;
    // Whether the finished outline returns to the first vertex.
    bool _closePath = true;

private:
    // These stand beside the indexes of vertices.
    enum : std::int32_t { AllVertices = -2, NoVertex = -1 };

    // What lies under a point.
    std::int32_t handleIndexAt(gfx::Point p) const;

    std::int32_t _moveHandleIndex = NoVertex;
};

template <typename Shape>
std::shared_ptr<Shape> MDrawPolyline::makeWithVertex(gfx::Point start) {
    const std::shared_ptr<Shape> shape = makeAt<Shape>(start);
    static_cast<MDrawPolyline&>(*shape)._points.push_back(start);
    return shape;
}

}  // namespace kalim
