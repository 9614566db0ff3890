#include "kalimkit/tool/MDrawTool.h"
#include "kalimkit/tool/QVGeometry.h"

namespace kalim {

namespace {

constexpr gfx::Color handleColor{36 / 255.0, 169 / 255.0, 233 / 255.0, 1};
constexpr gfx::Color white{1, 1, 1, 1};
constexpr gfx::Color clear{0, 0, 0, 0};
constexpr double selectionLineWidth = 2.0;

}  // namespace

void MDrawTool::draw(gfx::Context& context) {
    drawParts(context, true);
}

void MDrawTool::drawSelection(gfx::Context& context) {
    if (_selected) drawParts(context, false);
}

void MDrawTool::drawParts(gfx::Context& context, bool hasContent) {
    if (!isDrawVaild()) return;
    gfx::GraphicsStateGuard guard(context);
    const gfx::ColorRef paint = color();
    context.setAntialias(true);
    context.setLineJoin(gfx::LineJoin::Round);
    context.setLineCap(gfx::LineCap::Round);
    context.setStrokeColor(paint ? *paint : clear);
    context.setFillColor(paint ? *paint : clear);
    context.setLineWidth(lineWidth());
    if (isTurnedByContext()) drawRotateCenterPoint(context, QVMidPoint(_startPoint, _endPoint));
    if (hasContent) drawVisibleContent(context);
    if (_selected) drawSelectedState(context);
}

// As one, so that nothing of the tool shows through another part of it. Kinds that blend would find
// nothing to blend with within a group; they see to it themselves.
void MDrawTool::drawVisibleContent(gfx::Context& context) {
    const double opacity = number(opacityProperty.name);
    if (opacity >= 1 || !toolClass().propertyNamed(opacityProperty.name) || toolClass().blends())
        return drawClippedContent(context);
    const gfx::GraphicsStateGuard guard(context);
    context.setAlpha(opacity);
    context.beginTransparencyGroup();
    drawClippedContent(context);
    context.endTransparencyGroup();
}

void MDrawTool::drawClippedContent(gfx::Context& context) {
    if (!_visibleRect) return drawContent(context);
    const gfx::GraphicsStateGuard guard(context);
    // The rectangle lies on the canvas, whichever way the tool is turned.
    if (isTurnedByContext()) context.concat(_mInvertTransform);
    context.clipToRect(*_visibleRect);
    if (isTurnedByContext()) context.concat(_transform);
    drawContent(context);
}

void MDrawTool::drawSelectedState(gfx::Context& context) {
    {
        gfx::GraphicsStateGuard guard(context);
        context.setLineWidth(onCanvas(selectionLineWidth));
        context.setStrokeColor(*_handleFillColor);
        drawSlectedStateContent(context);
    }
    gfx::GraphicsStateGuard guard(context);
    context.setFillColor(*_handleFillColor);
    context.setStrokeColor(white);
    // Nothing can be done to a locked tool by its handles.
    if (!_isMutableTool && !_isLocked) drawContentHandle(context);
}

void MDrawTool::drawHandleAtPoint(gfx::Context& context, gfx::Point handle) const {
    const bool isOfScreen = _viewScale > 0;
    const double side = isOfScreen ? onCanvas(handleSizeOnScreen()) : _handleSize;
    // Whole points, deliberately, where the size is one of the canvas.
    const double half = isOfScreen ? side / 2 : _handleSize / 2;
    const gfx::Rect box(handle.x - half, handle.y - half, side, side);
    context.setFillColor(handleColor);
    context.setLineWidth(isOfScreen ? onCanvas(2) : _handleLineWidthSize);
    context.fillEllipse(box);
    context.strokeEllipse(box);
}

gfx::Polygon MDrawTool::area() const {
    return gfx::cornersOf(frame());
}

void MDrawTool::drawRotateCenterPoint(gfx::Context& context, gfx::Point center) {
    rotateAbout(center);
    context.concat(_transform);
}

void MDrawTool::refreshTransform() {
    if (!isTurnedByContext()) return;
    rotateAbout(QVMidPoint(_startPoint, _endPoint));
}

void MDrawTool::rotateAbout(gfx::Point center) {
    _transform = isTurnedByQuarters()
                     ? gfx::AffineTransform::quarterTurn(-quarterTurns()).about(center)
                     : gfx::AffineTransform::rotation(_rotateAngle, center);
    _mInvertTransform = _transform.inverted();
}

void MDrawTool::drawMeasurement(gfx::Context& context) {
    if (!_showMeasurement || !_finalized || _selected || measureText().empty()) return;
    if (!_measurement) _measurement = makeMeasurement();
    if (!_measurement) return;
    if (!_visibleRect && quarterTurns() == 0) return _measurement->drawContent(context);
    const gfx::GraphicsStateGuard guard(context);
    if (_visibleRect) context.clipToRect(*_visibleRect);
    const auto turn = gfx::AffineTransform::quarterTurn(-quarterTurns());
    if (quarterTurns() != 0) context.concat(turn.about(frame().center()));
    _measurement->drawContent(context);
}

}  // namespace kalim
