#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Point.h"
#include "kalimkit/ui/view/Cursor.h"

namespace kalim::ui {

class View;
class Window;

// Where a pointer hovers in a window, and what it looks like there. The view under it and all above
// that are entered; while a finger is down, a pressed mouse button included, they stay the same
// and only the cursor is asked for anew. Views that appear, move or go under a pointer that stands
// still count at the next display. Nobody whom it tells may destroy the window.
class KALIM_API Hover {
public:
    using CursorHandler = std::function<void(Cursor cursor)>;
    // The view under the pointer, or the one above it that is left; null once there is none.
    using ViewHandler = std::function<void(const std::shared_ptr<View>& view)>;

    explicit Hover(Window& window) : _window(window) {}
    Hover(const Hover&) = delete;
    Hover& operator=(const Hover&) = delete;

    // ---- from the window
    // Window points; a place that is not finite is ignored.
    void moveTo(gfx::Point place);
    void leave();
    // Finds out what lies under the pointer now.
    void refresh();

    // ---- what there is
    // Nothing while no pointer hovers.
    const std::optional<gfx::Point>& place() const { return _place; }
    // The deepest of the views; null for none.
    std::shared_ptr<View> view() const;
    // That of the deepest view that has one; the arrow for none.
    Cursor cursor() const { return _cursor; }

    // ---- those who follow
    // Hears of another cursor than before; at once where it is not the arrow.
    void setCursorHandler(CursorHandler handler);
    // Hears of another view than before.
    void setViewHandler(ViewHandler handler) { _viewHandler = std::move(handler); }
    // The pointer is busy, as one that pans: it looks like this, and enters and leaves no view.
    // Nothing gives it back to them.
    void overrideCursor(std::optional<Cursor> cursor);

private:
    using Chain = std::vector<std::weak_ptr<View>>;

    bool isHeld() const;
    Chain chainAt(gfx::Point place) const;
    void enter(const Chain& chain, bool isMoved);
    void askForCursor();

    Window& _window;
    std::optional<gfx::Point> _place;
    // The root view first.
    Chain _chain;
    Cursor _cursor = Cursor::Arrow;
    std::optional<Cursor> _override;
    CursorHandler _cursorHandler;
    ViewHandler _viewHandler;
};

}  // namespace kalim::ui
