#include "kalimkit/shapes/MDrawMosiac.h"

#include <cmath>
#include <utility>
#include <variant>

#include "kalimkit/gfx/Context.h"
#include "kalimkit/shapes/WholePixels.h"
#include "kalimkit/tool/QVGeometry.h"

namespace kalim {

namespace {

constexpr double hitMargin = 5;

constexpr std::string_view turnedName = "turned";
constexpr ToolDetailRule detailRules[] = {{"rectArcRadius", ToolDetailRule::Type::Number, false},
                                          {turnedName, ToolDetailRule::Type::Number, false, 0}};

// Whether there is anything to paint with.
bool setFill(gfx::Context& context, const gfx::Paint& fill) {
    if (const auto* const color = std::get_if<gfx::Color>(&fill)) {
        context.setFillColor(*color);
        return true;
    }
    const auto& pattern = std::get<gfx::Pattern>(fill);
    context.setFillPattern(pattern);
    return pattern.image != nullptr;
}

gfx::Rect devicePixels(const gfx::Context& context, const gfx::Rect& part) {
    const double scale = context.deviceScale();
    return wholePixels(part,
                       context.transform().concat(gfx::AffineTransform::scaling(scale, scale)));
}

}  // namespace

std::shared_ptr<MDrawMosiac> MDrawMosiac::initWithStartPoint(gfx::Point start) {
    return makeAt<MDrawMosiac>(start);
}

const ToolClass& MDrawMosiac::Class() {
    static const ToolClass toolClass{"MDrawMosiac",
                                     &MDrawRect::Class(),
                                     &MDrawTool::makeToolAt<MDrawMosiac>,
                                     {.label = "马赛克",
                                      .layer = ToolLayer::Ground,
                                      .picking = ToolPicking::UnderForgivingRules,
                                      .keepsToFrame = true,
                                      .toolType = 5,
                                      .details = detailRules,
                                      .properties = std::span<const ToolProperty>()}};
    return toolClass;
}

void MDrawMosiac::init() {
    MDrawRect::init();
    _mIsDrawUp = false;
    setColor(gfx::makeColor(0, 0, 0, 0));
}

void MDrawMosiac::drawUp(gfx::Point p) {
    _mIsDrawUp = true;
    MDrawRect::drawUp(p);
}

MosaicStyle MDrawMosiac::style() const {
    switch (const auto style = static_cast<MosaicStyle>(drawType())) {
        case MosaicStyle::Sealed:
        case MosaicStyle::Solid:
        case MosaicStyle::Blur:
            return style;
        case MosaicStyle::Averaging:
            break;
    }
    return MosaicStyle::Averaging;
}

bool MDrawMosiac::hidesForCertain() const {
    return isHiding() && (style() == MosaicStyle::Sealed || style() == MosaicStyle::Solid);
}

const char* MDrawMosiac::label() const {
    switch (style()) {
        case MosaicStyle::Sealed:
            return "密封马赛克";
        case MosaicStyle::Solid:
            return "{color}遮盖";
        case MosaicStyle::Blur:
            return "模糊（仅装饰）";
        case MosaicStyle::Averaging:
            break;
    }
    return MDrawRect::label();
}

bool MDrawMosiac::isDrawVaild() const {
    const bool isKept = !isNewBuild() && hidesForCertain() && !frame().isEmpty();
    return isKept || MDrawRect::isDrawVaild();
}

gfx::Color MDrawMosiac::solidColor() const {
    return color() && color()->alpha > 0 ? color()->withAlpha(1) : gfx::Color{};
}

void MDrawMosiac::settle() {
    if (!isHiding()) drawUp(endPoint());
}

void MDrawMosiac::drawMosiacContentWithFilledColorInRect(gfx::Context& context,
                                                         const gfx::Paint& fill,
                                                         const gfx::Rect& background) {
    gfx::GraphicsStateGuard guard(context);
    if (!isHiding()) {
        context.setFillColor(*maskColor());
        context.setStrokeColor(*_maskBorderColor);
        context.fillRect(frame().inset(1, 1));
        return;
    }
    if (isTurned()) return coverTurned(context, fill, background);
    const gfx::Rect hidden = frame().intersection(background);
    if (hidden.isEmpty()) return;
    if (!_masciImage) return cover(context, fill, {&hidden, 1});
    context.setAntialias(false);
    context.drawImage(*_masciImage, devicePixels(context, hidden));
}

// A device pixel further on every side, so that none at the rim is left half covered.
void MDrawMosiac::coverTurned(gfx::Context& context, const gfx::Paint& fill,
                              const gfx::Rect& background) const {
    if (background.isEmpty()) return;
    context.setAntialias(false);
    context.clipToRect(devicePixels(context, background));
    if (_masciImage) {
        context.concat(turn());
        return context.drawImage(*_masciImage, frame());
    }
    if (!setFill(context, fill)) return;
    const double scale = std::sqrt(std::abs(context.transform().determinant()));
    const double pixel = scale > 0 ? 1 / (scale * context.deviceScale()) : 0;
    context.beginPath();
    context.addPath(gfx::pathOf(gfx::cornersOf(frame().inset(-pixel, -pixel), turn())));
    context.fill();
}

void MDrawMosiac::cover(gfx::Context& context, const gfx::Paint& fill,
                        std::span<const gfx::Rect> parts) {
    const gfx::GraphicsStateGuard guard(context);
    context.setAntialias(false);
    if (!setFill(context, fill)) return;
    if (parts.size() == 1) return context.fillRect(devicePixels(context, parts.front()));
    context.beginPath();
    for (const gfx::Rect& part : parts)
        context.addRect(devicePixels(context, part));
    context.fill();
}

// ---- turning

gfx::AffineTransform MDrawMosiac::turn() const {
    return gfx::AffineTransform::rotation(rotateAngle(), QVMidPoint(startPoint(), endPoint()));
}

gfx::Polygon MDrawMosiac::area() const {
    return isTurned() ? gfx::cornersOf(frame(), turn()) : gfx::cornersOf(frame());
}

void MDrawMosiac::setRules(const ToolRules& rules) {
    MDrawRect::setRules(rules);
    _isTurnable = _isTurnable || rules.forgiving;
}

ToolDetails MDrawMosiac::keptDetails() const {
    ToolDetails kept = MDrawRect::keptDetails();
    if (isTurned()) kept.push_back({turnedName, 1.0});
    return kept;
}

bool MDrawMosiac::takeDetail(std::string_view name, const ToolDetailValue& value) {
    const auto* const turned = std::get_if<double>(&value);
    if (name != turnedName || !turned) return MDrawRect::takeDetail(name, value);
    _isTurnable = *turned != 0;
    return true;
}

// ---- under fingers

bool MDrawMosiac::hitTest(gfx::Point p) {
    return rules().forgiving && frame().inset(-hitMargin, -hitMargin).contains(invertPoint(p));
}

bool MDrawMosiac::hitOnHandle(gfx::Point p) {
    return rules().forgiving && MDrawRect::hitOnHandle(p);
}

bool MDrawMosiac::testHitOnHandle(gfx::Point p) {
    return rules().forgiving && MDrawRect::testHitOnHandle(p);
}

void MDrawMosiac::drawSlectedStateContent(gfx::Context& context) {
    if (rules().forgiving) MDrawRect::drawSlectedStateContent(context);
}

void MDrawMosiac::setColor(gfx::ColorRef color) {
    if (keepsItsLook()) return;
    MDrawRect::setColor(std::move(color));
    setMaskColor(gfx::makeColor(0, 0, 0, 0.3));
    _maskBorderColor = gfx::makeColor(0, 1, 1);
}

void MDrawMosiac::setLineWidth(double width) {
    if (!keepsItsLook()) MDrawRect::setLineWidth(width);
}

}  // namespace kalim
