#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "kalimkit/gfx/Context.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Font.h"
#include "kalimkit/gfx/Rect.h"
#include "kalimkit/ui/control/TextAlignment.h"

namespace kalim::ui {

class View;

// A text that is only shown, broken into lines and cut with an ellipsis where it needs more room
// than there is. Measured by the device of the current environment. Lengths are points.
class KALIM_API AlignedText {
public:
    static constexpr std::string_view ellipsis = "\u2026";

    // At most so many lines, 0 for any number; those that reach below the room's height are left
    // out, but there is always one.
    AlignedText(std::string_view text, const gfx::Font& font, gfx::Size room,
                std::size_t mostLines);

    // What one line needs, without a limit.
    static gfx::Size sizeOf(std::string_view text, const gfx::Font& font);

    // Whole points, rounded up, so that a room of this size holds the text.
    gfx::Size size() const;
    const std::vector<std::string>& lines() const { return _lines; }
    // Draws with the fill colour of the context, in the middle of the rectangle's height.
    void draw(gfx::Context& context, const gfx::Rect& rect, TextAlignment alignment) const;
    // The same in a view, whose mirror image of the rectangle and the alignment it is where that is
    // mirrored.
    void drawIn(const View& view, gfx::Context& context, const gfx::Rect& rect,
                TextAlignment alignment) const;

private:
    std::string cut(std::string_view rest, double width) const;

    gfx::Font _font;
    gfx::LineMetrics _metrics;
    std::vector<std::string> _lines;
    // The lines are this wide.
    std::vector<double> _widths;
};

}  // namespace kalim::ui
