#include "kalimkit/ui/control/AlignedText.h"

#include <algorithm>
#include <cmath>

#include "kalimkit/gfx/text/TextLayout.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/view/View.h"

namespace kalim::ui {

namespace {

constexpr double unlimited = gfx::TextLayout::unlimited;
// Points by which a text may exceed its room: a room that comes from sums is off by a rounding.
constexpr double tolerance = 1e-3;

// What follows it up to the end of the line runs from right to left, whatever a backend would make
// of it.
constexpr std::string_view isolate = "\u2067";

gfx::Device& device() {
    return Environment::current().device();
}

// How many lines a height has room for; the last one needs no gap below it.
std::size_t linesIn(double height, const gfx::LineMetrics& metrics) {
    const double line = metrics.ascent + metrics.descent + metrics.leading;
    if (!std::isfinite(height) || !(line > 0)) return std::numeric_limits<std::size_t>::max();
    const double count = std::floor((height + metrics.leading + tolerance) / line);
    return static_cast<std::size_t>(std::max(count, 1.0));
}

}  // namespace

AlignedText::AlignedText(std::string_view text, const gfx::Font& font, gfx::Size room,
                         std::size_t mostLines)
    : _font(font), _metrics(device().lineMetrics(font)) {
    const gfx::TextLayout layout(device(), std::string(text), font, {room.width, unlimited});
    std::size_t most = linesIn(room.height, _metrics);
    if (mostLines > 0) most = std::min(most, mostLines);
    const std::vector<gfx::TextLine>& lines = layout.lines();
    const bool isCut = lines.size() > most;
    for (std::size_t i = 0; i < std::min(lines.size(), most); ++i) {
        const bool isLast = isCut && i + 1 == most;
        if (isLast) {
            _lines.push_back(cut(text.substr(lines[i].begin), room.width));
            _widths.push_back(sizeOf(_lines.back(), font).width);
        } else {
            _lines.emplace_back(text.substr(lines[i].begin, lines[i].end - lines[i].begin));
            _widths.push_back(lines[i].width);
        }
        if (layout.isRightToLeft(lines[i].begin)) _lines.back().insert(0, isolate);
    }
}

gfx::Size AlignedText::sizeOf(std::string_view text, const gfx::Font& font) {
    double width = 0;
    for (const double advance : device().advances(text, font))
        width += advance;
    const gfx::LineMetrics metrics = device().lineMetrics(font);
    return {width, metrics.ascent + metrics.descent};
}

// As much of the paragraph as leaves room for the ellipsis, at least that itself.
std::string AlignedText::cut(std::string_view rest, double width) const {
    const std::string_view line = rest.substr(0, rest.find_first_of("\r\n"));
    const double limit = width + tolerance - sizeOf(ellipsis, _font).width;
    const std::vector<double> advances = device().advances(line, _font);
    const std::vector<std::size_t> edges = device().boundaries(line, gfx::TextBoundary::Grapheme);
    double used = 0;
    std::size_t end = 0;
    for (std::size_t i = 0; i < advances.size() && i + 1 < edges.size(); ++i) {
        used += advances[i];
        if (used > limit) break;
        end = edges[i + 1];
    }
    while (end > 0 && line[end - 1] == ' ')
        --end;
    return std::string(line.substr(0, end)).append(ellipsis);
}

gfx::Size AlignedText::size() const {
    const auto count = static_cast<double>(_lines.size());
    const double line = _metrics.ascent + _metrics.descent + _metrics.leading;
    const double width = _widths.empty() ? 0 : *std::ranges::max_element(_widths);
    const double height = std::max(line * count - _metrics.leading, 0.0);
    return {std::ceil(width - tolerance), std::ceil(height - tolerance)};
}

void AlignedText::draw(gfx::Context& context, const gfx::Rect& rect,
                       TextAlignment alignment) const {
    const double line = _metrics.ascent + _metrics.descent + _metrics.leading;
    const double height = line * static_cast<double>(_lines.size()) - _metrics.leading;
    double baseline = rect.midY() - height / 2 + _metrics.ascent;
    context.setTextMode(gfx::TextMode::Fill);
    for (std::size_t i = 0; i < _lines.size(); ++i, baseline += line) {
        const double gap = rect.size.width - _widths[i];
        double x = rect.minX();
        // A line wider than the rectangle, an ellipsis at most, starts at its edge.
        if (alignment != TextAlignment::Left) x += std::max(gap, 0.0);
        if (alignment == TextAlignment::Center) x -= std::max(gap, 0.0) / 2;
        context.drawText(_lines[i], {x, baseline}, _font);
    }
}

void AlignedText::drawIn(const View& view, gfx::Context& context, const gfx::Rect& rect,
                         TextAlignment alignment) const {
    TextAlignment shown = alignment;
    if (view.isMirrored() && alignment == TextAlignment::Left) shown = TextAlignment::Right;
    if (view.isMirrored() && alignment == TextAlignment::Right) shown = TextAlignment::Left;
    draw(context, view.mirrored(rect), shown);
}

}  // namespace kalim::ui
