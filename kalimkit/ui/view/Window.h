#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Surface.h"
#include "kalimkit/ui/touch/Touch.h"
#include "kalimkit/ui/view/Damage.h"
#include "kalimkit/ui/view/View.h"

namespace kalim::ui {

// A finger as the host reports it.
struct Finger {
    std::int64_t id = 0;
    // Window points.
    gfx::Point location;
};

// What one display cost.
struct FrameCost {
    // Device pixels inside the damaged rectangles.
    std::int64_t pixels = 0;
    // How many views drew.
    int views = 0;
};

// The root of a view tree: turns what a host reports into touches, and damaged views into pixels.
// The host draws surface() to its screen after display().
class KALIM_API Window : public Responder {
public:
    // Size in points; the scale is that of the current environment's screen.
    explicit Window(gfx::Size size);
    ~Window() override;

    const std::shared_ptr<View>& rootView() const { return _root; }
    gfx::Size size() const { return _size; }
    // Resizes the root view and damages everything.
    void setSize(gfx::Size size);

    // ---- touches. Locations in window points; a finger must have begun to move or end. Locations
    // that are not finite are ignored. Marked views are displayed before each returns.
    void fingersBegan(const std::vector<Finger>& fingers);
    void fingersMoved(const std::vector<Finger>& fingers);
    void fingersEnded(const std::vector<Finger>& fingers);
    // The ids alone count; an empty list cancels every finger.
    void fingersCancelled(const std::vector<Finger>& fingers);
    std::vector<TouchRef> activeTouches() const { return _touches; }
    // Views call it when they go.
    void cancelTouchesIn(const View& subtree);

    // ---- display
    void addDamage(const gfx::Rect& windowRect);
    const Damage& damage() const { return _damage; }
    bool needsDisplay() const { return !_damage.isEmpty() || _needsLayout; }
    // Lays out and draws what is marked; nothing to do leaves the surface alone.
    void display();
    // Null until the first display, or when the device has no surface of this size.
    const std::shared_ptr<gfx::Surface>& surface() const { return _surface; }
    // The device rectangles, in pixels, that the last display drew.
    const std::vector<gfx::Rect>& lastDamage() const { return _lastDamage; }
    FrameCost lastCost() const { return _lastCost; }

private:
    friend class View;

    gfx::Size _size;
    std::shared_ptr<View> _root;
    std::vector<TouchRef> _touches;
    Damage _damage;
    bool _needsLayout = true;
    std::shared_ptr<gfx::Surface> _surface;
    std::vector<gfx::Rect> _lastDamage;
    FrameCost _lastCost;
};

}  // namespace kalim::ui
