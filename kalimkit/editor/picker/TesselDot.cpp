#include "kalimkit/editor/picker/TesselDot.h"

#include <array>

#include "kalimkit/editor/picker/PickerNames.h"
#include "kalimkit/theme/ColorImages.h"
#include "kalimkit/theme/FrameworkImages.h"
#include "kalimkit/theme/HexColor.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

namespace {

enum Type : unsigned { colorType, sizeType, penType, shapeType };

constexpr double selectedWidth = 2.5;
constexpr double plainWidth = 1;
constexpr const char* goingInKey = "IN_SELECTING_ANIME";
constexpr const char* goingOutKey = "OUT_SELECTING_ANIME";

const gfx::Color white{1, 1, 1};
const gfx::Color black{0, 0, 0};

// A ring that lies within the rectangle.
void strokeRing(gfx::Context& context, const gfx::Rect& rect, double width,
                const gfx::Color& color) {
    context.setLineWidth(width);
    context.setStrokeColor(color);
    context.strokeEllipse(rect.inset(width / 2, width / 2));
}

std::shared_ptr<TesselConfig> configOfType(unsigned type) {
    const auto config = TesselConfig::create();
    config->setType(type);
    return config;
}

}  // namespace

// ---- making

std::shared_ptr<TesselDot> TesselDot::initWithConfig(std::shared_ptr<TesselConfig> config) {
    if (!config) config = TesselConfig::create();
    const std::shared_ptr<TesselDot> dot(new TesselDot(std::move(config)));
    dot->init({0, 0, side, side});
    return dot;
}

std::shared_ptr<TesselDot> TesselDot::initWithColorShowBorder(gfx::ColorRef color,
                                                              bool showBorder) {
    const auto config = configOfType(colorType);
    config->setColor(std::move(color));
    config->setIsShowBorder(showBorder);
    return initWithConfig(config);
}

std::shared_ptr<TesselDot> TesselDot::initWithSize(unsigned size) {
    const auto config = configOfType(sizeType);
    config->setSize(size);
    return initWithConfig(config);
}

std::shared_ptr<TesselDot> TesselDot::initWithPen(unsigned pen) {
    const auto config = configOfType(penType);
    config->setPen(pen);
    return initWithConfig(config);
}

std::shared_ptr<TesselDot> TesselDot::initWithShape(unsigned shape) {
    const auto config = configOfType(shapeType);
    config->setShape(shape);
    return initWithConfig(config);
}

TesselDot::TesselDot(std::shared_ptr<TesselConfig> config)
    : _config(std::move(config)),
      _iconView(ui::ImageView::initWithFrame({})),
      _ringLayer(std::make_shared<ui::ShapeLayer>()) {}

void TesselDot::init(const gfx::Rect& frame) {
    View::init(frame);
    setAccessibilityRole(ui::AccessibilityRole::RadioButton);
    _iconView->setContentMode(ui::ContentMode::Center);
    addSubview(_iconView);
    _ringLayer->setLineWidth(selectedWidth);
    addShapeLayer(_ringLayer);
    renderIcon();
}

// ---- touches

void TesselDot::touchesBegan(const ui::TouchEvent& /*event*/) {
    const auto alive = shared_from_this();
    setHighLight(true);
    const auto delegate = _delegate.lock();
    if (_responseConfig && delegate) delegate->clickDotWithConfigIndex(_config, _tag);
    setNeedsDisplay();
}

void TesselDot::touchesMoved(const ui::TouchEvent& /*event*/) {}

void TesselDot::touchesEnded(const ui::TouchEvent& /*event*/) {
    setHighLight(false);
}

void TesselDot::touchesCancelled(const ui::TouchEvent& /*event*/) {
    setHighLight(false);
}

void TesselDot::setHighLight(bool highLight) {
    _highLight = highLight;
    setNeedsDisplay();
}

// ---- what it stands for

void TesselDot::setColor(gfx::ColorRef color) {
    _config->setColor(std::move(color));
    setNeedsDisplay();
}

void TesselDot::setSize(unsigned size) {
    _config->setSize(size);
    setNeedsDisplay();
}

void TesselDot::setHidingStyle(std::optional<std::uint64_t> drawType) {
    _config->setHidingStyle(drawType);
    renderIcon();
    setNeedsDisplay();
}

void TesselDot::setPen(unsigned pen) {
    _config->setPen(pen);
    renderIcon();
}

void TesselDot::setShape(unsigned shape) {
    _config->setShape(shape);
    renderIcon();
}

std::string TesselDot::accessibilityLabel() const {
    return choiceName(*_config);
}

bool TesselDot::hasIcon() const {
    const bool isHiding = _config->type() == sizeType && _config->hidingStyle();
    return _config->type() == penType || _config->type() == shapeType || isHiding;
}

void TesselDot::renderIcon() {
    if (!hasIcon()) return _iconView->setImage(nullptr);
    const gfx::ImageRef icon = imageNamedForFramework(dotIconName(*_config));
    _iconView->setImage(imageWithTintColor(icon, gfx::makeColor(white)));
}

// ---- state

void TesselDot::setSelect(bool select) {
    if (select == _select) return;
    _select = select;
    setSaidSelected(select);
    if (_config->type() == penType) {
        _ringLayer->setStrokeColor(select ? gfx::makeColor(white) : nullptr);
    }
    if (window()) animateRing(select);
    setNeedsDisplay();
}

void TesselDot::setSaidSelected(bool selected) {
    _isSaidSelected = selected;
    const ui::Environment& environment = ui::Environment::current();
    setAccessibilityValue(selected ? environment.localizedString("已选中") : "");
}

// In: the ring grows towards the edge and becomes white. Out: it fades where it is.
void TesselDot::animateRing(bool isGoingIn) {
    const gfx::ColorRef shown = gfx::makeColor(white);
    ui::BasicAnimation stroke{.property = ui::AnimatedProperty::StrokeColor,
                              .duration = 0.2,
                              .curve = ui::TimingCurve::EaseOut};
    (isGoingIn ? stroke.toColor : stroke.fromColor) = shown;
    ui::LayerAnimation animation = ui::LayerAnimation::basic(stroke);
    if (isGoingIn) {
        ui::BasicAnimation growth = stroke;
        growth.property = ui::AnimatedProperty::Scale;
        growth.from = 0.6;
        growth.to = 1;
        animation.parts.push_back(growth);
    }
    _ringLayer->removeAnimation(isGoingIn ? goingOutKey : goingInKey);
    _ringLayer->addAnimation(animation, isGoingIn ? goingInKey : goingOutKey);
}

// ---- looks

double TesselDot::dotSize() const {
    static constexpr std::array<double, 5> diameters{6, 10, 16, 22, 28};
    if (_config->type() != sizeType) return side;
    return _config->size() < diameters.size() ? diameters.at(_config->size()) : 0;
}

void TesselDot::layoutSubviews() {
    constexpr double middle = selectedWidth / 2;
    _iconView->setFrame(bounds());
    _ringLayer->setFrame(bounds());
    gfx::Path ring;
    ring.addEllipse(gfx::Rect{{}, bounds().size}.inset(middle, middle));
    _ringLayer->setPath(ring);
}

void TesselDot::drawRect(gfx::Context& context, const gfx::Rect& /*dirty*/) {
    drawFilling(context);
    drawOutline(context);
}

void TesselDot::drawFilling(gfx::Context& context) const {
    const bool isColor = _config->type() == colorType;
    const gfx::ColorRef plate = colorWithHexStringAlpha("262626", hasIcon() ? 0.8 : 0.3);
    const gfx::ColorRef& filling = isColor ? color() : plate;
    if (!filling) return;
    context.setFillColor(*filling);
    context.fillEllipse(bounds());
    if (_config->type() != sizeType || hasIcon()) return;
    const double margin = (side - dotSize()) / 2;
    context.setFillColor(white);
    context.fillEllipse(bounds().inset(margin, margin));
}

void TesselDot::drawOutline(gfx::Context& context) const {
    const bool isColor = _config->type() == colorType;
    if (_select) {
        strokeRing(context, bounds(), selectedWidth, white);
        // Sets the white ring off against a light colour.
        if (isColor) strokeRing(context, bounds().inset(2, 2), plainWidth, black.withAlpha(0.16));
        return;
    }
    // Black alone would be lost on the dark panel.
    const bool isBlack = color() && *color() == black;
    if (!isColor || isBlack) strokeRing(context, bounds(), plainWidth, white.withAlpha(0.6));
}

}  // namespace kalim
