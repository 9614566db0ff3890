#include "kalimkit/editor/desk/DeskScrollMark.h"

#include <algorithm>

#include "kalimkit/gfx/Context.h"
#include "kalimkit/theme/Palette.h"

namespace kalim {

namespace {

// Points: the arrow has what the fade leaves.
constexpr double fadeWidth = 16;
constexpr double fadeStep = 2;
constexpr gfx::Size arrowSize{5, 10};
// Of what is in sight, so that something of it stays so.
constexpr double scrolledShare = 0.8;

}  // namespace

std::shared_ptr<DeskScrollMark> DeskScrollMark::make(const std::shared_ptr<ui::ScrollView>& scroll,
                                                     bool isAtEnd) {
    const std::shared_ptr<DeskScrollMark> mark(new DeskScrollMark(isAtEnd));
    mark->init({});
    mark->_scroll = scroll;
    // Everything in the bar is told anyway, in sight or not.
    mark->setAccessibilityHidden(true);
    mark->addAction(ui::ControlEvent::TouchUpInside,
                    [](ui::Control& control) { static_cast<DeskScrollMark&>(control).scroll(); });
    return mark;
}

void DeskScrollMark::follow() {
    const auto scroll = _scroll.lock();
    if (!scroll) return;
    const double offset = scroll->contentOffset().x;
    const ui::ScrollRange range = scroll->horizontalRange();
    setHidden(_isAtEnd ? offset >= range.most - 1 : offset <= range.least + 1);
    const gfx::Rect seen = scroll->frame();
    setFrame({_isAtEnd ? seen.maxX() - width : seen.minX(), seen.minY(), width, seen.size.height});
}

void DeskScrollMark::scroll() const {
    const auto scroll = _scroll.lock();
    if (!scroll) return;
    const double way = scrolledShare * scroll->bounds().size.width;
    const ui::ScrollRange range = scroll->horizontalRange();
    const double offset = scroll->contentOffset().x + (_isAtEnd ? way : -way);
    scroll->setContentOffset({range.clamped(offset), 0}, true);
}

void DeskScrollMark::drawRect(gfx::Context& context, const gfx::Rect& /*dirty*/) {
    const Palette palette = Palette::current();
    const gfx::Rect all = bounds();
    // From the middle of the bar outwards.
    const auto placeOf = [&](double distance) {
        return _isAtEnd ? all.minX() + distance : all.maxX() - distance;
    };
    const auto fill = [&](double from, double to, double alpha) {
        context.setFillColor(palette.bar.withAlpha(alpha));
        const double left = std::min(placeOf(from), placeOf(to));
        context.fillRect({left, all.minY(), to - from, all.size.height});
    };
    for (double from = 0; from < fadeWidth; from += fadeStep)
        fill(from, from + fadeStep, (from + fadeStep / 2) / fadeWidth);
    fill(fadeWidth, all.size.width, 1);
    const double base = placeOf((fadeWidth + all.size.width - arrowSize.width) / 2);
    const double tip = base + (_isAtEnd ? arrowSize.width : -arrowSize.width);
    context.setStrokeColor(isHighlighted() ? palette.accent : palette.text);
    context.setLineWidth(1.75);
    context.beginPath();
    context.moveTo({base, all.midY() - arrowSize.height / 2});
    context.lineTo({tip, all.midY()});
    context.lineTo({base, all.midY() + arrowSize.height / 2});
    context.stroke();
}

}  // namespace kalim
