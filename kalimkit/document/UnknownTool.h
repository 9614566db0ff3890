#pragma once

#include <memory>

#include "kalimkit/document/Document.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/shapes/MDrawRect.h"

namespace kalim {

// Stands for a tool whose class is not known here: a frame in its place with the name of the class.
// It can be deleted, and nothing else: it goes back into a document just as it came.
class KALIM_API UnknownTool : public MDrawRect {
public:
    // Of the class of that name, which there is from then on. Its points may be missing: then
    // whoever makes it gives it some.
    static std::shared_ptr<UnknownTool> initWithDescription(const DocumentTool& described);
    const ToolClass& toolClass() const override { return *_toolClass; }
    // What it stands for.
    const DocumentTool& described() const { return _described; }

    bool isDrawVaild() const override { return true; }
    void limitValidFeatrue() override {}
    bool hitTest(gfx::Point p) override;
    gfx::Point tryMovePointEndPoint(gfx::Point p1, gfx::Point) override { return p1; }
    void moveByOffsetEndPoint(gfx::Point, gfx::Point) override {}
    void mapPoints(const PointMap&) override {}
    bool isSupportGestureRotate() const override { return false; }
    void drawContent(gfx::Context& context) override;
    void drawContentHandle(gfx::Context&) override {}
    std::string measureText() const override { return {}; }
    // It keeps what it does not show.
    void setColor(gfx::ColorRef) override {}
    void setLineWidth(double) override {}
    using MDrawRect::drawType;
    void setDrawType(std::uint64_t) override {}

protected:
    UnknownTool() = default;
    MoveDirection handleAt(gfx::Point p) override;

private:
    const ToolClass* _toolClass = &MDrawRect::Class();
    DocumentTool _described;
};

}  // namespace kalim
