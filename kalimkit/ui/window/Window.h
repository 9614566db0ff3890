#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Surface.h"
#include "kalimkit/ui/view/Damage.h"
#include "kalimkit/ui/view/Modifiers.h"
#include "kalimkit/ui/view/Touch.h"
#include "kalimkit/ui/view/View.h"
#include "kalimkit/ui/view/ViewWindow.h"
#include "kalimkit/ui/window/Hover.h"

namespace kalim::ui {

class ViewController;

// A finger as the host reports it.
struct Finger {
    std::int64_t id = 0;
    // The location is in window points.
    gfx::Point location;
    TouchContact contact = {};
};

// Tells what one frame cost.
struct FrameCost {
    // Counts the device pixels inside the damaged rectangles.
    std::int64_t pixels = 0;
    // How many views drew; one that several rectangles meet counts for each.
    int views = 0;
};

// The root of a view tree: turns what a host reports into touches, and damaged views into pixels.
// The host draws surface() to its screen after display(), and has the run loop's frame handler call
// display(). Whoever handles a touch may destroy the window; nothing that it calls otherwise may.
class KALIM_API Window : public ViewWindow {
public:
    // Size in points; the scale is that of the current environment's screen.
    explicit Window(gfx::Size size);
    ~Window() override;
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    Window* window() override { return this; }
    const std::shared_ptr<View>& rootView() const { return _root; }
    gfx::Size size() const { return _size; }
    // Whose view fills the window, under what else is in the root view; null, as at first, for
    // none. The one before disappears and the new one appears; each is told before and after. The
    // window holds it until another comes or the window goes.
    const std::shared_ptr<ViewController>& rootViewController() const { return _controller; }
    void setRootViewController(std::shared_ptr<ViewController> controller);
    // Resizes the root view, takes the screen's scale anew and damages everything.
    void setSize(gfx::Size size);

    // ---- touches. Locations in window points; a finger must have begun to move or end. One that
    // lands on no view, or on a place that is not finite, is ignored until it lands again; it lifts
    // where it was last when it ends on such a place. The work of the main queue is done and marked
    // views are displayed before each returns. On views that reject palms nothing lands that is
    // larger than a fingertip, nor any finger while a pen is down and shortly after; what turns out
    // to be a palm later is cancelled, see Touch::isRejected().
    void fingersBegan(const std::vector<Finger>& fingers);
    // Fingers that are not listed, or have not moved, stay where they are.
    void fingersMoved(const std::vector<Finger>& fingers);
    // Where a finger that is down will probably be next, nearest first; told to its view alone.
    void fingerPredicted(std::int64_t id, const std::vector<gfx::Point>& places);
    void fingersEnded(const std::vector<Finger>& fingers);
    // The ids alone count; an empty list cancels every finger.
    void fingersCancelled(const std::vector<Finger>& fingers);
    // The keys that are held from now on. Fingers that are down are delivered anew where they are,
    // as moved, so that what they do follows the keys at once.
    void setModifiers(Modifiers modifiers);
    Modifiers modifiers() const { return _modifiers; }
    // Whether a pen has ever touched it.
    bool hasSeenPen() const { return _hasSeenPen; }
    // Those that are down, in the order of landing.
    const std::vector<TouchRef>& activeTouches() const { return _touches; }
    void cancelTouchesIn(const View& subtree) override;
    // A finger lands in the middle of the view, whatever lies over it, and lifts at once. False,
    // and nothing happens, for a view of no or another window and for one that a finger is on.
    bool tap(View& view);
    // Does work that comes from the host in another way than by fingers, and ends it as theirs.
    // Fingers that it reports are one event together: marked views are displayed when all have
    // been.
    void perform(const std::function<void()>& work);
    void takeTouches(const View& subtree) override;

    // ---- a pointer that hovers; a host reports its moves whether a button is pressed or not. The
    // work of the main queue is done and marked views are displayed before each returns.
    void pointerHovered(gfx::Point place);
    // It hovers over the window no longer.
    void pointerLeft();
    // Its wheel has been turned there, see View::pointerScrolled; whether a view has used it.
    bool pointerScrolled(gfx::Point place, gfx::Point distance);
    Hover& hover() { return _hover; }
    // Hears what the pointer is to look like from now on.
    void setCursorHandler(Hover::CursorHandler handler) {
        _hover.setCursorHandler(std::move(handler));
    }

    // ---- focus
    // What is shown above the screen, such as a menu, takes keys before anything else does: whether
    // it did with this one, by its name. One taker at a time; an empty function ends that.
    using KeyTaker = std::function<bool(std::string_view key, bool isRepeated)>;
    void setKeyTaker(KeyTaker taker) { _keyTaker = std::move(taker); }
    bool takeKey(std::string_view key, bool isRepeated);
    // The view that gets what is typed; null for none. Views take and give it up.
    std::shared_ptr<View> firstResponder() const override { return _firstResponder.lock(); }
    void endFocusIn(const View& subtree) override;

    // ---- display
    // Rounded out to whole device pixels and cut at the window.
    void addDamage(const gfx::Rect& windowRect) override;
    const Damage& damage() const { return _damage; }
    bool needsDisplay() const { return !_damage.isEmpty() || _needsLayout; }
    // Lays out and draws what is marked; nothing to do leaves the surface alone. What drawing
    // itself marks waits for the next display.
    void display();
    // Null until the first display, or when the device has no surface of this size. Transparent
    // where no view draws.
    const std::shared_ptr<gfx::Surface>& surface() const { return _surface; }
    // The device rectangles, in pixels, that the last frame drew, and what it cost. A display that
    // had nothing to do is no frame.
    const std::vector<gfx::Rect>& lastDamage() const { return _lastDamage; }
    FrameCost lastCost() const { return _lastCost; }
    // Counts the frames, the one being drawn included.
    std::uint64_t frames() const { return _frames; }
    // All that was drawn since this was asked last, in pixels: what the host has to bring to its
    // screen.
    std::vector<gfx::Rect> takeDrawn();

private:
    using Touches = std::vector<TouchRef>;
    using Life = std::weak_ptr<Window*>;

    // ---- touches (WindowTouches.cpp)
    TouchRef touchWithId(std::int64_t id) const;
    TouchRef land(const Finger& finger);
    bool isPalm(const Finger& finger, const View& view) const;
    bool isPenNear() const;
    void rejectPalms();
    void rest();
    void lift(const Touches& lifted, TouchPhase phase);
    void deliver(TouchPhase phase, const Touches& changed, const Touches& all);
    Touches feedRecognizers(View& view, TouchPhase phase, const Touches& changed,
                            const Touches& all);
    static Touches withhold(const Touches& touches);
    void sendCancelled(const Touches& cancelled, const Touches& all);
    void send(View& view, TouchPhase phase, const Touches& changed, const Touches& all);
    static void finishEvent(const Life& life);

    void setFirstResponder(const std::shared_ptr<View>& view) override;
    void requestLayout() override;
    void layout();
    bool prepareSurface();
    void draw(const gfx::Rect& rect);

    // Goes with the window.
    std::shared_ptr<Window*> _life = std::make_shared<Window*>(this);
    gfx::Size _size;
    double _scale;
    std::shared_ptr<View> _root;
    std::shared_ptr<ViewController> _controller;
    // The environment keeps this list of windows, this one among them.
    std::shared_ptr<std::vector<Window*>> _windows;
    Touches _touches;
    Hover _hover{*this};
    KeyTaker _keyTaker;
    Modifiers _modifiers;
    bool _hasSeenPen = false;
    // When a pen was last down.
    Time _penTime = 0;
    std::weak_ptr<View> _firstResponder;
    Damage _damage;
    bool _needsLayout = true;
    bool _isDisplaying = false;
    // How much of perform() is under way.
    int _performing = 0;
    std::shared_ptr<gfx::Surface> _surface;
    std::vector<gfx::Rect> _lastDamage;
    FrameCost _lastCost;
    std::uint64_t _frames = 0;
    // The host has not yet taken these pixels.
    Damage _drawn;
};

}  // namespace kalim::ui
