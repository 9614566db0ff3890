#include <algorithm>
#include <cmath>

#include "kalimkit/shapes/MDrawText.h"
#include "kalimkit/ui/environment/Environment.h"

// How the text is broken in its box, measured, shrunk to fit, and drawn. Measuring and drawing look
// at one layout.

namespace kalim {

namespace {

// Widths that were scaled to the view and back may come out too small by the last bits; a line that
// just fitted must fit again.
constexpr double tolerance = 0.01;
constexpr int mostSteps = 10;
constexpr double smallestFontSize = 1;

// By how much the font size is reduced at once when the text is too large by so many whole points.
double shrinkStep(double overflow) {
    if (overflow >= 41) return 16;
    if (overflow >= 31) return 10;
    if (overflow >= 21) return 6;
    if (overflow >= 11) return 4;
    return 2;
}

}  // namespace

// ---- layout

double MDrawText::wrappingWidth() const {
    return std::max(frame().size.width - 2 * _inset, 0.0) + tolerance;
}

// What went to the view and back has been rounded up.
bool MDrawText::isAsWideAsWords() const {
    constexpr double roundedBy = 3;
    const double words = layoutOf(_text, gfx::TextLayout::unlimited).size().width;
    return std::abs(frame().size.width - (words + 2 * _inset)) <= roundedBy;
}

const gfx::TextLayout& MDrawText::layoutOf(const std::string& text, double width) const {
    const gfx::Font font = getTextFont();
    const gfx::Size limit{width, gfx::TextLayout::unlimited};
    if (!_layout) {
        _layout.emplace(ui::Environment::current().device(), text, font, limit);
        return *_layout;
    }
    if (_layout->text() != text) _layout->setText(text);
    _layout->setFont(font);
    _layout->setLimit(limit);
    return *_layout;
}

gfx::Font MDrawText::getTextFont() const {
    gfx::Font font;
    font.size = _fontSize;
    font.bold = true;
    return font;
}

// ---- measures

gfx::Size MDrawText::measureCoreTextSize(const std::string& text) const {
    if (text.empty()) return {};
    return measureFrame(layoutOf(text, wrappingWidth()));
}

gfx::Size MDrawText::measureFrame(const gfx::TextLayout& layout) {
    if (layout.lines().empty()) return {};
    const gfx::TextLine& first = layout.lines().front();
    const gfx::TextLine& last = layout.lines().back();
    const double lastHeight = getCTLineSize(last).height;
    // The last line gets room for the outline and for what reaches below it.
    const double height = layout.lines().size() == 1
                              ? std::ceil(static_cast<float>(lastHeight)) * 1.2
                              : last.origin.y - first.origin.y + std::ceil(lastHeight * 1.3);
    return {std::ceil(layout.size().width), std::ceil(height)};
}

gfx::Size MDrawText::getCTLineSize(const gfx::TextLine& line) {
    return {line.width, line.ascent + line.descent + line.leading};
}

template <typename Overflow>
void MDrawText::shrinkFont(const std::string& text, Overflow overflow) {
    for (int step = 0; step < mostSteps && _fontSize > smallestFontSize; ++step) {
        const double excess = std::trunc(overflow(measureCoreTextSize(text)));
        if (!(excess >= 1)) return;
        _fontSize = std::max(_fontSize - shrinkStep(excess), smallestFontSize);
    }
}

gfx::Rect MDrawText::reSetFont(const std::string& text) {
    const gfx::Size box = frame().size;
    shrinkFont(text, [&](gfx::Size measured) { return measured.height - box.height; });
    shrinkFont(text, [&](gfx::Size measured) { return measured.width - (box.width - 4); });
    const double spare = std::max(box.height - measureCoreTextSize(text).height, 0.0);
    return {_startPoint.x + 2, _startPoint.y + spare / 2 + getRectAdjustForLineWidth(), box.width,
            box.height};
}

// The box takes the measured size of the text in the new font. Its lines are broken where they were
// in the old font, unless that would lead beyond the canvas; then they use what room there is.
void MDrawText::updateFrameWhenChangeLineWidth(double oldFontSize) {
    const double width = wrappingWidth();
    const gfx::Point beginning = this->beginning();
    const bool hasBox = frame().size != gfx::Size{};
    double widest = hasBox ? width * _fontSize / oldFontSize : gfx::TextLayout::unlimited;
    if (const auto canvas = delegate()) {
        const double left = convertPointToCoordinate(beginning, Coordinate::View).x;
        const gfx::Size room{getCurrentCtxRect().maxX() - left, 0};
        const double roomInTool = convertSizeToCoordinate(room, Coordinate::Tool).width;
        widest = std::min(widest, std::max(width, roomInTool - 2 * _inset));
    }
    const gfx::Size measured = measureFrame(layoutOf(text(), widest));
    _endPoint = _startPoint + gfx::Point{measured.width + 2 * _inset, measured.height};
    limitValidFeatrue();
    keepBeginning(beginning);
}

// ---- drawing

void MDrawText::drawTextWithString(gfx::Context& context, const std::string& text) {
    if (text.empty()) return;
    const gfx::Rect rect = reSetFont(text);
    const gfx::TextLayout& layout = layoutOf(text, wrappingWidth());
    // The rectangle begins two points right of the box.
    const gfx::Point topLeft = rect.origin + gfx::Point{_inset - 2, 0};
    const gfx::Rect visible = context.clipBounds();
    gfx::GraphicsStateGuard guard(context);
    if (isOutlined()) {
        context.setTextMode(gfx::TextMode::Stroke);
        context.setLineJoin(gfx::LineJoin::Round);
        context.setLineWidth(std::max(_fontSize / 5, 1.0));
        context.setStrokeColor(getMaskColor());
        layout.draw(context, topLeft, visible);
    }
    context.setTextMode(gfx::TextMode::Fill);
    layout.draw(context, topLeft, visible);
}

}  // namespace kalim
