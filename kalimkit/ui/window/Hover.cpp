#include "kalimkit/ui/window/Hover.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "kalimkit/ui/view/View.h"
#include "kalimkit/ui/window/Window.h"

namespace kalim::ui {

namespace {

bool holds(const std::vector<std::weak_ptr<View>>& chain, const std::shared_ptr<View>& view) {
    return std::ranges::any_of(chain, [&](const auto& each) { return each.lock() == view; });
}

}  // namespace

// ---- from the window

void Hover::moveTo(gfx::Point place) {
    if (!std::isfinite(place.x) || !std::isfinite(place.y)) return;
    const bool isMoved = _place != place;
    _place = place;
    if (!isHeld()) enter(chainAt(place), isMoved);
    askForCursor();
}

void Hover::leave() {
    _place.reset();
    enter({}, false);
    askForCursor();
}

void Hover::refresh() {
    if (!_place) return;
    if (!isHeld()) enter(chainAt(*_place), false);
    askForCursor();
}

bool Hover::isHeld() const {
    return _override || !_window.activeTouches().empty();
}

Hover::Chain Hover::chainAt(gfx::Point place) const {
    const auto& root = _window.rootView();
    Chain chain;
    const auto hit = root->hitTest(root->convertPointFrom(place, nullptr));
    for (View* view = hit.get(); view; view = view->superview())
        chain.push_back(view->weak_from_this());
    std::ranges::reverse(chain);
    return chain;
}

// Those that are left hear of it first, the deepest before the others.
void Hover::enter(const Chain& chain, bool isMoved) {
    const Chain before = std::exchange(_chain, chain);
    for (auto left = before.rbegin(); left != before.rend(); ++left) {
        const auto view = left->lock();
        if (view && !holds(chain, view)) view->pointerExited();
    }
    for (const auto& each : chain) {
        const auto view = each.lock();
        // Those before may have taken the pointer, or this view, away.
        if (!view || !_place || !holds(_chain, view)) continue;
        const gfx::Point place = view->convertPointFrom(*_place, nullptr);
        if (!holds(before, view)) {
            view->pointerEntered(place);
        } else if (isMoved) {
            view->pointerMoved(place);
        }
    }
    const auto deepest = [](const Chain& views) {
        return views.empty() ? nullptr : views.back().lock();
    };
    // A copy: it may replace itself.
    const ViewHandler handler = _viewHandler;
    if (handler && deepest(before) != deepest(chain)) handler(view());
}

std::shared_ptr<View> Hover::view() const {
    for (auto each = _chain.rbegin(); each != _chain.rend(); ++each) {
        const auto view = each->lock();
        if (view && view->window() == &_window) return view;
    }
    return nullptr;
}

// ---- cursor

void Hover::setCursorHandler(CursorHandler handler) {
    _cursorHandler = std::move(handler);
    if (_cursorHandler && _cursor != Cursor::Arrow) _cursorHandler(_cursor);
}

void Hover::overrideCursor(std::optional<Cursor> cursor) {
    _override = cursor;
    refresh();
}

void Hover::askForCursor() {
    std::optional<Cursor> cursor = _place ? _override : std::nullopt;
    const Chain chain = _chain;
    for (auto each = chain.rbegin(); _place && !cursor && each != chain.rend(); ++each) {
        const auto view = each->lock();
        if (!view || view->window() != &_window) continue;
        cursor = view->cursorAt(view->convertPointFrom(*_place, nullptr));
    }
    const Cursor before = std::exchange(_cursor, cursor.value_or(Cursor::Arrow));
    const CursorHandler handler = _cursorHandler;
    if (handler && before != _cursor) handler(_cursor);
}

}  // namespace kalim::ui
