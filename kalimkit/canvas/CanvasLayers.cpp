#include "kalimkit/canvas/CanvasLayers.h"

#include <utility>

#include "kalimkit/gfx/Context.h"

namespace kalim {

void CanvasLayers::setView(gfx::Size size, double scale, const gfx::AffineTransform& toView) {
    if (size == _size && scale == _scale && toView == _toView) return;
    if (size != _size || scale != _scale) release();
    _size = size;
    _scale = scale;
    _toView = toView;
    invalidateAll();
}

void CanvasLayers::invalidateAll() {
    for (Kept& layer : _layers)
        layer.stale.add(bounds());
}

void CanvasLayers::invalidate(Layer layer, const gfx::Rect& rect) {
    _layers[layer].stale.add(shownRect(rect).intersection(bounds()));
}

bool CanvasLayers::refresh(Layer kind, gfx::Device& device, const Painter& paint) {
    Kept& layer = _layers[kind];
    if (!layer.surface) {
        layer.surface = device.makeSurface(_size, _scale, false);
        if (!layer.surface) return false;
        layer.stale.add(bounds());
    }
    const ui::Damage stale = std::exchange(layer.stale, {});
    for (const gfx::Rect& rect : stale.rects())
        repaint(layer, rect, paint);
    return true;
}

void CanvasLayers::repaint(Kept& layer, const gfx::Rect& rect, const Painter& paint) const {
    gfx::Context& context = layer.surface->context();
    const gfx::GraphicsStateGuard guard(context);
    context.clipToRect(rect);
    context.setBlendMode(gfx::BlendMode::Clear);
    context.fillRect(rect);
    context.setBlendMode(gfx::BlendMode::Normal);
    context.concat(_toView);
    paint(context, _toView.inverted().apply(rect));
}

void CanvasLayers::drawOver(Layer kind, const Painter& paint) {
    const Kept& layer = _layers[kind];
    if (!layer.surface) return;
    gfx::Context& context = layer.surface->context();
    const gfx::GraphicsStateGuard guard(context);
    context.concat(_toView);
    paint(context, _toView.inverted().apply(bounds()));
}

void CanvasLayers::show(Layer layer, gfx::Context& context,
                        const gfx::AffineTransform& further) const {
    const std::shared_ptr<gfx::Surface>& surface = _layers[layer].surface;
    if (!surface) return;
    const gfx::GraphicsStateGuard guard(context);
    context.concat(further);
    // Pixel for pixel where nothing moves them; whole pixels may reach beyond the view's size.
    context.setInterpolation(further.isIdentity() ? gfx::Interpolation::None
                                                  : gfx::Interpolation::Low);
    const gfx::PixelSize pixels = surface->pixelSize();
    context.drawSurface(*surface, {0, 0, pixels.width / _scale, pixels.height / _scale});
}

void CanvasLayers::release() {
    // Not anew: that asks for memory, which may be why it is given back.
    for (Kept& layer : _layers) {
        layer.surface.reset();
        layer.stale.clear();
    }
    invalidateAll();
}

gfx::Rect CanvasLayers::shownRect(const gfx::Rect& canvasRect) const {
    if (canvasRect.isEmpty()) return {};
    const double pixel = 1 / _scale;
    return _toView.apply(canvasRect).inset(-pixel, -pixel).roundedOut(_scale);
}

}  // namespace kalim
