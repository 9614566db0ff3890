#include <algorithm>
#include <string_view>

#include "kalimkit/gfx/text/MeasuredParagraph.h"
#include "kalimkit/gfx/text/TextLayout.h"

// Offsets, places and moves.

namespace kalim::gfx {

std::size_t TextLayout::paragraphAt(std::size_t offset) const {
    const auto after = std::ranges::upper_bound(_paragraphs, offset, {}, &Paragraph::begin);
    return static_cast<std::size_t>(after - _paragraphs.begin()) - 1;
}

const MeasuredParagraph& TextLayout::measuredOf(const Row& row) const {
    return *_paragraphs[row.paragraph].measured;
}

bool TextLayout::isBrokenByWidth(std::size_t line) const {
    return _rows[line].last < measuredOf(_rows[line]).graphemes().size();
}

// Spaces that hang are all at the limit. Places in a line are seen from where it begins.
double TextLayout::hung(std::size_t line, double x) const {
    return std::min(x, std::max(_limit.width - _lines[line].origin.x, _lines[line].width));
}

double TextLayout::xOf(std::size_t line, std::size_t grapheme) const {
    const Row& row = _rows[line];
    double x = 0;
    for (std::size_t i = row.first; i < std::min(grapheme, row.last); ++i)
        x = measuredOf(row).advanced(x, i);
    return hung(line, x);
}

// ---- caret and selection

std::size_t TextLayout::lineOf(TextPosition position) const {
    const std::size_t offset = snapped(position.offset);
    const auto after = std::ranges::upper_bound(_lines, offset, {}, &TextLine::begin);
    std::size_t line = static_cast<std::size_t>(after - _lines.begin());
    if (line > 0) --line;
    const bool isShared = line > 0 && _lines[line].begin == offset && isBrokenByWidth(line - 1);
    return position.isUpstream && isShared ? line - 1 : line;
}

Rect TextLayout::caretRect(TextPosition position) const {
    if (_lines.empty()) return {};
    const std::size_t index = lineOf(position);
    const TextLine& line = _lines[index];
    const double x = isMixed(index) ? caretXInMixed(index, position, false)
                                    : xOf(index, graphemeOf(index, position));
    return {line.origin.x + x, line.top(), 0, line.ascent + line.descent};
}

std::optional<Rect> TextLayout::otherCaretRect(TextPosition position) const {
    if (_lines.empty()) return std::nullopt;
    const std::size_t index = lineOf(position);
    if (!isMixed(index)) return std::nullopt;
    Rect caret = caretRect(position);
    const double x = caretXInMixed(index, position, true) + _lines[index].origin.x;
    if (x == caret.minX()) return std::nullopt;
    caret.origin.x = x;
    return caret;
}

// Counted in its paragraph.
std::size_t TextLayout::graphemeOf(std::size_t line, TextPosition position) const {
    const Paragraph& paragraph = _paragraphs[_rows[line].paragraph];
    const std::size_t offset = std::clamp(position.offset, paragraph.begin, paragraph.end);
    return paragraph.measured->graphemeAt(offset - paragraph.begin);
}

TextPosition TextLayout::positionAt(Point p) const {
    if (_lines.empty()) return {};
    const auto isAbove = [&](const TextLine& line) { return line.bottom() + line.leading <= p.y; };
    const auto found = std::partition_point(_lines.begin(), _lines.end() - 1, isAbove);
    return positionInLine(static_cast<std::size_t>(found - _lines.begin()), p.x);
}

TextPosition TextLayout::positionInLine(std::size_t line, double x) const {
    x -= _lines[line].origin.x;
    if (isMixed(line)) return positionInMixed(line, x);
    const Row& row = _rows[line];
    const MeasuredParagraph& measured = measuredOf(row);
    const std::size_t begin = _paragraphs[row.paragraph].begin;
    double edge = 0;
    for (std::size_t i = row.first; i < row.last; ++i) {
        const double next = measured.advanced(edge, i);
        if (x < (hung(line, edge) + hung(line, next)) * 0.5)
            return {begin + measured.offsetOf(i), false};
        edge = next;
    }
    return {begin + measured.offsetOf(row.last), isBrokenByWidth(line)};
}

std::vector<Rect> TextLayout::selectionRects(TextRange range) const {
    std::vector<Rect> rects;
    if (_lines.empty() || range.isEmpty()) return rects;
    const std::size_t last = lineOf({range.end, true});
    for (std::size_t i = lineOf({range.begin, false}); i <= last; ++i) {
        const TextLine& line = _lines[i];
        if (isMixed(i)) {
            addSelectionInMixed(i, range, rects);
            continue;
        }
        const double start = line.origin.x;
        double left = range.begin > line.begin ? caretRect({range.begin, false}).minX() : start;
        double right = start + xOf(i, _rows[i].last);
        if (range.end < line.end) right = caretRect({range.end, true}).minX();
        const bool hasLineFeed = range.end > line.end && !isBrokenByWidth(i);
        const double strip = hasLineFeed ? lineHeight() * lineFeedWidth : 0;
        _rows[i].isTurned ? left -= strip : right += strip;
        if (right > left) rects.push_back({left, line.top(), right - left, lineHeight()});
    }
    return rects;
}

// ---- moves

std::size_t TextLayout::snapped(std::size_t offset) const {
    const Paragraph& paragraph = _paragraphs[paragraphAt(offset)];
    if (offset >= paragraph.end) return paragraph.end;
    const MeasuredParagraph& measured = *paragraph.measured;
    return paragraph.begin + measured.offsetOf(measured.graphemeAt(offset - paragraph.begin));
}

std::size_t TextLayout::graphemeBefore(std::size_t offset) const {
    const std::size_t index = paragraphAt(offset);
    const Paragraph& paragraph = _paragraphs[index];
    if (offset > paragraph.end) return paragraph.end;
    if (offset == paragraph.begin) return index > 0 ? _paragraphs[index - 1].end : 0;
    return snapped(offset - 1);
}

std::size_t TextLayout::graphemeAfter(std::size_t offset) const {
    const std::size_t index = paragraphAt(offset);
    const Paragraph& paragraph = _paragraphs[index];
    if (offset >= paragraph.end) {
        return index + 1 < _paragraphs.size() ? _paragraphs[index + 1].begin : paragraph.end;
    }
    const MeasuredParagraph& measured = *paragraph.measured;
    return paragraph.begin + measured.offsetOf(measured.graphemeAt(offset - paragraph.begin) + 1);
}

bool TextLayout::isBlank(std::size_t begin, std::size_t end) const {
    return std::string_view(_text).substr(begin, end - begin).find_first_not_of(" \t") ==
           std::string_view::npos;
}

std::size_t TextLayout::wordBefore(std::size_t offset) const {
    const Paragraph& paragraph = _paragraphs[paragraphAt(offset)];
    if (offset == paragraph.begin || offset > paragraph.end) return graphemeBefore(offset);
    std::size_t end = offset;
    const auto edges = _device->boundaries(textOf(paragraph), TextBoundary::Word);
    for (auto edge = edges.rbegin(); edge != edges.rend(); ++edge) {
        const std::size_t begin = paragraph.begin + *edge;
        if (begin >= end) continue;
        if (!isBlank(begin, end)) return begin;
        end = begin;
    }
    return paragraph.begin;
}

std::size_t TextLayout::wordAfter(std::size_t offset) const {
    const Paragraph& paragraph = _paragraphs[paragraphAt(offset)];
    if (offset >= paragraph.end) return graphemeAfter(offset);
    std::size_t begin = offset;
    for (const std::size_t edge : _device->boundaries(textOf(paragraph), TextBoundary::Word)) {
        const std::size_t end = paragraph.begin + edge;
        if (end <= begin) continue;
        if (!isBlank(begin, end)) return end;
        begin = end;
    }
    return paragraph.end;
}

// Beyond ASCII everything counts as a word.
bool TextLayout::holdsWord(TextRange range) const {
    const auto isOfWord = [](char c) {
        const bool isLetter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
        return isLetter || (c >= '0' && c <= '9') || static_cast<unsigned char>(c) >= 0x80;
    };
    return std::ranges::any_of(std::string_view(_text).substr(range.begin, range.length()),
                               isOfWord);
}

TextRange TextLayout::wordAt(std::size_t offset) const {
    const Paragraph& paragraph = _paragraphs[paragraphAt(offset)];
    TextRange word{paragraph.begin, paragraph.begin};
    for (const std::size_t edge : _device->boundaries(textOf(paragraph), TextBoundary::Word)) {
        const TextRange next{word.end, paragraph.begin + edge};
        // Between a word and what is no word, the word counts.
        if (next.begin > offset) break;
        if (next.begin == offset && holdsWord(word) && !holdsWord(next)) break;
        word = next;
    }
    return word;
}

TextPosition TextLayout::lineStart(TextPosition position) const {
    if (_lines.empty()) return {};
    return {_lines[lineOf(position)].begin, false};
}

TextPosition TextLayout::lineEnd(TextPosition position) const {
    if (_lines.empty()) return {};
    const std::size_t line = lineOf(position);
    return {_lines[line].end, isBrokenByWidth(line)};
}

TextPosition TextLayout::movedByLines(TextPosition position, int count, double x) const {
    if (_lines.empty()) return {};
    const auto target = static_cast<std::ptrdiff_t>(lineOf(position)) + count;
    if (target < 0) return {};
    if (target >= static_cast<std::ptrdiff_t>(_lines.size())) return {_text.size(), false};
    return positionInLine(static_cast<std::size_t>(target), x);
}

}  // namespace kalim::gfx
