#pragma once

#include <optional>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/shapes/MDrawFreeline.h"

namespace kalim {

// A stroke of a marker pen, three times as wide as its line: it darkens what lies under it by its
// colour, once also where it crosses itself. Each stroke is a tool and a step of its own; while a
// key asks for it, it runs straight, and along the picture's edges where it nearly does.
class KALIM_API MDrawHighlighter : public MDrawFreeline {
public:
    static std::shared_ptr<MDrawHighlighter> initWithStartPoint(gfx::Point start);
    static const ToolClass& Class();
    const ToolClass& toolClass() const override { return Class(); }

    void drawMove(gfx::Point p) override;
    void drawUp(gfx::Point p) override;
    // From its first point, level or plumb where that is nearly so.
    bool drawStraight(gfx::Point p) override;
    // A marker pen's strokes stay what they are.
    ToolRef straightened() const override { return nullptr; }
    // Two points are enough.
    bool isDrawVaild() const override { return hasEnoughPoints(); }
    // As thin and as flat as it was drawn.
    void limitValidFeatrue() override {}

    bool hitTest(gfx::Point p) override;
    void drawContent(gfx::Context& context) override;
    void drawSlectedStateContent(gfx::Context& context) override;
    std::optional<gfx::Rect> takeAddedExtent() override;
    // Strokes are drawn up to their last point, whatever the rules.
    void setRules(const ToolRules& rules) override;
    std::string measureText() const override { return {}; }

protected:
    MDrawHighlighter() = default;
    void init() override;
    bool hasEnoughPoints() const override { return strokes().pointCount() >= 2; }
    double reachBeyondFrame() const override { return penWidth() / 2; }

private:
    double penWidth() const;

    // By the last move.
    bool _isStraight = false;
};

}  // namespace kalim
