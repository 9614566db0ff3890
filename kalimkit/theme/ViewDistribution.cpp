#include "kalimkit/theme/ViewDistribution.h"

#include <algorithm>
#include <cstddef>

#include "kalimkit/gfx/Rect.h"

namespace kalim {

namespace {

// A rectangle along one axis: where it begins and how long it is there, and across.
struct Span {
    double start = 0;
    double length = 0;
    double across = 0;
    double breadth = 0;
};

Span spanOf(const gfx::Rect& r, bool vertical) {
    if (vertical) return {r.minY(), r.size.height, r.minX(), r.size.width};
    return {r.minX(), r.size.width, r.minY(), r.size.height};
}

gfx::Rect rectOf(const Span& s, bool vertical) {
    if (vertical) return {s.across, s.start, s.breadth, s.length};
    return {s.start, s.across, s.length, s.breadth};
}

void distribute(ui::View& receiver, const std::vector<std::shared_ptr<ui::View>>& views,
                bool vertical) {
    const Span whole = spanOf(receiver.bounds(), vertical);
    double spare = whole.length;
    for (const auto& view : views)
        spare -= spanOf(view->frame(), vertical).length;
    const double gap = std::max(0.0, spare / static_cast<double>(views.size() + 1));
    double place = whole.start;
    double middle = whole.across + whole.breadth / 2;
    const auto addSpacer = [&] {
        const auto spacer = ui::View::initWithFrame(rectOf({place, gap, middle, 0}, vertical));
        spacer->setHidden(true);
        receiver.addSubview(spacer);
        place += gap;
    };
    for (const auto& view : views) {
        Span span = spanOf(view->frame(), vertical);
        middle = span.across + span.breadth / 2;
        addSpacer();
        span.start = place;
        view->setFrame(rectOf(span, vertical));
        place += span.length;
    }
    addSpacer();
}

}  // namespace

void distributeSpacingHorizontallyWith(ui::View& receiver,
                                       const std::vector<std::shared_ptr<ui::View>>& views) {
    distribute(receiver, views, false);
}

void distributeSpacingVerticallyWith(ui::View& receiver,
                                     const std::vector<std::shared_ptr<ui::View>>& views) {
    distribute(receiver, views, true);
}

void averageSpacingHorizontallyWithViews(ui::View& receiver,
                                         const std::vector<std::shared_ptr<ui::View>>& views) {
    distributeSpacingHorizontallyWith(receiver, views);
}

}  // namespace kalim
