#include "kalimkit/gfx/text/LineOrder.h"

#include <algorithm>

#include "kalimkit/gfx/text/VisualOrder.h"

namespace kalim::gfx {

LineOrder::LineOrder(const MeasuredParagraph& paragraph, std::size_t first, std::size_t last,
                     double width)
    : _first(first), _spans(last - first) {
    const TextDirections& directions = paragraph.directions();
    std::vector<std::uint8_t> levels(_spans.size());
    std::vector<double> widths(_spans.size());
    double all = 0;
    for (std::size_t i = 0; i < widths.size(); ++i) {
        const double next = paragraph.advanced(all, first + i);
        widths[i] = next - all;
        all = next;
        levels[i] = directions.graphemes[first + i].level;
    }
    // Blanks at a line's end, tabs, and blanks before them go where the paragraph goes: rule L1.
    bool isAtEnd = true;
    for (std::size_t i = levels.size(); i-- > 0;) {
        const bool isTab = paragraph.graphemes()[first + i].isTab;
        isAtEnd = isTab || (isAtEnd && directions.graphemes[first + i].isBlank);
        if (isAtEnd) levels[i] = directions.baseLevel;
    }
    const bool endsLeft = directions.isRightToLeft();
    double x = endsLeft ? std::min(width - all, 0.0) : 0;
    for (const std::size_t i : visualOrder(levels)) {
        _seen.push_back(first + i);
        _spans[i] = {x, x + widths[i], levels[i] % 2 != 0, paragraph.graphemes()[first + i].isTab};
        x += widths[i];
    }
}

std::size_t LineOrder::placeOf(std::size_t grapheme) const {
    return static_cast<std::size_t>(std::ranges::find(_seen, grapheme) - _seen.begin());
}

std::vector<LineOrder::Run> LineOrder::runs() const {
    std::vector<Run> runs;
    for (const std::size_t grapheme : _seen) {
        const Span& span = spanOf(grapheme);
        const bool isJoined = !runs.empty() && !span.isTab && !spanOf(runs.back().first).isTab &&
                              runs.back().isRightToLeft == span.isRightToLeft;
        Run* const run = isJoined ? &runs.back() : nullptr;
        const bool goesOn = run && (grapheme + 1 == run->first || grapheme == run->last);
        if (!goesOn) {
            runs.push_back({grapheme, grapheme + 1, span.left, span.isRightToLeft});
        } else {
            run->first = std::min(run->first, grapheme);
            run->last = std::max(run->last, grapheme + 1);
        }
    }
    return runs;
}

}  // namespace kalim::gfx
