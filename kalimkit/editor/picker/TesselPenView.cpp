#include "kalimkit/editor/picker/TesselPenView.h"

#include <cmath>
#include <limits>
#include <string>

#include "kalimkit/editor/picker/PickerNames.h"
#include "kalimkit/theme/ColorImages.h"
#include "kalimkit/theme/ColorName.h"
#include "kalimkit/theme/FrameworkImages.h"
#include "kalimkit/theme/HexColor.h"
#include "kalimkit/theme/Pens.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/gesture/TapGestureRecognizer.h"

namespace kalim {

namespace {

constexpr double ringSide = 48;
constexpr double zoomedScale = 0.8;

// One round of a ring that grows and fades away from `beginTime` on, seconds; before and after
// that it is not seen.
ui::LayerAnimation ringAnimation(double scale, double beginTime) {
    const auto part = [beginTime](ui::AnimatedProperty property, double from, double to,
                                  double duration, ui::TimingCurve curve) {
        return ui::BasicAnimation{.property = property,
                                  .from = from,
                                  .to = to,
                                  .beginTime = beginTime,
                                  .duration = duration,
                                  .curve = curve,
                                  .staysAtEnd = true};
    };
    const ui::BasicAnimation unseen{
        .property = ui::AnimatedProperty::Opacity, .from = 0, .to = 0, .duration = beginTime};
    using enum ui::AnimatedProperty;
    return {.parts = {unseen, part(Scale, 1, scale, 0.6, ui::TimingCurve::EaseIn),
                      part(Opacity, 1, 0, 0.56, ui::TimingCurve::Linear),
                      part(LineWidth, 1, 2, 0.28, ui::TimingCurve::Linear)},
            .duration = 1.4,
            .repeatCount = std::numeric_limits<double>::infinity()};
}

}  // namespace

// ---- making

std::shared_ptr<TesselPenView> TesselPenView::initWithFrame(const gfx::Rect& frame) {
    struct Constructible : TesselPenView {};
    const std::shared_ptr<TesselPenView> button = std::make_shared<Constructible>();
    button->init(frame);
    return button;
}

void TesselPenView::init(const gfx::Rect& frame) {
    Button::init(frame);
    setBackgroundImage(imageNamedForFramework("icon_button_pen"));
    setAccessibilityLabel(kindName(2));
    addAction(ui::ControlEvent::TouchUpInside, [weak = weak_from_this()](ui::Control&) {
        const auto self = std::static_pointer_cast<TesselPenView>(weak.lock());
        if (self) self->sendTap();
    });
}

// ---- touches

void TesselPenView::touchesBegan(const ui::TouchEvent& event) {
    if (!isTracking()) {
        _startPoint = event.touches.front()->locationIn(this);
        _isMove = false;
    }
    Button::touchesBegan(event);
}

void TesselPenView::touchesMoved(const ui::TouchEvent& event) {
    const gfx::Point way = event.touches.front()->locationIn(this) - _startPoint;
    if (std::hypot(way.x, way.y) >= ui::TapGestureRecognizer::slop) _isMove = true;
    Button::touchesMoved(event);
}

void TesselPenView::touchesEnded(const ui::TouchEvent& event) {
    const auto alive = shared_from_this();
    Button::touchesEnded(event);
    _isMove = false;
}

void TesselPenView::touchesCancelled(const ui::TouchEvent& event) {
    const auto alive = shared_from_this();
    Button::touchesCancelled(event);
    _isMove = false;
}

void TesselPenView::sendTap() {
    const auto alive = shared_from_this();
    const auto delegate = _delegate.lock();
    if (delegate && !_isMove) delegate->clickAtPenView();
}

// ---- what it shows

void TesselPenView::setPen(unsigned pen) {
    _pen = pen;
    if (pen != EditorPenCrop) _penInUse = pen;
    renderIcon();
}

void TesselPenView::setSize(unsigned size) {
    _size = size;
    renderIcon();
}

void TesselPenView::setColor(gfx::ColorRef color) {
    _color = std::move(color);
    renderIcon();
}

void TesselPenView::renderIcon() {
    const gfx::ImageRef image = imageNamedForFramework(penIconName(_pen, _size));
    if (!image) return;
    // Black would be lost on the dark button.
    const bool isBlack = _color && *_color == gfx::Color{0, 0, 0};
    const gfx::ColorRef tint = isBlack ? colorWithHexString("242424") : _color;
    const Pen* const pen = penNumbered(_pen);
    _icon = pen->hasOneIcon ? image : imageWithTintColor(image, tint);
    setImage(_icon, ui::ControlState::Normal);
    setImage(_icon, ui::ControlState::Highlighted);
}

std::string TesselPenView::accessibilityValue() const {
    std::string value = penName(_penInUse);
    const std::string kind = _hidingStyle ? hidingStyleName(*_hidingStyle) : sizeName(_size);
    for (const std::string& name : {colorName(_color), kind}) {
        if (!name.empty()) value += (value.empty() ? "" : " ") + name;
    }
    return value;
}

// ---- ring hint

void TesselPenView::ringAnimationOp(int op) {
    const bool isUnwanted = ui::Environment::current().prefersReducedMotion();
    if (op == 1 && _canUseRingAnimation && !isUnwanted && !isRinging()) {
        _firstRing = addRing();
        _secondRing = addRing();
        _firstRing->addAnimation(ringAnimation(1.8333, 0), "FirstRingAnimationKey");
        _secondRing->addAnimation(ringAnimation(1.6667, 0.2), "SecondRingAnimationKey");
    } else if (op == 0 && isRinging()) {
        removeShapeLayer(*_firstRing);
        removeShapeLayer(*_secondRing);
        _firstRing.reset();
        _secondRing.reset();
    }
}

std::shared_ptr<ui::ShapeLayer> TesselPenView::addRing() {
    const auto ring = std::make_shared<ui::ShapeLayer>();
    gfx::Path circle;
    circle.addEllipse({0, 0, ringSide, ringSide});
    ring->setPath(circle);
    ring->setStrokeColor(gfx::makeColor(13.0 / 255, 154.0 / 255, 1));
    placeRing(*ring);
    addShapeLayer(ring);
    return ring;
}

void TesselPenView::placeRing(ui::ShapeLayer& ring) const {
    const gfx::Point corner = bounds().center() - gfx::Point{ringSide / 2, ringSide / 2};
    ring.setFrame({corner, {ringSide, ringSide}});
}

void TesselPenView::layoutSubviews() {
    Button::layoutSubviews();
    for (const auto& ring : {_firstRing, _secondRing}) {
        if (ring) placeRing(*ring);
    }
}

// ---- zoom

void TesselPenView::zoomOutWithDuration(double duration) {
    addAnimation(ui::LayerAnimation::basic({.property = ui::AnimatedProperty::Scale,
                                            .from = 1,
                                            .to = zoomedScale,
                                            .duration = duration,
                                            .curve = ui::TimingCurve::EaseInOut,
                                            .autoreverses = true}),
                 "zoom");
}

void TesselPenView::zoomInWithDuration(double duration) {
    addAnimation(ui::LayerAnimation::basic({.property = ui::AnimatedProperty::Scale,
                                            .from = zoomedScale,
                                            .to = 1,
                                            .duration = duration,
                                            .curve = ui::TimingCurve::EaseInOut}),
                 "zoom");
}

}  // namespace kalim
