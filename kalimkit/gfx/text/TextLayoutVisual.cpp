#include "kalimkit/gfx/text/LineOrder.h"
#include "kalimkit/gfx/text/MeasuredParagraph.h"
#include "kalimkit/gfx/text/TextLayout.h"

// Moves on the screen. In a line that holds several directions these go from edge to edge of what
// is seen.

namespace kalim::gfx {

// A paragraph without text goes on as the text before it.
bool TextLayout::isRightToLeft(std::size_t offset) const {
    std::size_t paragraph = paragraphAt(offset);
    while (paragraph > 0 && _paragraphs[paragraph].measured->graphemes().empty())
        --paragraph;
    return _paragraphs[paragraph].measured->directions().isRightToLeft();
}

TextPosition TextLayout::behind(std::size_t offset) const {
    const TextPosition upstream{offset, true};
    if (_lines.empty() || lineOf(upstream) != lineOf({offset})) return {offset};
    return caretRect(upstream) == caretRect({offset}) ? TextPosition{offset} : upstream;
}

// A caret stands before what follows it, but upstream and at a line's end.
bool TextLayout::standsBehind(const Row& row, std::size_t grapheme, TextPosition position) {
    return grapheme >= row.last || (position.isUpstream && grapheme > row.first);
}

std::size_t TextLayout::edgeOf(std::size_t line, const LineOrder& order,
                               TextPosition position) const {
    const Row& row = _rows[line];
    const std::size_t grapheme = graphemeOf(line, position);
    const bool isBehind = standsBehind(row, grapheme, position);
    const std::size_t beside =
        isBehind ? std::min(grapheme, row.last) - 1 : std::max(grapheme, row.first);
    const bool isRightSide = isBehind != order.spanOf(beside).isRightToLeft;
    return order.placeOf(beside) + (isRightSide ? 1 : 0);
}

// Of the two positions that one edge may have, the one that needs no word about its side.
TextPosition TextLayout::atEdge(std::size_t line, const LineOrder& order, std::size_t grapheme,
                                bool isRightSide) const {
    const Row& row = _rows[line];
    const bool isBehind = isRightSide != order.spanOf(grapheme).isRightToLeft;
    const std::size_t edge = order.placeOf(grapheme) + (isRightSide ? 1 : 0);
    const std::size_t offset =
        _paragraphs[row.paragraph].begin + measuredOf(row).offsetOf(grapheme + (isBehind ? 1 : 0));
    const TextPosition plain{offset, false};
    const bool isSame = lineOf(plain) == line && edgeOf(line, order, plain) == edge;
    return isSame || !isBehind ? plain : TextPosition{offset, true};
}

// The place on the screen at which one begins or ends to read a line.
TextPosition TextLayout::endOf(std::size_t line, bool isStart) const {
    if (!isMixed(line)) {
        return isStart ? TextPosition{_lines[line].begin}
                       : TextPosition{_lines[line].end, isBrokenByWidth(line)};
    }
    const LineOrder order = orderOf(line);
    const bool isRightSide = measuredOf(_rows[line]).directions().isRightToLeft() == isStart;
    return atEdge(line, order, isRightSide ? order.seen().back() : order.seen().front(),
                  isRightSide);
}

TextPosition TextLayout::besidesInPlain(TextPosition position, bool toRight) const {
    const bool goesOn = toRight != isRightToLeft(position.offset);
    const TextPosition next{goesOn ? graphemeAfter(position.offset)
                                   : graphemeBefore(position.offset)};
    if (next.offset == position.offset) return position;
    const std::size_t line = lineOf(next);
    return isMixed(line) ? endOf(line, goesOn) : next;
}

TextPosition TextLayout::besides(TextPosition position, bool toRight) const {
    if (_lines.empty()) return position;
    const std::size_t line = lineOf(position);
    if (!isMixed(line)) return besidesInPlain(position, toRight);
    const LineOrder order = orderOf(line);
    const std::size_t edge = edgeOf(line, order, position);
    if (toRight && edge < order.seen().size()) return atEdge(line, order, order.seen()[edge], true);
    if (!toRight && edge > 0) return atEdge(line, order, order.seen()[edge - 1], false);
    const bool goesOn = toRight != measuredOf(_rows[line]).directions().isRightToLeft();
    if (goesOn) return line + 1 < _lines.size() ? endOf(line + 1, true) : position;
    return line > 0 ? endOf(line - 1, false) : position;
}

}  // namespace kalim::gfx
