#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "kalimkit/gfx/Color.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Font.h"
#include "kalimkit/ui/control/TextAlignment.h"
#include "kalimkit/ui/view/View.h"

namespace kalim::ui {

// A text that is only shown: one line in the middle of the bounds, cut with an ellipsis where it is
// too long. Takes no touches.
class KALIM_API Label : public View {
public:
    static std::shared_ptr<Label> initWithFrame(const gfx::Rect& frame);

    // ---- measures
    // Whole points that the text needs in at most that width; 0 for no limit.
    gfx::Size sizeThatFits(gfx::Size size) const;
    gfx::Size intrinsicContentSize() const { return sizeThatFits({}); }
    // Takes the size it needs; the corner stays.
    void sizeToFit();

    // ---- properties
    const std::string& text() const { return _text; }
    void setText(std::string text);
    // The font is the system's of 17 points at first.
    const gfx::Font& font() const { return _font; }
    void setFont(const gfx::Font& font);
    // Null is clear. Black at first.
    const gfx::ColorRef& textColor() const { return _textColor; }
    void setTextColor(gfx::ColorRef color);
    TextAlignment textAlignment() const { return _alignment; }
    void setTextAlignment(TextAlignment alignment);
    // 0 for as many as fit. 1 at first.
    std::size_t numberOfLines() const { return _numberOfLines; }
    void setNumberOfLines(std::size_t lines);

    // A text is announced by itself.
    std::string accessibilityLabel() const override;
    AccessibilityRole accessibilityRole() const override;

protected:
    Label() = default;
    void init(const gfx::Rect& frame) override;
    void drawRect(gfx::Context& context, const gfx::Rect& dirty) override;

private:
    std::string _text;
    gfx::Font _font{"", 17};
    gfx::ColorRef _textColor = gfx::makeColor(0, 0, 0);
    TextAlignment _alignment = TextAlignment::Center;
    std::size_t _numberOfLines = 1;
};

}  // namespace kalim::ui
