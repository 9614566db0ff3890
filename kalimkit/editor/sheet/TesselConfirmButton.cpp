#include "kalimkit/editor/sheet/TesselConfirmButton.h"

#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

namespace {

constexpr gfx::Color plateColor{0.22, 0.22, 0.22, 1};
constexpr gfx::Size markSize{27, 19};
constexpr double zoomedScale = 0.8;
// Of whichever runs on the check mark's stroke.
constexpr const char* strokeKey = "goApprea";
constexpr const char* scaleKey = "scale-layer";

ui::BasicAnimation fromNoneToAll(ui::AnimatedProperty property, double seconds) {
    return {.property = property,
            .from = 0,
            .to = 1,
            .duration = seconds,
            .curve = ui::TimingCurve::EaseInOut};
}

}  // namespace

std::shared_ptr<TesselConfirmButton> TesselConfirmButton::init() {
    struct Constructible : TesselConfirmButton {};
    const std::shared_ptr<TesselConfirmButton> button = std::make_shared<Constructible>();
    button->init(gfx::Rect{});
    return button;
}

void TesselConfirmButton::init(const gfx::Rect& frame) {
    Button::init(frame);
    setAccessibilityLabel(ui::Environment::current().localizedString("确定"));
    initUI();
}

void TesselConfirmButton::initUI() {
    _shapelayer = std::make_shared<ui::ShapeLayer>();
    _shapelayer->setStrokeColor(gfx::makeColor(1, 1, 1));
    _shapelayer->setLineWidth(2);
    addShapeLayer(_shapelayer);
}

void TesselConfirmButton::ApperaWithDuration(double seconds) {
    _shapelayer->addAnimation(
        ui::LayerAnimation::basic(fromNoneToAll(ui::AnimatedProperty::StrokeEnd, seconds)),
        strokeKey);
}

void TesselConfirmButton::DisApperaWithDuration(double seconds) {
    ui::BasicAnimation wipe = fromNoneToAll(ui::AnimatedProperty::StrokeStart, seconds);
    wipe.staysAtEnd = true;
    _shapelayer->addAnimation(ui::LayerAnimation::basic(wipe), strokeKey);
    addAnimation(ui::LayerAnimation::basic({.property = ui::AnimatedProperty::Scale,
                                            .from = 1,
                                            .to = zoomedScale,
                                            .duration = seconds,
                                            .curve = ui::TimingCurve::EaseInOut,
                                            .autoreverses = true}),
                 scaleKey);
}

void TesselConfirmButton::layoutSubviews() {
    Button::layoutSubviews();
    const gfx::Rect& all = bounds();
    const gfx::Point corner{all.midX() - markSize.width / 2, all.midY() - markSize.height / 2};
    _backgroundPath = {};
    _backgroundPath.addEllipse(all);
    _goPath = {};
    _goPath.moveTo(corner + gfx::Point{0, 11});
    _goPath.lineTo(corner + gfx::Point{8, 19});
    _goPath.lineTo(corner + gfx::Point{27, 0});
    _shapelayer->setFrame(all);
    _shapelayer->setPath(_goPath);
}

void TesselConfirmButton::drawRect(gfx::Context& context, const gfx::Rect& dirty) {
    context.setFillColor(plateColor);
    context.beginPath();
    context.addPath(_backgroundPath);
    context.fill();
    Button::drawRect(context, dirty);
}

}  // namespace kalim
