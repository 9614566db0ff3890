#include <algorithm>

#include "kalimkit/ui/control/TextView.h"

namespace kalim::ui {

namespace {

constexpr gfx::Color caretColor{0, 0.478, 1, 1};
constexpr gfx::Color selectionColor{0, 0.478, 1, 0.3};
// Of what marks a composition, points; its lower edge lies on the descent.
constexpr double underlineWidth = 1;
// How far glyphs may reach beyond their line, in line heights.
constexpr double overhang = 0.25;

}  // namespace

// ---- what shows

std::vector<gfx::Rect> TextView::rectsOf(gfx::TextRange range) const {
    std::vector<gfx::Rect> rects = _editor->layout().selectionRects(range);
    for (gfx::Rect& rect : rects)
        rect = rect.offset(textOrigin());
    return rects;
}

TextView::Shown TextView::shown() const {
    const gfx::TextLayout& layout = _editor->layout();
    const double top = bounds().minY() - textOrigin().y - layout.lineHeight() * overhang;
    const double bottom = bounds().maxY() - textOrigin().y + layout.lineHeight() * overhang;
    const auto isAbove = [&](const gfx::TextLine& line) { return line.bottom() < top; };
    const auto& lines = layout.lines();
    auto line = std::partition_point(lines.begin(), lines.end(), isAbove);
    Shown result;
    result.firstLine = static_cast<std::size_t>(line - lines.begin());
    for (; line != lines.end() && line->top() < bottom; ++line) {
        result.lines.push_back(text().substr(line->begin, line->end - line->begin));
        result.isMixed |= layout.isMixed(static_cast<std::size_t>(line - lines.begin()));
    }
    result.selection = rectsOf(selection().range());
    if (markedRange()) result.marked = rectsOf(*markedRange());
    result.carets = carets();
    return result;
}

// Where directions meet, what one line has gained may turn its neighbours around.
void TextView::damageDifference(const Shown& before, const Shown& now) {
    const std::size_t count = std::max(before.lines.size(), now.lines.size());
    for (std::size_t i = 0; i < count; ++i) {
        const bool isSame =
            i < before.lines.size() && i < now.lines.size() && before.lines[i] == now.lines[i];
        if (isSame) continue;
        if (before.isMixed || now.isMixed) return setNeedsDisplay();
        damageLine(now.firstLine + i);
    }
    const auto damageChanged = [this](const auto& old, const auto& current) {
        if (old == current) return;
        for (const auto* rects : {&old, &current}) {
            for (const gfx::Rect& rect : *rects)
                setNeedsDisplay(rect.inset(0, -underlineWidth));
        }
    };
    damageChanged(before.selection, now.selection);
    damageChanged(before.marked, now.marked);
    if (!isFirstResponder()) return;
    for (const auto* carets : {&before.carets, &now.carets}) {
        for (const gfx::Rect& caret : *carets)
            setNeedsDisplay(caret);
    }
}

// Lines are equally high, so one that is gone had its place too.
void TextView::damageLine(std::size_t line) {
    const double height = _editor->layout().lineHeight();
    const double top = textOrigin().y + height * static_cast<double>(line);
    setNeedsDisplay({bounds().minX(), top - height * overhang, bounds().size.width,
                     height * (1 + 2 * overhang)});
}

// ---- scrolling

// Moves no farther than it must, and never beyond the content.
void TextView::scrollToCaret() {
    const gfx::Rect caret = caretRect().inset(0, -_inset.height);
    const double height = bounds().size.height;
    const double content = _editor->layout().size().height + 2 * _inset.height;
    double y = std::min(bounds().minY(), caret.minY());
    y = std::max(y, caret.maxY() - height);
    y = _scrollEnabled ? std::clamp(y, 0.0, std::max(content - height, 0.0)) : 0;
    setBounds({{bounds().minX(), y}, bounds().size});
}

// ---- caret

std::vector<gfx::Rect> TextView::carets() const {
    std::vector<gfx::Rect> result{caretRect()};
    if (auto other = _editor->layout().otherCaretRect(_editor->head())) {
        const double half = other->size.height / 2;
        const gfx::Point place = other->origin + textOrigin() + gfx::Point{0, half};
        result.push_back({place, {caretWidth, half}});
    }
    return result;
}

bool TextView::showsCaret() const {
    return _isCaretLit && isFirstResponder() && selection().isEmpty();
}

// A caret that has just moved is seen.
void TextView::restartBlinking() {
    _isCaretLit = true;
    if (!_blinkTimer) return;
    _blinkTimer->start(blinkInterval, true, [this] {
        _isCaretLit = !_isCaretLit;
        if (!selection().isEmpty()) return;
        for (const gfx::Rect& caret : carets())
            setNeedsDisplay(caret);
    });
}

// ---- drawing

void TextView::drawRect(gfx::Context& context, const gfx::Rect& dirty) {
    fitWidth();
    const bool hasFocus = isFirstResponder();
    context.setFillColor(selectionColor);
    if (hasFocus) {
        for (const gfx::Rect& rect : rectsOf(selection().range())) {
            if (rect.intersects(dirty)) context.fillRect(rect);
        }
    }
    if (_textColor) {
        context.setFillColor(*_textColor);
        context.setTextMode(gfx::TextMode::Fill);
        _editor->layout().draw(context, textOrigin(), dirty);
    }
    if (markedRange()) drawUnderlines(context, dirty);
    if (!showsCaret()) return;
    context.setFillColor(caretColor);
    for (const gfx::Rect& caret : carets()) {
        if (caret.intersects(dirty)) context.fillRect(caret);
    }
}

void TextView::drawUnderlines(gfx::Context& context, const gfx::Rect& dirty) const {
    const gfx::TextLayout& layout = _editor->layout();
    const double leading = layout.lines().front().leading;
    context.setFillColor(_textColor ? *_textColor : caretColor);
    for (const gfx::Rect& rect : rectsOf(*markedRange())) {
        const gfx::Rect line(rect.minX(), rect.maxY() - leading - underlineWidth, rect.size.width,
                             underlineWidth);
        if (line.intersects(dirty)) context.fillRect(line);
    }
}

}  // namespace kalim::ui
