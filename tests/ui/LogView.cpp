#include "tests/ui/LogView.h"

#include <utility>

namespace kalim::test {

namespace {

std::string idsOf(const std::vector<ui::TouchRef>& touches) {
    std::string ids;
    for (const ui::TouchRef& touch : touches)
        ids += " " + std::to_string(touch->id());
    return ids;
}

}  // namespace

std::shared_ptr<LogView> LogView::make(std::string name, const gfx::Rect& frame, Lines& lines) {
    const std::shared_ptr<LogView> view(new LogView(std::move(name), lines));
    view->init(frame);
    return view;
}

void LogView::note(const std::string& phase, const ui::TouchEvent& event) {
    _lines.push_back(_name + " " + phase + idsOf(event.touches) + " of" + idsOf(event.allTouches));
    // A copy: it may replace itself.
    if (const auto react = onTouch) react(phase, event);
}

}  // namespace kalim::test
