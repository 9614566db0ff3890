#include "kalimkit/gfx/text/LineOrder.h"
#include "kalimkit/gfx/text/MeasuredParagraph.h"
#include "kalimkit/gfx/text/TextLayout.h"

// A long text that is drawn too small to be read: bars in the places of words, as thick as small
// letters. To shape and to outline its letters would take seconds.

namespace kalim::gfx {

namespace {

// Device pixels.
constexpr double smallestReadable = 6.5;
// Of the font's size.
constexpr double barHeight = 0.5;
// What letters cover of their place.
constexpr double coverage = 0.6;
// Of the font's size.
constexpr double glyphOverhang = 0.5;

}  // namespace

bool TextLayout::isTooSmallToRead(const Context& context) const {
    const double pixels = context.transform().largestStretch() * context.deviceScale();
    return _text.size() > longLength && _font.size * pixels < smallestReadable;
}

void TextLayout::drawWordsAsBars(Context& context, Point topLeft, std::size_t line) const {
    const Row& row = _rows[line];
    const MeasuredParagraph& measured = measuredOf(row);
    const Point baseline = topLeft + _lines[line].origin;
    const bool isOutline = context.state().textMode == TextMode::Stroke;
    const double reach = isOutline ? context.state().lineWidth / 2 : 0;
    const double height = _font.size * barHeight;
    context.beginPath();
    // Points alone paint nothing, but tell who looks for the extent how far letters may reach.
    const double overhang = _font.size * glyphOverhang + reach;
    const TextLine& place = _lines[line];
    const Rect box(baseline.x, topLeft.y + place.top(), place.width, place.ascent + place.descent);
    context.moveTo(box.origin - Point{overhang, overhang});
    context.moveTo(Point{box.maxX(), box.maxY()} + Point{overhang, overhang});
    const auto addBar = [&](double left, double right) {
        if (right <= left) return;
        const Rect bar(baseline.x + left, baseline.y - height, right - left, height);
        context.addRect(bar.inset(-reach, -reach));
    };
    // The outlines of words that stand so near to each other are one.
    if (isOutline) {
        addBar(0, place.width);
    } else if (isMixed(line)) {
        const LineOrder order = orderOf(line);
        double start = order.spanOf(order.seen().front()).left;
        double end = start;
        for (const std::size_t grapheme : order.seen()) {
            end = order.spanOf(grapheme).right;
            if (!measured.graphemes()[grapheme].isSpace) continue;
            addBar(start, order.spanOf(grapheme).left);
            start = end;
        }
        addBar(start, end);
    } else {
        double start = 0;
        double x = 0;
        for (std::size_t i = row.first; i < row.last; ++i) {
            const double next = measured.advanced(x, i);
            if (measured.graphemes()[i].isSpace) {
                addBar(start, x);
                start = next;
            }
            x = next;
        }
        addBar(start, x);
    }
    GraphicsStateGuard guard(context);
    const Color ink = isOutline ? context.state().strokeColor : context.state().fillColor;
    context.setFillColor(isOutline ? ink : ink.withAlpha(ink.alpha * coverage));
    context.fill();
}

}  // namespace kalim::gfx
