#include <algorithm>
#include <functional>
#include <iterator>
#include <utility>

#include "kalimkit/ui/control/ScrollView.h"
#include "kalimkit/ui/control/TextView.h"
#include "kalimkit/ui/desk/Eyedropper.h"
#include "kalimkit/ui/desk/Overlay.h"
#include "kalimkit/ui/desk/Popover.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/window/Window.h"

namespace kalim::ui {

namespace {

bool isTab(std::string_view key) {
    return key == "tab" || key == "shift+tab";
}

// Whether it can be seen and used, as far as its own and the views above it say.
bool isUsable(const DeskControl& control) {
    constexpr double leastAlpha = 0.01;
    if (!control.canHaveKeyFocus()) return false;
    for (const View* view = &control; view; view = view->superview()) {
        if (view->isHidden() || view->alpha() < leastAlpha || !view->isUserInteractionEnabled()) {
            return false;
        }
    }
    return true;
}

// What a key means to a view: the arrow to the left goes on where that is the way one reads.
std::string_view readingKey(std::string_view key, const View& view) {
    constexpr std::pair<std::string_view, std::string_view> others[] = {
        {"left", "right"},
        {"right", "left"},
        {"shift+left", "shift+right"},
        {"shift+right", "shift+left"}};
    const auto* const other =
        std::ranges::find(others, key, [](const auto& pair) { return pair.first; });
    return view.isMirrored() && other != std::end(others) ? other->second : key;
}

// Moves what scrolls so far that the control is seen.
void scrollTo(const DeskControl& control) {
    for (View* view = control.superview(); view; view = view->superview()) {
        auto* const scroll = dynamic_cast<ScrollView*>(view);
        if (!scroll) continue;
        const gfx::Rect place = scroll->mirrored(control.convertRectTo(control.bounds(), scroll));
        const gfx::Rect& seen = scroll->bounds();
        gfx::Point offset = seen.origin;
        offset.x = std::max(std::min(offset.x, place.minX()), place.maxX() - seen.size.width);
        offset.y = std::max(std::min(offset.y, place.minY()), place.maxY() - seen.size.height);
        if (offset != seen.origin) scroll->setContentOffset(offset);
    }
}

}  // namespace

void Overlay::setKeyFocus(const std::shared_ptr<DeskControl>& control) {
    const auto before = _keyFocus.lock();
    if (before == control) return;
    _keyFocus = control;
    if (before) before->setKeyFocused(false);
    if (!control) return;
    control->setKeyFocused(true);
    scrollTo(*control);
}

std::vector<std::shared_ptr<DeskControl>> Overlay::controls() const {
    std::vector<std::shared_ptr<DeskControl>> found;
    const std::function<void(const View&)> collect = [&](const View& view) {
        for (const auto& subview : view.subviews()) {
            if (subview.get() == this) continue;
            const auto control = std::dynamic_pointer_cast<DeskControl>(subview);
            if (control && isUsable(*control)) found.push_back(control);
            collect(*subview);
        }
    };
    if (!_popovers.empty()) {
        collect(*_popovers.back());
    } else if (superview()) {
        collect(*superview());
    }
    return found;
}

bool Overlay::moveKeyFocus(bool isBackwards) {
    const auto all = controls();
    if (all.empty()) return false;
    const auto now = std::ranges::find(all, keyFocus());
    const auto index = static_cast<std::size_t>(now - all.begin());
    std::size_t next = isBackwards ? all.size() - 1 : 0;
    if (now != all.end()) next = (index + (isBackwards ? all.size() - 1 : 1)) % all.size();
    setKeyFocus(all[next]);
    return true;
}

bool Overlay::takeTab(bool forwards) {
    const auto all = controls();
    const auto focused = keyFocus();
    const bool isAtEnd = !all.empty() && focused == (forwards ? all.back() : all.front());
    // A copy: it may replace itself.
    const TabTaker taker = _tabTaker;
    const auto take = [&] { return taker && taker(forwards); };
    const auto leave = [] { return Environment::current().leaveByTab(); };
    // Behind the last control, and before what the taker has, there is what is around the window.
    const bool isWithin = focused && !isAtEnd;
    const bool isTaken =
        !isWithin && ((forwards && isAtEnd && leave()) || take() || (!forwards && leave()));
    if (!isTaken) return moveKeyFocus(!forwards);
    setKeyFocus(nullptr);
    return true;
}

bool Overlay::takeKey(std::string_view key, bool isRepeated) {
    const auto alive = shared_from_this();
    hideTip();
    if (const auto grabbing = _grabbing.lock()) return grabbing->handleKey(key, isRepeated);
    if (!_popovers.empty()) return takeKeyInPopover(key, isRepeated);
    if (!window() || TextView::focusedIn(*window())) return false;
    if (isTab(key)) return takeTab(key == "tab");
    const auto focused = keyFocus();
    if (!focused) return false;
    if (!isUsable(*focused) || !focused->window()) {
        setKeyFocus(nullptr);
        return false;
    }
    if (key == "escape") {
        setKeyFocus(nullptr);
        return true;
    }
    return focused->handleKey(readingKey(key, *focused), isRepeated);
}

// What is open has all keys.
bool Overlay::takeKeyInPopover(std::string_view key, bool isRepeated) {
    const std::shared_ptr<Popover> top = _popovers.back();
    if (top->handleKey(readingKey(key, *top), isRepeated)) return true;
    if (key == "escape") {
        if (!isRepeated) top->close();
        return true;
    }
    const auto text = TextView::focusedIn(*window());
    if (isTab(key)) {
        if (text) text->resignFirstResponder();
        moveKeyFocus(key != "tab");
        return true;
    }
    if (text) {
        text->handleKey(key);
        return true;
    }
    if (const auto focused = keyFocus()) focused->handleKey(readingKey(key, *focused), isRepeated);
    return true;
}

}  // namespace kalim::ui
