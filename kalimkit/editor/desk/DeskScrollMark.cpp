#include "kalimkit/editor/desk/DeskScrollMark.h"

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
                                                     Way way, bool isAtEnd) {
    const std::shared_ptr<DeskScrollMark> mark(new DeskScrollMark(way, isAtEnd));
    mark->init({});
    mark->_scroll = scroll;
    // Everything in the bar is told anyway, in sight or not.
    mark->setAccessibilityHidden(true);
    mark->addAction(ui::ControlEvent::TouchUpInside,
                    [](ui::Control& control) { static_cast<DeskScrollMark&>(control).scroll(); });
    return mark;
}

ui::ScrollRange DeskScrollMark::range(const ui::ScrollView& scroll) const {
    return _way == Way::Down ? scroll.verticalRange() : scroll.horizontalRange();
}

void DeskScrollMark::follow() {
    const auto scroll = _scroll.lock();
    if (!scroll) return;
    const bool isDown = _way == Way::Down;
    const double offset = isDown ? scroll->contentOffset().y : scroll->contentOffset().x;
    const ui::ScrollRange all = range(*scroll);
    setHidden(_isAtEnd ? offset >= all.most - 1 : offset <= all.least + 1);
    gfx::Rect end = scroll->frame();
    if (_isAtEnd)
        end.origin = {isDown ? end.minX() : end.maxX() - length,
                      isDown ? end.maxY() - length : end.minY()};
    (isDown ? end.size.height : end.size.width) = length;
    setFrame(end);
}

void DeskScrollMark::scroll() const {
    const auto scroll = _scroll.lock();
    if (!scroll) return;
    const bool isDown = _way == Way::Down;
    const gfx::Size seen = scroll->bounds().size;
    const double way = scrolledShare * (isDown ? seen.height : seen.width) * (_isAtEnd ? 1 : -1);
    const gfx::Point from = scroll->contentOffset();
    const double offset = range(*scroll).clamped((isDown ? from.y : from.x) + way);
    scroll->setContentOffset(isDown ? gfx::Point{0, offset} : gfx::Point{offset, 0}, true);
}

void DeskScrollMark::drawRect(gfx::Context& context, const gfx::Rect& /*dirty*/) {
    const Palette palette = Palette::current();
    const bool isDown = _way == Way::Down;
    const gfx::Size size = bounds().size;
    const double breadth = isDown ? size.width : size.height;
    // From the middle of the bar outwards, and from its side inwards.
    const bool goesOn = _isAtEnd != (!isDown && isMirrored());
    const auto placeOf = [&](double distance, double aside) {
        const double along = goesOn ? distance : length - distance;
        return isDown ? gfx::Point{aside, along} : gfx::Point{along, aside};
    };
    const auto fill = [&](double from, double to, double alpha) {
        context.setFillColor(palette.bar.withAlpha(alpha));
        context.fillRect(gfx::Rect::spanning(placeOf(from, 0), placeOf(to, breadth)));
    };
    for (double from = 0; from < fadeWidth; from += fadeStep)
        fill(from, from + fadeStep, (from + fadeStep / 2) / fadeWidth);
    fill(fadeWidth, length, 1);
    const double base = (fadeWidth + length - arrowSize.width) / 2;
    const double half = arrowSize.height / 2;
    context.setStrokeColor(isHighlighted() ? palette.accent : palette.text);
    context.setLineWidth(1.75);
    context.beginPath();
    context.moveTo(placeOf(base, breadth / 2 - half));
    context.lineTo(placeOf(base + arrowSize.width, breadth / 2));
    context.lineTo(placeOf(base, breadth / 2 + half));
    context.stroke();
}

}  // namespace kalim
