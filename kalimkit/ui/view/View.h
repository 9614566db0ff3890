#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "kalimkit/gfx/AffineTransform.h"
#include "kalimkit/gfx/Color.h"
#include "kalimkit/gfx/Context.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Rect.h"
#include "kalimkit/ui/motion/Animated.h"
#include "kalimkit/ui/motion/AnimationOptions.h"
#include "kalimkit/ui/motion/LayerAnimation.h"
#include "kalimkit/ui/motion/LayerOwner.h"
#include "kalimkit/ui/view/Accessibility.h"
#include "kalimkit/ui/view/AccessibilityElement.h"
#include "kalimkit/ui/view/Cursor.h"
#include "kalimkit/ui/view/Responder.h"
#include "kalimkit/ui/view/ViewLook.h"

namespace kalim::ui {

class GestureRecognizer;
class Touch;
class ViewGesture;
class ViewMotion;
class ViewWindow;
class Window;
struct ViewDecoration;
enum class ViewProperty;

// A rectangle on the screen that draws itself and takes touches. A view owns its subviews; the last
// one is on top. Lengths are points.
//
// The frame (superview coordinates) follows from bounds (own coordinates), centre and transform:
// the transform is applied about the anchor point, which is what lies at the centre. Setting the
// frame is meant for views whose transform is the identity. Every change that shows marks the old
// and the new place as damaged. Geometry that is not finite is ignored.
//
// What a property is set to counts at once, for touches and conversions as well; while it is
// animated, only what is drawn is still on the way there.
class KALIM_API View : public Responder,
                       public Animated,
                       public LayerOwner,
                       public std::enable_shared_from_this<View> {
public:
    static std::shared_ptr<View> initWithFrame(const gfx::Rect& frame);
    ~View() override;

    // ---- tree
    const std::vector<std::shared_ptr<View>>& subviews() const { return _subviews; }
    View* superview() const { return _superview; }
    // The window it is shown in; null outside of one.
    Window* window() const;
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
    gfx::Rect frame() const { return _look.place.frame(); }
    void setFrame(const gfx::Rect& frame);
    const gfx::Rect& bounds() const { return _look.place.bounds; }
    // A bounds origin other than zero scrolls the content; the centre stays.
    void setBounds(const gfx::Rect& bounds);
    gfx::Point center() const { return _look.place.center; }
    void setCenter(gfx::Point center);
    const gfx::AffineTransform& transform() const { return _look.place.transform; }
    void setTransform(const gfx::AffineTransform& transform);
    // The point of the view, in terms of its sides, that lies at the centre and that the transform
    // keeps in place: its middle, {0.5, 0.5}, at first. Setting it moves the view, and does not
    // animate.
    gfx::Point anchorPoint() const { return _look.place.anchorPoint; }
    void setAnchorPoint(gfx::Point anchorPoint);
    // Whether it takes the superview's bounds as its frame whenever these change their size. Off at
    // first.
    bool fillsSuperview() const { return _fillsSuperview; }
    void setFillsSuperview(bool fills);
    // Own coordinates to those of the superview, and to those of the window.
    gfx::AffineTransform toSuperview() const;
    gfx::AffineTransform toWindow() const;
    // Null stands for the window's coordinates. A place in a view whose transform cannot be
    // inverted is meaningless.
    gfx::Point convertPointTo(gfx::Point p, const View* view) const;
    gfx::Point convertPointFrom(gfx::Point p, const View* view) const;
    gfx::Rect convertRectTo(const gfx::Rect& rect, const View* view) const;

    // ---- languages that are written from right to left
    // In such a language what stands side by side in a view stands the other way round: frames are
    // set as ever, and where the view puts its subviews is their mirror image in its bounds, for
    // all that is drawn, touched, converted and told. What they draw themselves is not mirrored. Of
    // the topmost view, for all in it; off at first.
    bool readsRightToLeft() const { return _readsRightToLeft; }
    void setReadsRightToLeft(bool reads);
    // Pictures, and what lies on them, are Fixed: the view has the place of its frame, and what is
    // in it as well; within it a Reading view goes by the language again. As the superview unless
    // told.
    enum class Sides { Reading, Fixed };
    void setSides(Sides sides);
    // Whether it shows its subviews so; its own drawing is to follow where it has sides.
    bool isMirrored() const { return _isMirrored; }
    // A place in own coordinates where it is shown, and back.
    gfx::Rect mirrored(const gfx::Rect& rect) const;

    // ---- looks
    // Clamped to 0 to 1; applies to the view with all that is in it, as one.
    double alpha() const { return _look.alpha; }
    void setAlpha(double alpha);
    bool isHidden() const { return _hidden; }
    void setHidden(bool hidden);
    const gfx::ColorRef& backgroundColor() const { return _look.backgroundColor; }
    void setBackgroundColor(gfx::ColorRef color);
    // Subviews are cut at the bounds, as the view's own drawing always is. Off by default.
    bool clipsToBounds() const { return _clipsToBounds; }
    void setClipsToBounds(bool clips);
    // Points. Rounds the background, and all that is in the view where it clips to its bounds.
    double cornerRadius() const;
    void setCornerRadius(double radius);
    // Cast by all that the view shows, drawn beyond its bounds even where it clips to them. The
    // colour's alpha is the shadow's opacity.
    std::optional<gfx::Shadow> shadow() const;
    void setShadow(const std::optional<gfx::Shadow>& shadow);
    // Of the view and all that is in it only what lies inside the layer's path shows, whatever the
    // layer's paint; null shows everything.
    std::shared_ptr<ShapeLayer> mask() const;
    void setMask(std::shared_ptr<ShapeLayer> mask);
    // Drawn over the view's own content and under its subviews, in order. A layer leaves the view
    // that it was in before.
    void addShapeLayer(std::shared_ptr<ShapeLayer> layer);
    void removeShapeLayer(const ShapeLayer& layer);
    const std::vector<std::shared_ptr<ShapeLayer>>& shapeLayers() const;

    // ---- animation
    // Frame, bounds, centre, transform, alpha and background colour that change within `changes`,
    // layout run there included, take their final value at once; what is displayed goes there from
    // what it is at this moment, and stays there during the delay. A later change of a property
    // takes it over from where it is displayed then, without a way where it is made outside of any
    // animation. Views outside of a window just change.
    //
    // The completion runs on the run loop when delay and duration are over, whatever became of the
    // views: `finished` is false when every property was taken over or its view left the window.
    // Until then the animated views, with all in them, take no touches, unless the options say so.
    static void animate(const AnimationOptions& options, const std::function<void()>& changes,
                        std::function<void(bool finished)> completion = {});
    // Within an animation's changes, too.
    static void performWithoutAnimation(const std::function<void()>& changes);
    // Whether a property, a keyed animation or one of a shape layer is on its way.
    bool isAnimating() const;
    // What is displayed at this moment.
    gfx::Rect shownFrame() const;
    double shownAlpha() const;
    gfx::AffineTransform shownTransform() const;
    // The own bounds in window points, through the shown places of all above.
    gfx::Rect shownRectInWindow() const;
    // Opacity, Scale and Rotation of the animation make of the view what they say, with all that is
    // in it. One that has the key already is replaced. Running animations end when the view leaves
    // its window.
    void addAnimation(const LayerAnimation& animation, std::string key);
    void removeAnimation(const std::string& key);
    void removeAllAnimations();
    // Of the view's own animations that run, and those with the ones of its shape layers.
    std::vector<std::string> animationKeys() const;
    std::vector<std::string> runningAnimationKeys() const;

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
    // Hands that rest on it and on what is in it, as a palm beside a pen, are no touches: see
    // Window::fingersBegan(). Off at first.
    bool rejectsPalms() const { return _rejectsPalms; }
    void setRejectsPalms(bool rejects) { _rejectsPalms = rejects; }
    // Where a touch of the view is about to be, own coordinates, the farthest last; until it moves.
    virtual void touchPredicted(const Touch& /*touch*/, const std::vector<gfx::Point>& /*places*/) {
    }
    // The deepest view under a point of own coordinates that takes touches; null for none. Hidden
    // views, those with an alpha below 0.01, those that take no interaction and those whose
    // animation allows none are passed over with all that is in them, and so is what lies outside
    // the bounds.
    virtual std::shared_ptr<View> hitTest(gfx::Point p);
    virtual bool pointInside(gfx::Point p) const;
    // A recogniser leaves the view that it was attached to before; that cancels its gesture.
    void addGestureRecognizer(std::shared_ptr<ViewGesture> recognizer);
    void removeGestureRecognizer(const ViewGesture& recognizer);
    std::vector<std::shared_ptr<GestureRecognizer>> gestureRecognizers() const;
    // A gesture has begun apart from any event: the view and those in it are told that their
    // touches are cancelled.
    void takeTouches();
    // Whether a recogniser of this view or of one above it may see touches that land here.
    virtual bool admitsGesture(const GestureRecognizer& /*recognizer*/) const { return true; }

    // ---- a pointer that hovers, as a mouse's; fingers never do. Places are in own coordinates.
    // The view under the pointer and all above it are told, those above first; see Hover.
    virtual void pointerEntered(gfx::Point /*p*/) {}
    // It has moved within what it had entered before.
    virtual void pointerMoved(gfx::Point /*p*/) {}
    // The view may be in the window no longer.
    virtual void pointerExited() {}
    // Its wheel or a touchpad would move what it hovers over by so many points, content to the
    // right and downwards being positive. Whether the view has used that; else the one above it is
    // asked.
    virtual bool pointerScrolled(gfx::Point /*p*/, gfx::Point /*distance*/) { return false; }
    // What the pointer is to look like there; nothing leaves it to the view above. Asked after
    // every event, also while a button is pressed, when the place may lie outside of the bounds.
    virtual std::optional<Cursor> cursorAt(gfx::Point /*p*/) { return std::nullopt; }

    // ---- accessibility
    virtual std::string accessibilityLabel() const { return _accessibility.label; }
    void setAccessibilityLabel(std::string label) { _accessibility.label = std::move(label); }
    virtual AccessibilityRole accessibilityRole() const { return _accessibility.role; }
    void setAccessibilityRole(AccessibilityRole role) { _accessibility.role = role; }
    virtual std::string accessibilityValue() const { return _accessibility.value; }
    void setAccessibilityValue(std::string value) { _accessibility.value = std::move(value); }
    bool isAccessibilityHidden() const { return _accessibility.isHidden; }
    void setAccessibilityHidden(bool hidden) { _accessibility.isHidden = hidden; }
    bool isAccessibilityModal() const { return _accessibility.isModal; }
    void setAccessibilityModal(bool modal) { _accessibility.isModal = modal; }
    // Whether it can be used at present, as far as that is its own affair.
    virtual bool isAccessibilityEnabled() const { return true; }
    virtual bool isAccessibilitySelected() const { return false; }
    // What it shows that is no view, in the order in which it is to be read.
    virtual std::vector<AccessibilityElement> accessibilityElements() { return {}; }
    // What a tap on one does; false, and nothing happens, where there is none of the key or it
    // cannot be used.
    virtual bool activateAccessibilityElement(std::uint64_t /*key*/) { return false; }

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
    View();
    // Runs after construction, when shared_from_this() works.
    virtual void init(const gfx::Rect& frame);
    // Draws the view's own content in own coordinates; `dirty` is the part that will be seen. The
    // background colour is painted already.
    virtual void drawRect(gfx::Context& context, const gfx::Rect& dirty);
    virtual void layoutSubviews() {}
    // Comes after the view or one above it entered or left a window.
    virtual void didMoveToWindow() {}
    virtual void didBecomeFirstResponder() {}
    // The view may still be in the window or not.
    virtual void didResignFirstResponder() {}

private:
    friend class Window;

    bool isShown() const;
    gfx::Rect extent() const;
    gfx::Rect contentExtent() const;
    gfx::Rect withShadow(const gfx::Rect& rect) const;
    gfx::Rect withCasters(const gfx::Rect& rect) const;
    void damage(gfx::Rect rect);
    void damageExtent();
    void forgetExtent();
    // Makes a change that shows, with the damage before and after it.
    template <typename Change>
    void change(Change make) {
        damageExtent();
        make();
        forgetExtent();
        damageExtent();
    }
    template <typename Change>
    void change(std::initializer_list<ViewProperty> properties, Change make);
    void setPlace(gfx::Point center, const gfx::Rect& bounds);
    void announceLayout();
    void inheritSides();
    gfx::AffineTransform placed(const gfx::AffineTransform& place, const gfx::Rect& own,
                                const gfx::Rect& around) const;
    void moveSubview(View& view, std::size_t index);
    void setWindow(ViewWindow* window);
    void collect(std::vector<std::shared_ptr<View>>& subtree);

    // ---- animation (ViewAnimation.cpp)
    // What is displayed: the look itself while nothing animates.
    const ViewLook& shown() const;
    gfx::AffineTransform shownToSuperview() const;
    gfx::AffineTransform shownToWindow() const;
    void startMotion(std::initializer_list<ViewProperty> properties);
    void settleMotion();
    ViewMotion& motion();
    void animationsChanged();
    bool advanceMotion(Time time) override;
    void layerAnimationsChanged() override { animationsChanged(); }
    void stopMotion();

    // ---- decoration (ViewDecoration.cpp)
    ViewDecoration& decoration();
    void adopt(ShapeLayer& layer);
    void releaseLayer(ShapeLayer& layer) override;
    void layerDamaged(const ShapeLayer& layer) override;
    std::vector<std::shared_ptr<ShapeLayer>> ownedLayers() const;

    // ---- painting (ViewDrawing.cpp)
    int paint(gfx::Context& context, const gfx::Rect& dirty);
    bool isBackgroundAlone() const;
    int paintContent(gfx::Context& context, const gfx::Rect& dirty);
    gfx::Rect clipContent(gfx::Context& context, const gfx::Rect& dirty);
    int paintOwn(gfx::Context& context, const gfx::Rect& dirty);
    int paintBackground(gfx::Context& context);
    gfx::AffineTransform drawnToShown() const;

    std::vector<std::shared_ptr<View>> _subviews;
    View* _superview = nullptr;
    ViewWindow* _window = nullptr;
    // Animations lead to these values.
    ViewLook _look;
    // Null while nothing animates.
    std::unique_ptr<ViewMotion> _motion;
    // A view without any has null.
    std::unique_ptr<ViewDecoration> _decoration;
    // What contentExtent() has found, while nothing in the subtree changes it. Nothing where a
    // shadow below the view is measured, which what lies above the view has a part in.
    mutable std::optional<gfx::Rect> _contentExtent;
    bool _hidden = false;
    bool _clipsToBounds = false;
    bool _needsLayout = true;
    // Whether anything in it does.
    bool _needsLayoutBelow = false;
    // Of the class View itself: there is nothing to it but its background and its subviews.
    bool _isPlain = false;
    bool _userInteractionEnabled = true;
    bool _multipleTouchEnabled = false;
    bool _rejectsPalms = false;
    bool _fillsSuperview = false;
    bool _readsRightToLeft = false;
    bool _isMirrored = false;
    std::optional<Sides> _sides;
    Accessibility _accessibility;
    std::vector<std::shared_ptr<ViewGesture>> _recognizers;
};

}  // namespace kalim::ui
