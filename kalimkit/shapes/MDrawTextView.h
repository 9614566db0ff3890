#pragma once

#include <memory>
#include <utility>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/control/TextView.h"

namespace kalim {

// The field in which a text tool's text is typed, with a bar along its left and its right edge. The
// colours and numbers are kept for the tool; only the line colour shows.
class KALIM_API MDrawTextView : public ui::TextView {
public:
    // The text is clear at first.
    static std::shared_ptr<MDrawTextView> initWithFrame(const gfx::Rect& frame);

    // Of the side bars; null draws none.
    const gfx::ColorRef& drawLineColor() const { return _drawLineColor; }
    void setDrawLineColor(gfx::ColorRef color) { _drawLineColor = std::move(color); }
    const gfx::ColorRef& drawTextColor() const { return _drawTextColor; }
    void setDrawTextColor(gfx::ColorRef color) { _drawTextColor = std::move(color); }
    const gfx::ColorRef& drawTextMaskColor() const { return _drawTextMaskColor; }
    void setDrawTextMaskColor(gfx::ColorRef color) { _drawTextMaskColor = std::move(color); }
    double drawLineWidth() const { return _drawLineWidth; }
    void setDrawLineWidth(double width) { _drawLineWidth = width; }
    // Sizes are points of the view.
    double fontSize() const { return _fontSize; }
    void setFontSize(double size) { _fontSize = size; }

    void drawBounds(gfx::Context& context) const;

protected:
    MDrawTextView() = default;
    void init(const gfx::Rect& frame) override;
    void drawRect(gfx::Context& context, const gfx::Rect& dirty) override;

private:
    gfx::ColorRef _drawLineColor;
    gfx::ColorRef _drawTextColor;
    gfx::ColorRef _drawTextMaskColor;
    double _drawLineWidth = 0;
    double _fontSize = 0;
};

}  // namespace kalim
