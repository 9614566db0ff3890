#include <algorithm>
#include <utility>

#include "kalimkit/canvas/DrawnExtent.h"
#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/window/Window.h"

namespace kalim {

namespace {

CanvasLayers::Layer layerOf(const MDrawTool& tool) {
    return tool.toolClass().layer() == ToolLayer::Ground ? CanvasLayers::Ground
                                                         : CanvasLayers::Items;
}

// View points per canvas point; 1 while nothing can be seen.
double layerScale(const CanvasLayers& layers) {
    const double scale = layers.toView().largestStretch();
    return scale > 0 ? scale : 1;
}

// Whether the layers show the canvas at another scale than before.
bool rescale(CanvasLayers& layers, gfx::Size size, const gfx::AffineTransform& toView) {
    const double before = layerScale(layers);
    layers.setView(size, ui::Environment::current().screen().scale, toView);
    return layerScale(layers) != before;
}

}  // namespace

MDrawView::MDrawView()
    : _drawn(
          {[this](MDrawTool& tool) { return drawnExtent(tool, layerScale(_layers)); }, layerOf}) {}

MDrawView::~MDrawView() = default;

// ---- what has changed

// The selection and what is being created may look different.
void MDrawView::redisplay() {
    _drawn.markLiveChanged();
    setNeedsLayout();
}

void MDrawView::invalidateLayers() {
    _drawn.forget();
    _layers.invalidateAll();
    setNeedsLayout();
    setNeedsDisplay();
}

void MDrawView::didMoveToWindow() {
    if (window()) return;
    _layers.release();
    _picture.releaseCopies();
}

void MDrawView::mark(const gfx::Rect& canvasRect) {
    if (isViewMoving()) return setNeedsDisplay();
    setNeedsDisplay(_layers.shownRect(canvasRect));
}

// A tool may have become invalid only if it is selected or has been reported; the others are not
// looked at, because there may be thousands of them.
void MDrawView::sweepChangedTools() {
    ToolList candidates = _drawn.changed();
    if (_handingTools) _handingTools->addSubToolToArray(candidates);
    for (const ToolRef& tool : candidates) {
        if (tool->isNewBuild() || tool->isDrawVaild() || !isOnCanvas(tool)) continue;
        removeToolFromSelectedTools(tool);
        _undoManager->removeToolFromAllSystem(tool);
    }
}

ToolRef MDrawView::selectionOnCanvas() const {
    if (!_handingTools || !isOnCanvas(_handingTools->firstSelectedTool())) return nullptr;
    return _handingTools;
}

const ToolList& MDrawView::createdTools() {
    std::erase_if(_createdTools,
                  [this](const ToolRef& tool) { return !tool->isNewBuild() || !isOnCanvas(tool); });
    return _createdTools;
}

// Finds out what has to be drawn again, in the layers and on the screen.
void MDrawView::updateLayers() {
    sweepChangedTools();
    // Shadows keep their size on the screen, so that tools reach farther over a smaller canvas.
    if (!isViewMoving() && rescale(_layers, bounds().size, mViewTransform())) {
        _drawn.forget();
        setNeedsDisplay();
    }
    if (_handingTools) scaleForScreen(*_handingTools);
    const DrawnTools::Stale stale = _drawn.update(*_tools, selectionOnCanvas(), createdTools());
    const double rim = shownRim();
    for (const auto layer : {CanvasLayers::Ground, CanvasLayers::Items}) {
        // Patches also change what is seen beside them.
        const double reach = layer == CanvasLayers::Ground ? rim : 0;
        for (const gfx::Rect& rect : stale.layers[layer]) {
            _layers.invalidate(layer, rect.inset(-reach, -reach));
            mark(rect.inset(-reach, -reach));
        }
    }
    const bool hasLivePatch =
        _handingTools && std::ranges::any_of(_handingTools->subTools(), [](const ToolRef& tool) {
            return layerOf(*tool) == CanvasLayers::Ground;
        });
    const double liveReach = std::exchange(_hasLivePatch, hasLivePatch) || hasLivePatch ? rim : 0;
    for (const gfx::Rect& rect : stale.live)
        mark(rect.inset(-liveReach, -liveReach));
    if (!stale.onTop) return;
    mark(stale.onTopExtent);
    if (_layers.isStale(CanvasLayers::Items)) {
        _layers.invalidate(CanvasLayers::Items, stale.onTopExtent);
    } else {
        _layers.drawOver(CanvasLayers::Items, [&](gfx::Context& context, const gfx::Rect&) {
            drawUncounted(context, *stale.onTop);
            _count.addAhead();
        });
    }
}

// ---- drawing what has changed

bool MDrawView::refreshLayers() {
    gfx::Device& device = ui::Environment::current().device();
    const auto ground = [this](gfx::Context& context, const gfx::Rect& rect) {
        paintGround(context, rect);
    };
    const auto items = [this](gfx::Context& context, const gfx::Rect& rect) {
        paintItems(context, rect);
    };
    return _layers.refresh(CanvasLayers::Ground, device, ground) &&
           _layers.refresh(CanvasLayers::Items, device, items);
}

}  // namespace kalim
