#include <algorithm>
#include <cmath>

#include "kalimkit/gfx/text/DirectedRun.h"
#include "kalimkit/gfx/text/LineOrder.h"
#include "kalimkit/gfx/text/MeasuredParagraph.h"
#include "kalimkit/gfx/text/TextLayout.h"

// Lines of which some runs from right to left.

namespace kalim::gfx {

bool TextLayout::isMixed(std::size_t line) const {
    const Row& row = _rows[line];
    return row.first < row.last && !measuredOf(row).directions().isPlain();
}

LineOrder TextLayout::orderOf(std::size_t line) const {
    const Row& row = _rows[line];
    return {measuredOf(row), row.first, row.last, _lines[line].width};
}

// Spaces that hang are all at the end that they hang over.
double TextLayout::shown(std::size_t line, double x) const {
    return std::max(hung(line, x), -_lines[line].origin.x);
}

// Behind the grapheme that ends at a position, or before the one that follows; the other caret is
// at the other of these. At the ends of a line the paragraph itself is the neighbour.
double TextLayout::caretXInMixed(std::size_t line, TextPosition position, bool isOther) const {
    const Row& row = _rows[line];
    const LineOrder order = orderOf(line);
    const std::size_t grapheme = std::clamp(graphemeOf(line, position), row.first, row.last);
    const bool isBehind = standsBehind(row, grapheme, position) != isOther;
    if (isBehind && grapheme > row.first) return shown(line, order.spanOf(grapheme - 1).trailing());
    if (!isBehind && grapheme < row.last) return shown(line, order.spanOf(grapheme).leading());
    const bool isAtRight = measuredOf(row).directions().isRightToLeft() == isBehind;
    return shown(line, isAtRight ? order.spanOf(order.seen().back()).right
                                 : order.spanOf(order.seen().front()).left);
}

TextPosition TextLayout::positionInMixed(std::size_t line, double x) const {
    const Row& row = _rows[line];
    const LineOrder order = orderOf(line);
    const auto nearest = std::ranges::min_element(order.seen(), {}, [&](std::size_t grapheme) {
        const LineOrder::Span& span = order.spanOf(grapheme);
        return std::max({shown(line, span.left) - x, x - shown(line, span.right), 0.0});
    });
    const LineOrder::Span& span = order.spanOf(*nearest);
    const bool isBehind =
        std::abs(x - shown(line, span.trailing())) < std::abs(x - shown(line, span.leading()));
    const std::size_t begin = _paragraphs[row.paragraph].begin;
    const std::size_t grapheme = *nearest + (isBehind ? 1 : 0);
    const bool isShared = isBehind && (grapheme < row.last || isBrokenByWidth(line));
    return {begin + measuredOf(row).offsetOf(grapheme), isShared};
}

void TextLayout::addSelectionInMixed(std::size_t line, TextRange range,
                                     std::vector<Rect>& rects) const {
    const Row& row = _rows[line];
    const TextLine& place = _lines[line];
    const LineOrder order = orderOf(line);
    const std::size_t begin = _paragraphs[row.paragraph].begin;
    const std::size_t firstOfLine = rects.size();
    const auto add = [&](double left, double right) {
        if (right <= left) return;
        const bool goesOn = rects.size() > firstOfLine && rects.back().maxX() >= left;
        if (goesOn) left = rects.back().minX();
        if (goesOn) rects.pop_back();
        rects.push_back({left, place.top(), right - left, lineHeight()});
    };
    const double start = place.origin.x;
    const double strip = lineHeight() * lineFeedWidth;
    const bool hasLineFeed = range.end > place.end && !isBrokenByWidth(line);
    const bool endsLeft = measuredOf(row).directions().isRightToLeft();
    if (hasLineFeed && endsLeft) add(start - strip, start);
    double right = 0;
    for (const std::size_t grapheme : order.seen()) {
        const LineOrder::Span& span = order.spanOf(grapheme);
        right = std::max(right, hung(line, span.right));
        const std::size_t offset = begin + measuredOf(row).offsetOf(grapheme);
        if (offset < range.begin || offset >= range.end) continue;
        add(start + shown(line, span.left), start + shown(line, span.right));
    }
    if (hasLineFeed && !endsLeft) add(start + right, start + right + strip);
}

// One piece for each direction; tabs are left out, as where everything runs from left to right. So
// are the spaces that end a piece: a backend may take them for the end of a line, and set them on
// the other side of what runs from right to left.
void TextLayout::drawMixedLine(Context& context, Point baseline, std::size_t line) const {
    const Row& row = _rows[line];
    const MeasuredParagraph& measured = measuredOf(row);
    const std::string_view text = textOf(_paragraphs[row.paragraph]);
    const LineOrder order = orderOf(line);
    for (const LineOrder::Run& run : order.runs()) {
        std::size_t last = run.last;
        while (last > run.first && measured.graphemes()[last - 1].isSpace)
            --last;
        if (last == run.first) continue;
        const std::size_t begin = measured.offsetOf(run.first);
        const double left = run.isRightToLeft ? order.spanOf(last - 1).left : run.left;
        context.drawText(
            directedRun(text.substr(begin, measured.offsetOf(last) - begin), run.isRightToLeft),
            baseline + Point{left, 0}, _font);
    }
}

}  // namespace kalim::gfx
