#include <algorithm>
#include <cmath>

#include "kalimkit/gfx/RoundedRect.h"
#include "kalimkit/shapes/MDrawText.h"
#include "kalimkit/shapes/ShapeProperties.h"
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
// Of the font's size.
constexpr double plateMargin = 0.28;
constexpr double plateRadius = 0.35;
constexpr double shadowDrop = 0.04;
constexpr double shadowBlur = 0.22;

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
    } else {
        if (_layout->text() != text) _layout->setText(text);
        _layout->setFont(font);
        _layout->setLimit(limit);
    }
    _layout->setBaseDirection(baseDirection());
    _layout->setAlignment(alignment());
    return *_layout;
}

// Lines begin at the left whatever they say, except in texts that adapt.
gfx::LineAlignment MDrawText::alignment() const {
    const std::string chosen = MDrawTool::text(alignProperty.name);
    if (chosen == "center") return gfx::LineAlignment::Center;
    if (chosen == "end") return gfx::LineAlignment::End;
    return number(adaptsProperty.name) != 0 ? gfx::LineAlignment::Start : gfx::LineAlignment::Left;
}

gfx::BaseDirection MDrawText::baseDirection() const {
    const std::string chosen = MDrawTool::text(directionProperty.name);
    if (chosen == "ltr") return gfx::BaseDirection::LeftToRight;
    if (chosen == "rtl") return gfx::BaseDirection::RightToLeft;
    return gfx::BaseDirection::FirstLetter;
}

gfx::Font MDrawText::getTextFont() const {
    gfx::Font font;
    font.size = _fontSize;
    font.bold = number(boldProperty.name) != 0;
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
    const std::string ground = MDrawTool::text(groundProperty.name);
    gfx::GraphicsStateGuard guard(context);
    if (ground == "outline") drawOutline(context, layout, topLeft);
    if (ground == "plate") drawPlate(context, layout, topLeft);
    if (ground == "shadow") drawShadow(context, layout, topLeft);
    context.setTextMode(gfx::TextMode::Fill);
    layout.draw(context, topLeft, context.clipBounds());
}

void MDrawText::drawOutline(gfx::Context& context, const gfx::TextLayout& layout,
                            gfx::Point topLeft) const {
    context.setTextMode(gfx::TextMode::Stroke);
    context.setLineJoin(gfx::LineJoin::Round);
    context.setLineWidth(std::max(_fontSize / 5, 1.0));
    context.setStrokeColor(getMaskColor());
    layout.draw(context, topLeft, context.clipBounds());
}

// Around all lines together.
void MDrawText::drawPlate(gfx::Context& context, const gfx::TextLayout& layout,
                          gfx::Point topLeft) const {
    gfx::Rect plate;
    for (const gfx::TextLine& line : layout.lines()) {
        const gfx::Rect box(topLeft.x + line.origin.x, topLeft.y + line.top(), line.width,
                            line.ascent + line.descent);
        plate = plate.size.height > 0 ? plate.unionWith(box) : box;
    }
    const double margin = plateMargin * _fontSize;
    const gfx::GraphicsStateGuard guard(context);
    context.setFillColor(getMaskColor());
    context.addPath(gfx::roundedRect(plate.inset(-margin, -margin / 2), plateRadius * _fontSize));
    context.fill();
}

// All of it lies under all of the text. It falls as if the text were drawn without a zoom.
void MDrawText::drawShadow(gfx::Context& context, const gfx::TextLayout& layout,
                           gfx::Point topLeft) const {
    const gfx::GraphicsStateGuard guard(context);
    const double size = _fontSize * context.transform().largestStretch();
    context.setShadow({{0, shadowDrop * size}, shadowBlur * size, getMaskColor()});
    context.setTextMode(gfx::TextMode::Fill);
    for (int pass = 0; pass < 2; ++pass)
        layout.draw(context, topLeft, context.clipBounds());
}

}  // namespace kalim
