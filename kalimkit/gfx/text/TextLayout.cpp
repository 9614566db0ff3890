#include "kalimkit/gfx/text/TextLayout.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "kalimkit/gfx/text/MeasuredParagraph.h"

namespace kalim::gfx {

namespace {

double limitOf(double value) {
    return std::isnan(value) ? TextLayout::unlimited : value;
}

}  // namespace

TextLayout::TextLayout(Device& device, std::string text, const Font& font, Size limit)
    : _device(&device),
      _text(std::move(text)),
      _font(font),
      _limit{limitOf(limit.width), limitOf(limit.height)},
      _metrics(device.lineMetrics(font)),
      _revision(device.textRevision()),
      _paragraphs(split(_text)) {
    measure();
    breakLines();
}

std::vector<TextLayout::Paragraph> TextLayout::split(std::string_view text) {
    std::vector<Paragraph> paragraphs;
    std::size_t begin = 0;
    for (;;) {
        const std::size_t end = std::min(text.find_first_of("\r\n", begin), text.size());
        paragraphs.push_back({begin, end, nullptr});
        if (end == text.size()) return paragraphs;
        begin = end + (text.substr(end, 2) == "\r\n" ? 2 : 1);
    }
}

std::string_view TextLayout::textOf(const Paragraph& paragraph) const {
    return std::string_view(_text).substr(paragraph.begin, paragraph.end - paragraph.begin);
}

// Paragraphs at the start and at the end that are as they were keep their measures.
void TextLayout::setText(std::string text) {
    refresh();
    const std::string oldText = std::exchange(_text, std::move(text));
    const std::vector<Paragraph> old = std::exchange(_paragraphs, split(_text));
    const auto isSame = [&](const Paragraph& before, const Paragraph& now) {
        return std::string_view(oldText).substr(before.begin, before.end - before.begin) ==
               textOf(now);
    };
    const std::size_t common = std::min(old.size(), _paragraphs.size());
    std::size_t head = 0;
    for (; head < common && isSame(old[head], _paragraphs[head]); ++head)
        _paragraphs[head].measured = old[head].measured;
    for (std::size_t tail = 1; tail <= common - head; ++tail) {
        Paragraph& now = _paragraphs[_paragraphs.size() - tail];
        const Paragraph& before = old[old.size() - tail];
        if (!isSame(before, now)) break;
        now.measured = before.measured;
    }
    measure();
    breakLines();
}

void TextLayout::setFont(const Font& font) {
    refresh();
    if (font == _font) return;
    Font resized = _font;
    resized.size = font.size;
    const bool isScaled =
        _text.size() > longLength && resized == font && _font.size > 0 && font.size > 0;
    const double factor = font.size / _font.size;
    _font = font;
    _metrics = _device->lineMetrics(font);
    isScaled ? scaleMeasures(factor) : forgetMeasures();
}

// Advances grow with the size, for nothing is hinted.
void TextLayout::scaleMeasures(double factor) {
    for (Paragraph& paragraph : _paragraphs) {
        paragraph.measured =
            std::make_shared<const MeasuredParagraph>(paragraph.measured->scaled(factor));
    }
    breakLines();
}

void TextLayout::setBaseDirection(BaseDirection direction) {
    if (direction == _base) return;
    _base = direction;
    forgetMeasures();
}

void TextLayout::setAlignment(LineAlignment alignment) {
    if (alignment == _alignment) return;
    _alignment = alignment;
    alignLines();
}

void TextLayout::forgetMeasures() {
    for (Paragraph& paragraph : _paragraphs)
        paragraph.measured = nullptr;
    measure();
    breakLines();
}

// The device has other measures than when these were taken.
void TextLayout::refresh() {
    if (_revision == _device->textRevision()) return;
    _revision = _device->textRevision();
    _metrics = _device->lineMetrics(_font);
    forgetMeasures();
}

void TextLayout::setLimit(Size limit) {
    refresh();
    const Size next{limitOf(limit.width), limitOf(limit.height)};
    if (next == _limit) return;
    _limit = next;
    breakLines();
}

void TextLayout::measure() {
    for (Paragraph& paragraph : _paragraphs) {
        if (paragraph.measured) continue;
        paragraph.measured =
            std::make_shared<const MeasuredParagraph>(*_device, textOf(paragraph), _font, _base);
    }
}

void TextLayout::breakLines() {
    _lines.clear();
    _rows.clear();
    double top = 0;
    for (std::size_t i = 0; i < _paragraphs.size(); ++i) {
        const Paragraph& paragraph = _paragraphs[i];
        for (const MeasuredParagraph::Line& line : paragraph.measured->lines(_limit.width)) {
            if (top + _metrics.ascent + _metrics.descent > _limit.height) return alignLines();
            _lines.push_back({paragraph.begin + paragraph.measured->offsetOf(line.first),
                              paragraph.begin + paragraph.measured->offsetOf(line.last),
                              {0, top + _metrics.ascent},
                              line.width,
                              _metrics.ascent,
                              _metrics.descent,
                              _metrics.leading});
            _rows.push_back({i, line.first, line.last, false});
            top += lineHeight();
        }
    }
    alignLines();
}

void TextLayout::alignLines() {
    const double room = std::isfinite(_limit.width) ? _limit.width : size().width;
    bool isTurned = false;
    for (std::size_t i = 0; i < _lines.size(); ++i) {
        const MeasuredParagraph& measured = measuredOf(_rows[i]);
        // An empty line goes on as the text before it.
        if (i == 0 || !measured.graphemes().empty())
            isTurned = measured.directions().isRightToLeft();
        _rows[i].isTurned = isTurned;
        const double gap = std::max(room - _lines[i].width, 0.0);
        _lines[i].origin.x = gap * shareAtLeft(_alignment, isTurned);
    }
}

// ---- what came of it

Size TextLayout::size() const {
    double width = 0;
    for (const TextLine& line : _lines)
        width = std::max(width, line.width);
    return {width, lineHeight() * static_cast<double>(_lines.size())};
}

double TextLayout::lineHeight() const {
    return _metrics.ascent + _metrics.descent + _metrics.leading;
}

// ---- drawing

void TextLayout::draw(Context& context, Point topLeft) const {
    constexpr double farthest = std::numeric_limits<double>::max();
    draw(context, topLeft, {-farthest / 2, -farthest / 2, farthest, farthest});
}

void TextLayout::draw(Context& context, Point topLeft, const Rect& dirty) const {
    // Glyphs and outlines reach beyond their line.
    const double slack = lineHeight();
    const auto isAbove = [&](const TextLine& line) {
        return topLeft.y + line.bottom() + slack < dirty.minY();
    };
    const auto first = std::partition_point(_lines.begin(), _lines.end(), isAbove);
    const bool isUnreadable = isTooSmallToRead(context);
    for (auto line = first; line != _lines.end(); ++line) {
        if (topLeft.y + line->top() - slack > dirty.maxY()) return;
        const auto index = static_cast<std::size_t>(line - _lines.begin());
        isUnreadable ? drawWordsAsBars(context, topLeft, index) : drawLine(context, topLeft, index);
    }
}

// Tabs are skipped here, so that they are as wide as the layout has them whatever a backend does.
void TextLayout::drawLine(Context& context, Point topLeft, std::size_t line) const {
    const Row& row = _rows[line];
    const MeasuredParagraph& measured = measuredOf(row);
    const std::string_view text = textOf(_paragraphs[row.paragraph]);
    const Point baseline = topLeft + _lines[line].origin;
    if (isMixed(line)) return drawMixedLine(context, baseline, line);
    std::size_t last = row.last;
    while (last > row.first && measured.graphemes()[last - 1].isSpace)
        --last;
    double x = 0;
    for (std::size_t first = row.first; first < last;) {
        const Point start = baseline + Point{x, 0};
        std::size_t end = first;
        for (; end < last && !measured.graphemes()[end].isTab; ++end)
            x = measured.advanced(x, end);
        const std::size_t begin = measured.offsetOf(first);
        if (end > first) {
            context.drawText(text.substr(begin, measured.offsetOf(end) - begin), start, _font);
        } else {
            x = measured.advanced(x, end++);
        }
        first = end;
    }
}

}  // namespace kalim::gfx
