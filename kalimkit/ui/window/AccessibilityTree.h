#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/view/View.h"
#include "kalimkit/ui/window/AccessibilityNode.h"

namespace kalim::ui {

class Window;

// What a window tells an assistive technology: a list of all that is announced, to be mirrored by
// the host, and a way to use it without aiming.
//
// Hidden views, those with an alpha below 0.01 and those that say so are passed over with all that
// is in them; a view without a role is passed over alone. While a modal view is shown, only what is
// in the topmost one is announced. Views, and the window, may go at any moment.
class KALIM_API AccessibilityTree {
public:
    explicit AccessibilityTree(Window& window);

    // Looks at the window again; true when anything is not as it was at the last update. To be
    // called after the window's display, since layout that is pending is left alone.
    bool update();
    // As of the last update, in reading order: each before what is in it, rows of views from the
    // top to the bottom and each row from the left to the right, elements in their view's order.
    const std::vector<AccessibilityNode>& nodes() const { return _nodes; }

    // Does what a tap does: buttons and text fields get one, elements are activated by their view.
    // False, and nothing happens, for an id that is gone, hidden, behind a modal view or disabled
    // at this moment, and for what a tap does nothing to. The tree and the window may be destroyed
    // by it.
    bool activate(int id);

private:
    // Keeps the ids of a view and of its elements by their keys.
    struct Known {
        int id = 0;
        std::map<std::uint64_t, int> elements;
    };
    struct Target {
        std::shared_ptr<View> view;
        // Only an element has one.
        std::optional<std::uint64_t> key;
    };

    Known& known(View& view);
    int elementId(View& view, std::uint64_t key);
    void collect(View& view, int parent, bool isEnabledAbove,
                 std::vector<AccessibilityNode>& nodes);
    void collectElements(View& view, int parent, bool isEnabled,
                         std::vector<AccessibilityNode>& nodes);
    Target target(int id) const;

    // Of the window; in no window once that is gone.
    std::weak_ptr<View> _root;
    // Ordered by owner, so that a new view never gets the place of one that has gone.
    std::map<std::weak_ptr<View>, Known, std::owner_less<>> _known;
    int _lastId = 0;
    std::vector<AccessibilityNode> _nodes;
};

}  // namespace kalim::ui
