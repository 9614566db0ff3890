#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "kalimkit/gfx/AffineTransform.h"
#include "kalimkit/gfx/Color.h"
#include "kalimkit/gfx/Context.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Rect.h"
#include "kalimkit/ui/touch/GestureRecognizer.h"
#include "kalimkit/ui/view/Responder.h"

namespace kalim::ui {

class Window;

// A rectangle on the screen that draws itself and takes touches. A view owns its subviews; the last
// one is on top. Lengths are points.
//
// The frame (superview coordinates) follows from bounds (own coordinates), centre and transform:
// the transform is applied about the centre. Setting the frame is meant for views whose transform
// is the identity. Every change that shows marks the old and the new place as damaged.
class KALIM_API View : public Responder, public std::enable_shared_from_this<View> {
public:
    static std::shared_ptr<View> initWithFrame(const gfx::Rect& frame);
    ~View() override;

    // ---- tree
    const std::vector<std::shared_ptr<View>>& subviews() const { return _subviews; }
    View* superview() const { return _superview; }
    // The window it is shown in; null outside of one.
    Window* window() const;
    // Takes the view out of its old superview first. A view cannot enter its own subtree.
    void addSubview(std::shared_ptr<View> view);
    void insertSubview(std::shared_ptr<View> view, std::size_t index);
    // Touches that the subtree is tracking are cancelled.
    void removeFromSuperview();
    void bringSubviewToFront(View& view);
    void sendSubviewToBack(View& view);
    bool isDescendantOf(const View& other) const;
    Responder* nextResponder() const override;

    // ---- geometry
    gfx::Rect frame() const;
    void setFrame(const gfx::Rect& frame);
    const gfx::Rect& bounds() const { return _bounds; }
    // A bounds origin other than zero scrolls the content.
    void setBounds(const gfx::Rect& bounds);
    gfx::Point center() const { return _center; }
    void setCenter(gfx::Point center);
    const gfx::AffineTransform& transform() const { return _transform; }
    void setTransform(const gfx::AffineTransform& transform);
    // Own coordinates to those of the superview, and to those of the window.
    gfx::AffineTransform toSuperview() const;
    gfx::AffineTransform toWindow() const;
    // Null stands for the window's coordinates.
    gfx::Point convertPointTo(gfx::Point p, const View* view) const;
    gfx::Point convertPointFrom(gfx::Point p, const View* view) const;
    gfx::Rect convertRectTo(const gfx::Rect& rect, const View* view) const;

    // ---- looks
    double alpha() const { return _alpha; }
    void setAlpha(double alpha);
    bool isHidden() const { return _hidden; }
    void setHidden(bool hidden);
    const gfx::ColorRef& backgroundColor() const { return _backgroundColor; }
    void setBackgroundColor(gfx::ColorRef color);
    // Subviews and drawing are cut at the bounds. Off by default.
    bool clipsToBounds() const { return _clipsToBounds; }
    void setClipsToBounds(bool clips);

    // ---- drawing and layout
    // Marks everything, or a rectangle in own coordinates, to be drawn at the end of the event.
    void setNeedsDisplay();
    void setNeedsDisplay(const gfx::Rect& rect);
    void setNeedsLayout();
    // Runs the pending layout of this view and of those below it.
    void layoutIfNeeded();

    // ---- touches
    bool isUserInteractionEnabled() const { return _userInteractionEnabled; }
    void setUserInteractionEnabled(bool enabled) { _userInteractionEnabled = enabled; }
    // With several fingers off, only the first of a sequence is delivered. On by default for the
    // canvas's sake would surprise others, so it is off.
    bool isMultipleTouchEnabled() const { return _multipleTouchEnabled; }
    void setMultipleTouchEnabled(bool enabled) { _multipleTouchEnabled = enabled; }
    // The deepest view under a point of own coordinates that takes touches; null for none. Hidden
    // views, those with an alpha below 0.01 and those that take no interaction are passed over with
    // all that is in them, and so is what lies outside the bounds.
    virtual std::shared_ptr<View> hitTest(gfx::Point p);
    virtual bool pointInside(gfx::Point p) const;
    void addGestureRecognizer(std::shared_ptr<GestureRecognizer> recognizer);
    void removeGestureRecognizer(const GestureRecognizer& recognizer);
    const std::vector<std::shared_ptr<GestureRecognizer>>& gestureRecognizers() const {
        return _recognizers;
    }

protected:
    View() = default;
    // Runs after construction, when shared_from_this() works.
    virtual void init(const gfx::Rect& frame);
    // Draws the view's own content in own coordinates; `dirty` is the part that will be seen. The
    // background colour is painted already.
    virtual void drawRect(gfx::Context& context, const gfx::Rect& dirty);
    virtual void layoutSubviews() {}
    virtual void didMoveToWindow() {}

private:
    friend class Window;

    void damageAll();
    void paint(gfx::Context& context, const gfx::Rect& dirty);

    std::vector<std::shared_ptr<View>> _subviews;
    View* _superview = nullptr;
    Window* _window = nullptr;
    gfx::Rect _bounds;
    gfx::Point _center;
    gfx::AffineTransform _transform;
    double _alpha = 1;
    bool _hidden = false;
    bool _clipsToBounds = false;
    bool _needsLayout = true;
    bool _userInteractionEnabled = true;
    bool _multipleTouchEnabled = false;
    gfx::ColorRef _backgroundColor;
    std::vector<std::shared_ptr<GestureRecognizer>> _recognizers;
};

}  // namespace kalim::ui
