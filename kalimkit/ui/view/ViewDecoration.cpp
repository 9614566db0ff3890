#include "kalimkit/ui/view/ViewDecoration.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "kalimkit/ui/view/View.h"
#include "kalimkit/ui/view/ViewMotion.h"

namespace kalim::ui {

ViewDecoration& View::decoration() {
    if (!_decoration) _decoration = std::make_unique<ViewDecoration>();
    return *_decoration;
}

double View::cornerRadius() const {
    return _decoration ? _decoration->cornerRadius : 0;
}

void View::setCornerRadius(double radius) {
    const double next = std::max(radius, 0.0);
    if (!std::isfinite(radius) || next == cornerRadius()) return;
    decoration().cornerRadius = next;
    damageExtent();
}

std::optional<gfx::Shadow> View::shadow() const {
    return _decoration ? _decoration->shadow : std::nullopt;
}

void View::setShadow(const std::optional<gfx::Shadow>& shadow) {
    if (shadow == this->shadow()) return;
    if (shadow && !(std::isfinite(shadow->offset.x) && std::isfinite(shadow->offset.y) &&
                    std::isfinite(shadow->blur))) {
        return;
    }
    change([&] { decoration().shadow = shadow; });
}

std::shared_ptr<ShapeLayer> View::mask() const {
    return _decoration ? _decoration->mask : nullptr;
}

void View::setMask(std::shared_ptr<ShapeLayer> mask) {
    if (mask == this->mask()) return;
    if (mask) adopt(*mask);
    if (const auto before = std::exchange(decoration().mask, std::move(mask))) {
        before->leaveScreen();
        before->setOwner(nullptr);
    }
    damageExtent();
    animationsChanged();
}

void View::addShapeLayer(std::shared_ptr<ShapeLayer> layer) {
    if (!layer) return;
    adopt(*layer);
    decoration().layers.push_back(std::move(layer));
    decoration().layers.back()->damage();
    animationsChanged();
}

void View::removeShapeLayer(const ShapeLayer& layer) {
    if (!_decoration) return;
    auto& layers = _decoration->layers;
    const auto found =
        std::ranges::find(layers, &layer, [](const auto& known) { return known.get(); });
    if (found == layers.end()) return;
    const auto removed = *found;
    removed->damage();
    layers.erase(found);
    forgetExtent();
    removed->leaveScreen();
    removed->setOwner(nullptr);
}

const std::vector<std::shared_ptr<ShapeLayer>>& View::shapeLayers() const {
    static const std::vector<std::shared_ptr<ShapeLayer>> none;
    return _decoration ? _decoration->layers : none;
}

// Takes the layer out of the view that it was in.
void View::adopt(ShapeLayer& layer) {
    if (LayerOwner* const before = layer.owner()) before->releaseLayer(layer);
    layer.setOwner(this);
}

void View::releaseLayer(ShapeLayer& layer) {
    removeShapeLayer(layer);
    if (mask().get() == &layer) setMask(nullptr);
}

// A mask cuts the whole view, so all of that changes with it.
void View::layerDamaged(const ShapeLayer& layer) {
    if (mask().get() == &layer) return damageExtent();
    forgetExtent();
    damage(layer.extent());
}

// The view owns its shape layers and its mask.
std::vector<std::shared_ptr<ShapeLayer>> View::ownedLayers() const {
    if (!_decoration) return {};
    std::vector<std::shared_ptr<ShapeLayer>> layers = _decoration->layers;
    if (_decoration->mask) layers.push_back(_decoration->mask);
    return layers;
}

}  // namespace kalim::ui
