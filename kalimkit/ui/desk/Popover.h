#pragma once

#include <functional>
#include <memory>
#include <string_view>
#include <utility>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/view/View.h"

namespace kalim::ui {

enum class PopoverEdge { Below, Above, Right, Left };

// Where something of a size goes beside a rectangle: on that side of it at a distance, on the other
// where there is more room, and wholly in the room as far as that is large enough. Centred along
// the side, or else flush with the rectangle's start.
KALIM_API gfx::Rect placeBeside(const gfx::Rect& anchor, gfx::Size size, const gfx::Rect& room,
                                PopoverEdge edge, double distance, bool isCentred);

// A plate over the window that holds something: it belongs to a view, or to a place, and stays
// beside that. Escape closes it, and so does a press anywhere else, which does nothing besides; it
// also goes when the view that it belongs to does. A content that is too high for the window is
// scrolled.
class KALIM_API Popover : public View {
public:
    // Points between the plate's edge and what it holds where nothing else is said.
    static constexpr double usualInset = 10;
    struct Options {
        PopoverEdge edge = PopoverEdge::Below;
        double inset = usualInset;
        bool isCentred = true;
        // One that belongs to a place is centred in the window, over a dimmed ground.
        bool isSheet = false;
    };

    // The content keeps the size that it has, and comes at once.
    static std::shared_ptr<Popover> show(View& anchor, std::shared_ptr<View> content,
                                         const Options& options);
    static std::shared_ptr<Popover> showAt(Window& window, const gfx::Rect& place,
                                           std::shared_ptr<View> content, const Options& options);

    const std::shared_ptr<View>& content() const { return _content; }
    bool isOpen() const { return _isOpen; }
    bool isSheet() const { return _options.isSheet; }
    // Also closes what was opened above it.
    void close();
    // Called once, after it has gone.
    void setCloseHandler(std::function<void()> handler) { _closeHandler = std::move(handler); }
    // Gets keys before all others, escape as well; whether they were of use.
    using KeyHandler = std::function<bool(std::string_view key, bool isRepeated)>;
    void setKeyHandler(KeyHandler handler) { _keyHandler = std::move(handler); }
    // The content has another size.
    void contentResized() { place(); }

    // ---- for the overlay
    void place();
    void didClose();
    bool handleKey(std::string_view key, bool isRepeated);

    // A press on the plate beside what it holds does nothing.
    void touchesBegan(const TouchEvent& /*event*/) override {}
    void touchesMoved(const TouchEvent& /*event*/) override {}
    void touchesEnded(const TouchEvent& /*event*/) override {}
    void touchesCancelled(const TouchEvent& /*event*/) override {}

protected:
    Popover() = default;
    void drawRect(gfx::Context& context, const gfx::Rect& dirty) override;

private:
    static std::shared_ptr<Popover> open(Window& window, std::shared_ptr<Popover> popover);

    std::weak_ptr<View> _anchor;
    bool _hasAnchor = false;
    std::shared_ptr<View> _tether;
    // In window points, where there is no view.
    gfx::Rect _place;
    Options _options;
    std::shared_ptr<View> _content;
    // The content itself, or what scrolls it.
    std::shared_ptr<View> _holder;
    bool _isOpen = true;
    std::function<void()> _closeHandler;
    KeyHandler _keyHandler;
};

}  // namespace kalim::ui
