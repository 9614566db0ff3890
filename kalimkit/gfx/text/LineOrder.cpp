#include "kalimkit/gfx/text/LineOrder.h"

#include <algorithm>

#include "kalimkit/gfx/text/Directions.h"

namespace kalim::gfx {

LineOrder::LineOrder(const MeasuredParagraph& paragraph, std::size_t first, std::size_t last,
                     double width)
    : _first(first), _spans(last - first) {
    const Levels& levels = paragraph.levels();
    std::vector<std::uint8_t> ofLine(
        levels.ofGraphemes.begin() + static_cast<std::ptrdiff_t>(first),
        levels.ofGraphemes.begin() + static_cast<std::ptrdiff_t>(last));
    // Spaces at a line's end, and tabs, go where the paragraph goes.
    bool isAtEnd = true;
    double all = 0;
    std::vector<double> widths(_spans.size());
    for (std::size_t i = 0; i < widths.size(); ++i) {
        const double next = paragraph.advanced(all, first + i);
        widths[i] = next - all;
        all = next;
    }
    for (std::size_t i = ofLine.size(); i-- > 0;) {
        const auto& grapheme = paragraph.graphemes()[first + i];
        isAtEnd = isAtEnd && grapheme.isSpace;
        if (isAtEnd || grapheme.isTab) ofLine[i] = levels.baseLevel;
    }
    const bool endsLeft = levels.baseLevel % 2 != 0;
    double x = endsLeft ? std::min(width - all, 0.0) : 0;
    for (const std::size_t i : visualOrder(ofLine)) {
        _seen.push_back(first + i);
        _spans[i] = {x, x + widths[i], ofLine[i] % 2 != 0, paragraph.graphemes()[first + i].isTab};
        x += widths[i];
    }
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
