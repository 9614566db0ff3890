#pragma once

#include <cstddef>
#include <memory>
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
// is the identity. Every change that shows marks the old and the new place as damaged. Geometry
// that is not finite is ignored.
class KALIM_API View : public Responder, public std::enable_shared_from_this<View> {
public:
    static std::shared_ptr<View> initWithFrame(const gfx::Rect& frame);
    ~View() override;

    // ---- tree
    const std::vector<std::shared_ptr<View>>& subviews() const { return _subviews; }
    View* superview() const { return _superview; }
    // The window it is shown in; null outside of one.
    Window* window() const { return _window; }
    // Takes the view out of its old superview first; one that is here already only changes its
    // place. Null is ignored, and so is a view that would enter its own subtree.
    void addSubview(std::shared_ptr<View> view);
    // An index beyond the end puts it on top.
    void insertSubview(std::shared_ptr<View> view, std::size_t index);
    // Touches that the subtree is tracking are cancelled.
    void removeFromSuperview();
    // Ignored for a view that is not a subview of this one.
    void bringSubviewToFront(View& view);
    void sendSubviewToBack(View& view);
    // A view counts as its own descendant.
    bool isDescendantOf(const View& other) const;
    Responder* nextResponder() const override;

    // ---- geometry
    gfx::Rect frame() const;
    void setFrame(const gfx::Rect& frame);
    const gfx::Rect& bounds() const { return _bounds; }
    // A bounds origin other than zero scrolls the content; the centre stays.
    void setBounds(const gfx::Rect& bounds);
    gfx::Point center() const { return _center; }
    void setCenter(gfx::Point center);
    const gfx::AffineTransform& transform() const { return _transform; }
    void setTransform(const gfx::AffineTransform& transform);
    // Own coordinates to those of the superview, and to those of the window.
    gfx::AffineTransform toSuperview() const;
    gfx::AffineTransform toWindow() const;
    // Null stands for the window's coordinates. A place in a view whose transform cannot be
    // inverted is meaningless.
    gfx::Point convertPointTo(gfx::Point p, const View* view) const;
    gfx::Point convertPointFrom(gfx::Point p, const View* view) const;
    gfx::Rect convertRectTo(const gfx::Rect& rect, const View* view) const;

    // ---- looks
    // Clamped to 0 to 1; applies to the view with all that is in it, as one.
    double alpha() const { return _alpha; }
    void setAlpha(double alpha);
    bool isHidden() const { return _hidden; }
    void setHidden(bool hidden);
    const gfx::ColorRef& backgroundColor() const { return _backgroundColor; }
    void setBackgroundColor(gfx::ColorRef color);
    // Subviews are cut at the bounds, as the view's own drawing always is. Off by default.
    bool clipsToBounds() const { return _clipsToBounds; }
    void setClipsToBounds(bool clips);

    // ---- drawing and layout
    // Marks the bounds, or a rectangle in own coordinates within them, to be drawn at the end of
    // the event.
    void setNeedsDisplay();
    void setNeedsDisplay(const gfx::Rect& rect);
    // Draws the view and what is in it, in own coordinates from the corner of its bounds on,
    // whether it is in a window or not.
    void renderIn(gfx::Context& context);
    void setNeedsLayout();
    // Runs the pending layout of this view and of those below it.
    void layoutIfNeeded();

    // ---- touches
    bool isUserInteractionEnabled() const { return _userInteractionEnabled; }
    void setUserInteractionEnabled(bool enabled) { _userInteractionEnabled = enabled; }
    // Off by default: of the fingers that are on the view together only the first is delivered.
    bool isMultipleTouchEnabled() const { return _multipleTouchEnabled; }
    void setMultipleTouchEnabled(bool enabled) { _multipleTouchEnabled = enabled; }
    // The deepest view under a point of own coordinates that takes touches; null for none. Hidden
    // views, those with an alpha below 0.01 and those that take no interaction are passed over with
    // all that is in them, and so is what lies outside the bounds.
    virtual std::shared_ptr<View> hitTest(gfx::Point p);
    virtual bool pointInside(gfx::Point p) const;
    // A recogniser leaves the view that it was attached to before; that cancels its gesture.
    void addGestureRecognizer(std::shared_ptr<GestureRecognizer> recognizer);
    void removeGestureRecognizer(const GestureRecognizer& recognizer);
    const std::vector<std::shared_ptr<GestureRecognizer>>& gestureRecognizers() const {
        return _recognizers;
    }

    // ---- focus
    // Whether the view takes typed text. No view does by default.
    virtual bool canBecomeFirstResponder() const { return false; }
    // Takes the window's focus from the view that has it; false, and nothing happens, outside of a
    // window, when the view or one above it is hidden, or when it takes no text.
    bool becomeFirstResponder();
    // False when it has no focus. A view that leaves its window or is hidden loses the focus.
    bool resignFirstResponder();
    bool isFirstResponder() const;

protected:
    View() = default;
    // Runs after construction, when shared_from_this() works.
    virtual void init(const gfx::Rect& frame);
    // Draws the view's own content in own coordinates; `dirty` is the part that will be seen. The
    // background colour is painted already.
    virtual void drawRect(gfx::Context& context, const gfx::Rect& dirty);
    virtual void layoutSubviews() {}
    // After the view or one above it entered or left a window.
    virtual void didMoveToWindow() {}
    virtual void didBecomeFirstResponder() {}
    // The view may still be in the window or not.
    virtual void didResignFirstResponder() {}

private:
    friend class Window;

    bool isShown() const { return !_hidden && _alpha > 0; }
    gfx::Rect extent() const;
    void damage(gfx::Rect rect);
    void damageExtent() { damage(extent()); }
    template <typename Change>
    void change(Change make);
    void setPlace(gfx::Point center, const gfx::Rect& bounds);
    void moveSubview(View& view, std::size_t index);
    void setWindow(Window* window);
    void collect(std::vector<std::shared_ptr<View>>& subtree);

    int paint(gfx::Context& context, const gfx::Rect& dirty);
    int paintContent(gfx::Context& context, const gfx::Rect& dirty);
    int paintOwn(gfx::Context& context, const gfx::Rect& dirty);

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
    // Of the class View itself: there is nothing to it but its background and its subviews.
    bool _isPlain = false;
    bool _userInteractionEnabled = true;
    bool _multipleTouchEnabled = false;
    gfx::ColorRef _backgroundColor;
    std::vector<std::shared_ptr<GestureRecognizer>> _recognizers;
};

}  // namespace kalim::ui
