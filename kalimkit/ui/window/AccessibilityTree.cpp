#include "kalimkit/ui/window/AccessibilityTree.h"

#include <algorithm>
#include <utility>

#include "kalimkit/ui/window/Window.h"

namespace kalim::ui {

namespace {

using Views = std::vector<std::shared_ptr<View>>;

bool isPassedOver(const View& view) {
    constexpr double leastAlpha = 0.01;
    return view.isHidden() || view.alpha() < leastAlpha || view.isAccessibilityHidden();
}

// The topmost modal view that is shown; null for none.
std::shared_ptr<View> modalViewIn(View& view) {
    if (isPassedOver(view)) return nullptr;
    const Views subviews = view.subviews();
    for (auto subview = subviews.rbegin(); subview != subviews.rend(); ++subview) {
        if (auto modal = modalViewIn(**subview)) return modal;
    }
    return view.isAccessibilityModal() ? view.shared_from_this() : nullptr;
}

// Whether all that the view is in takes touches.
bool isEnabledAbove(const View& view) {
    for (const View* above = view.superview(); above; above = above->superview()) {
        if (!above->isUserInteractionEnabled()) return false;
    }
    return true;
}

bool isReachable(const View& view, View& root) {
    if (!view.isDescendantOf(root) || !view.isAccessibilityEnabled() || !isEnabledAbove(view)) {
        return false;
    }
    for (const View* above = &view; above; above = above->superview()) {
        if (isPassedOver(*above)) return false;
    }
    const auto modal = modalViewIn(root);
    return !modal || view.isDescendantOf(*modal);
}

bool takesTaps(const View& view) {
    const AccessibilityRole role = view.accessibilityRole();
    return role == AccessibilityRole::Button || role == AccessibilityRole::RadioButton ||
           role == AccessibilityRole::TextField || role == AccessibilityRole::MenuItem;
}

// Each one's middle lies within the height of the other.
bool shareRow(const View& a, const View& b) {
    const auto holds = [](const gfx::Rect& rect, double y) {
        return rect.minY() <= y && y <= rect.maxY();
    };
    return holds(a.frame(), b.frame().midY()) && holds(b.frame(), a.frame().midY());
}

Views inReadingOrder(Views views) {
    std::ranges::stable_sort(views, {}, [](const auto& view) { return view->frame().minY(); });
    for (auto first = views.begin(); first != views.end();) {
        const std::shared_ptr<View> highest = *first;
        const auto end = std::stable_partition(
            first, views.end(), [&](const auto& view) { return shareRow(*highest, *view); });
        std::stable_sort(first, end, [](const auto& a, const auto& b) {
            return a->frame().minX() < b->frame().minX();
        });
        first = end;
    }
    return views;
}

}  // namespace

AccessibilityTree::AccessibilityTree(Window& window) : _root(window.rootView()) {}

// ---- looking

bool AccessibilityTree::update() {
    std::erase_if(_known, [](const auto& entry) { return entry.first.expired(); });
    std::vector<AccessibilityNode> nodes;
    if (const auto root = _root.lock(); root && root->window()) {
        const auto modal = modalViewIn(*root);
        View& top = modal ? *modal : *root;
        collect(top, 0, isEnabledAbove(top), nodes);
    }
    return std::exchange(_nodes, std::move(nodes)) != _nodes;
}

void AccessibilityTree::collect(View& view, int parent, bool isEnabledAbove,
                                std::vector<AccessibilityNode>& nodes) {
    if (isPassedOver(view)) return;
    int id = parent;
    if (const AccessibilityRole role = view.accessibilityRole(); role != AccessibilityRole::None) {
        id = known(view).id;
        nodes.push_back({.id = id,
                         .parent = parent,
                         .role = role,
                         .label = view.accessibilityLabel(),
                         .value = view.accessibilityValue(),
                         .frame = view.convertRectTo(view.bounds(), nullptr),
                         .isEnabled = isEnabledAbove && view.isAccessibilityEnabled(),
                         .isSelected = view.isAccessibilitySelected(),
                         .isFocused = view.isFirstResponder()});
    }
    const bool isEnabled = isEnabledAbove && view.isUserInteractionEnabled();
    collectElements(view, id, isEnabled, nodes);
    for (const auto& subview : inReadingOrder(view.subviews()))
        collect(*subview, id, isEnabled, nodes);
}

void AccessibilityTree::collectElements(View& view, int parent, bool isEnabled,
                                        std::vector<AccessibilityNode>& nodes) {
    for (AccessibilityElement& element : view.accessibilityElements()) {
        nodes.push_back({.id = elementId(view, element.key),
                         .parent = parent,
                         .role = element.role,
                         .label = std::move(element.label),
                         .value = std::move(element.value),
                         .frame = view.convertRectTo(element.frame, nullptr),
                         .isEnabled = isEnabled && element.isEnabled,
                         .isSelected = element.isSelected});
    }
}

AccessibilityTree::Known& AccessibilityTree::known(View& view) {
    Known& known = _known[view.weak_from_this()];
    if (known.id == 0) known.id = ++_lastId;
    return known;
}

int AccessibilityTree::elementId(View& view, std::uint64_t key) {
    int& id = known(view).elements[key];
    if (id == 0) id = ++_lastId;
    return id;
}

// ---- using

AccessibilityTree::Target AccessibilityTree::target(int id) const {
    for (const auto& [view, known] : _known) {
        if (known.id == id) return {view.lock(), std::nullopt};
        for (const auto& [key, elementId] : known.elements) {
            if (elementId == id) return {view.lock(), key};
        }
    }
    return {};
}

bool AccessibilityTree::activate(int id) {
    const auto root = _root.lock();
    Window* const window = root ? root->window() : nullptr;
    const auto [view, key] = target(id);
    if (!window || !view || !isReachable(*view, *root)) return false;
    if (!key) return takesTaps(*view) && window->tap(*view);
    const auto elements = view->accessibilityElements();
    const auto element = std::ranges::find(elements, *key, &AccessibilityElement::key);
    if (element == elements.end() || !element->isEnabled) return false;
    bool isDone = false;
    window->perform(
        [&, view = view, key = *key] { isDone = view->activateAccessibilityElement(key); });
    return isDone;
}

}  // namespace kalim::ui
