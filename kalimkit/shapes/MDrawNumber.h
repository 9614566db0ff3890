#pragma once

#include "kalimkit/gfx/Export.h"
#include "kalimkit/shapes/MDrawLine.h"

namespace kalim {

// A disc with a number that counts the tools of its series on the canvas: those with the same start
// and style. The start point is the disc's middle, the end point the tip of a pointer that there is
// when it lies outside of the disc. The disc's size follows from the line width. Turning it swings
// the pointer; the number stays upright.
class KALIM_API MDrawNumber : public MDrawLine {
public:
    static std::shared_ptr<MDrawNumber> initWithStartPoint(gfx::Point start);
    static const ToolClass& Class();
    const ToolClass& toolClass() const override { return Class(); }

    // ---- creation: the disc lies where the finger came down, the tip where it lifts.
    void drawUp(gfx::Point p) override;
    bool isDrawVaild() const override { return true; }
    void limitValidFeatrue() override {}
    // A tip that was let go in the disc is no more.
    void stopMoveHandle() override;

    // ---- counting
    std::string countSeries() const override;
    int count() const override { return _count; }
    void setCount(int count) override { _count = count; }
    // The number as it is shown.
    std::string countText() const;
    std::optional<std::string> spokenWords() const override { return countText(); }

    // ---- geometry, canvas points
    // The disc with the tip.
    gfx::Rect frame() const override;
    gfx::Rect frameIncludeLineWidth() const override;
    bool hasPointer() const;
    // Half the disc's height; long numbers make it wider.
    double radius() const;

    bool hitTest(gfx::Point p) override;
    bool isSupportGestureRotate() const override { return hasPointer(); }
    bool isRotateByRotateCtx() const override { return false; }

    void drawContent(gfx::Context& context) override;
    void drawSlectedStateContent(gfx::Context& context) override;
    void drawContentHandle(gfx::Context& context) override;

    std::string measureText() const override { return {}; }
    ToolDetails details() const override;
    ToolDetails keptDetails() const override;
    bool takeDetail(std::string_view name, const ToolDetailValue& value) override;

protected:
    MDrawNumber() = default;
    MoveDirection handleAt(gfx::Point p) override;

private:
    gfx::Rect disc() const;
    gfx::Font font() const;
    double textWidth() const;
    void drawCount(gfx::Context& context) const;

    int _count = 1;
};

}  // namespace kalim
