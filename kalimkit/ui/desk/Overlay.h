#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/desk/DeskControl.h"
#include "kalimkit/ui/environment/Appearance.h"
#include "kalimkit/ui/view/View.h"

namespace kalim::ui {

class Bubble;
class Eyedropper;
class Popover;
class TextView;

// What lies over everything in a window: popovers and menus, tips, short notes. It also brings keys
// to what a desk is made of: to what is open above all, else to the control that has the keys'
// focus, which tab and shift+tab move. A press anywhere takes that focus away.
//
// A tip is shown once the pointer has rested on a control for tipDelay seconds, and at once where
// another was shown just before.
class KALIM_API Overlay : public View, public AppearanceObserver {
public:
    static constexpr double tipDelay = 0.5;
    static constexpr double tipAgain = 0.3;
    // How long a note is shown before it fades, and how long it takes to come and go.
    static constexpr double noteDuration = 2;
    static constexpr double noteFade = 0.2;

    // That of the window, made when it is first asked for; it goes with the window.
    static std::shared_ptr<Overlay> in(Window& window);
    // Null where the window has none so far.
    static std::shared_ptr<Overlay> existingIn(const Window& window);
    ~Overlay() override;

    // ---- what is open; the last one is above the others
    const std::vector<std::shared_ptr<Popover>>& popovers() const { return _popovers; }
    void open(std::shared_ptr<Popover> popover);
    // With all that were opened above it.
    void close(const Popover& popover);
    void closeAll();

    // Fills the window with a view that has all touches and keys until it goes.
    void grab(const std::shared_ptr<Eyedropper>& view);

    // ---- notes
    // Shows a text at the bottom for a while, in the place of the one before. The icon, by the name
    // of drawDeskIcon(), may be empty.
    void tell(const std::string& text, const std::string& icon = {});
    // What bars cover of the window at the bottom, points: a note is shown above that.
    void setBottomInset(double inset) { _bottomInset = inset; }

    // ---- keys
    std::shared_ptr<DeskControl> keyFocus() const { return _keyFocus.lock(); }
    // Null takes the focus away.
    void setKeyFocus(const std::shared_ptr<DeskControl>& control);
    // To the next control of what is open above all, or of the window; whether there is one.
    bool moveKeyFocus(bool isBackwards);

    // Where tab goes before it goes to the first control and after it has left the last one, while
    // nothing is open: whether there was anything to go to.
    using TabTaker = std::function<bool(bool forwards)>;
    void setTabTaker(TabTaker taker) { _tabTaker = std::move(taker); }

    // ---- tips
    void hideTip();

    std::shared_ptr<View> hitTest(gfx::Point p) override;
    // Beside what is open: that is closed, and the press does nothing else.
    void touchesBegan(const TouchEvent& event) override;
    void touchesMoved(const TouchEvent& /*event*/) override {}
    void touchesEnded(const TouchEvent& /*event*/) override {}
    void touchesCancelled(const TouchEvent& /*event*/) override {}
    bool admitsGesture(const GestureRecognizer& recognizer) const override;
    std::optional<Cursor> cursorAt(gfx::Point /*p*/) override { return Cursor::Arrow; }
    void appearanceChanged() override { setNeedsLayout(); }

protected:
    Overlay() = default;
    void init(const gfx::Rect& frame) override;
    void layoutSubviews() override;
    void didMoveToWindow() override;

private:
    class PressWatcher;

    void connect(Window& window);
    void dim();
    // ---- keys (OverlayKeys.cpp)
    bool takeKey(std::string_view key, bool isRepeated);
    bool takeTab(bool forwards);
    bool takeKeyInPopover(std::string_view key, bool isRepeated);
    std::vector<std::shared_ptr<DeskControl>> controls() const;

    // ---- tips and notes (OverlayBubbles.cpp)
    void pointerIsOn(const std::shared_ptr<View>& view);
    void showTip(const std::shared_ptr<DeskControl>& control);
    void placeNote();
    void endNote(bool animated);

    std::vector<std::shared_ptr<Popover>> _popovers;
    std::weak_ptr<Eyedropper> _grabbing;
    std::weak_ptr<DeskControl> _keyFocus;
    // The control that had it when the first popover was opened.
    std::weak_ptr<DeskControl> _focusBefore;
    std::shared_ptr<PressWatcher> _watcher;
    double _bottomInset = 0;

    // The control that the pointer rests on, and the delayed call that shows its tip; 0 for none.
    std::weak_ptr<DeskControl> _tipped;
    std::uint64_t _tipCall = 0;
    std::shared_ptr<Bubble> _tip;
    // When the last one went; negative for never.
    Time _tipEnd = -1;
    std::shared_ptr<Bubble> _note;
    std::uint64_t _noteCall = 0;
    TabTaker _tabTaker;
};

}  // namespace kalim::ui
