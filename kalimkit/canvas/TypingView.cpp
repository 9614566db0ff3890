#include "kalimkit/canvas/TypingView.h"

#include <algorithm>

namespace kalim {

std::shared_ptr<TypingView> TypingView::initWithFrame(const gfx::Rect& frame) {
    struct Constructible : TypingView {};
    const std::shared_ptr<TypingView> view = std::make_shared<Constructible>();
    static_cast<TypingView&>(*view).init(frame);
    return view;
}

bool TypingView::pointInside(gfx::Point p) const {
    return std::ranges::any_of(subviews(),
                               [p](const auto& field) { return field->frame().contains(p); });
}

}  // namespace kalim
