#include "kalimkit/shapes/MDrawMosiac.h"

#include <utility>
#include <variant>

#include "kalimkit/gfx/Context.h"
#include "kalimkit/shapes/WholePixels.h"

namespace kalim {

namespace {

constexpr double hitMargin = 5;

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
            return "{}遮盖";
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
    const gfx::Rect hidden = frame().intersection(background);
    if (hidden.isEmpty()) return;
    if (!_masciImage) return cover(context, fill, hidden);
    context.setAntialias(false);
    context.drawImage(*_masciImage, devicePixels(context, hidden));
}

void MDrawMosiac::cover(gfx::Context& context, const gfx::Paint& fill, const gfx::Rect& part) {
    const gfx::GraphicsStateGuard guard(context);
    context.setAntialias(false);
    if (setFill(context, fill)) context.fillRect(devicePixels(context, part));
}

bool MDrawMosiac::hitTest(gfx::Point p) {
    return rules().forgiving && frame().inset(-hitMargin, -hitMargin).contains(p);
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
