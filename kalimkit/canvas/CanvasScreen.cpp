#include "kalimkit/canvas/CanvasScreen.h"

#include <algorithm>
#include <utility>

#include "kalimkit/canvas/CanvasPainter.h"
#include "kalimkit/canvas/CanvasSelection.h"
#include "kalimkit/canvas/CanvasShown.h"
#include "kalimkit/canvas/CanvasTools.h"
#include "kalimkit/canvas/DrawnExtent.h"
#include "kalimkit/canvas/PictureLayout.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/loop/FlagScope.h"
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

CanvasScreen::CanvasScreen(const Canvas& canvas)
    : _canvas(canvas), _drawn({[this](MDrawTool& tool) { return extentOf(tool); }, layerOf}) {}

// ---- what has changed

void CanvasScreen::redisplay() {
    _drawn.markLiveChanged();
    _canvas.view.setNeedsLayout();
}

void CanvasScreen::invalidate() {
    _drawn.forget();
    _tied.markListChanged();
    _layers.invalidateAll();
    _canvas.view.setNeedsLayout();
    _canvas.view.setNeedsDisplay();
}

void CanvasScreen::markListChanged() {
    _drawn.markListChanged();
    _tied.markListChanged();
}

void CanvasScreen::invalidateGround(const gfx::Rect& rect) {
    _layers.invalidate(CanvasLayers::Ground, rect);
    markGround(rect);
}

void CanvasScreen::markGround(const gfx::Rect& rect) {
    mark(rect);
    _tied.markGround(rect);
}

void CanvasScreen::markCreated(const ToolRef& tool) {
    if (std::ranges::find(_created, tool) == _created.end()) _created.push_back(tool);
    markListChanged();
}

void CanvasScreen::mark(const gfx::Rect& canvasRect) {
    if (_canvas.shown.isMoving()) return _canvas.view.setNeedsDisplay();
    _canvas.view.setNeedsDisplay(_layers.shownRect(canvasRect));
}

// A tool may have become invalid only if it is selected or has been reported; the others are not
// looked at, because there may be thousands of them.
void CanvasScreen::sweepChangedTools() {
    ToolList candidates = _drawn.changed();
    if (const auto& group = _canvas.selection.group()) group->addSubToolToArray(candidates);
    for (const ToolRef& tool : candidates) {
        if (tool->isNewBuild() || tool->isDrawVaild() || !_canvas.tools.contains(tool)) continue;
        _canvas.selection.remove(tool);
        _canvas.tools.forget(tool);
    }
}

// The selection where it is on the canvas.
ToolRef CanvasScreen::selection() const {
    const auto& group = _canvas.selection.group();
    if (!group || !_canvas.tools.contains(group->firstSelectedTool())) return nullptr;
    return group;
}

const ToolList& CanvasScreen::createdTools() {
    std::erase_if(_created, [this](const ToolRef& tool) {
        return !tool->isNewBuild() || !_canvas.tools.contains(tool);
    });
    return _created;
}

// What is selected and rests in its layer is drawn there as if it were not selected.
gfx::Rect CanvasScreen::extentOf(MDrawTool& tool) const {
    const bool isResting = std::ranges::find(_resting, &tool, &ToolRef::get) != _resting.end();
    const bool isSelected = isResting && tool.selected();
    if (isSelected) tool.setSelected(false);
    const gfx::Rect extent = drawnExtent(tool, layerScale(_layers));
    if (isSelected) tool.setSelected(true);
    return extent;
}

bool CanvasScreen::hasLivePatch() const {
    const auto& group = _canvas.selection.group();
    return group && _canvas.selection.isLive() &&
           std::ranges::any_of(group->subTools(), [](const ToolRef& tool) {
               return layerOf(*tool) == CanvasLayers::Ground;
           });
}

// While the view moves the layers stay as they are; from cut to cut they show all that is on the
// way.
void CanvasScreen::updateLayersView() {
    const CanvasShown& shown = _canvas.shown;
    const CutGlide* const cut = shown.changingCut();
    // Fingers may have broken the way off.
    const bool showedOverview = std::exchange(_showsOverview, cut != nullptr);
    if (shown.isMoving() && !cut && !showedOverview) return;
    // They hold more than is to be seen from now on.
    if (showedOverview && !cut) invalidate();
    const gfx::AffineTransform& toView = cut ? cut->overview() : shown.zoom.toView();
    // Shadows keep their size on the screen, so that tools reach farther over a smaller canvas.
    if (!rescale(_layers, _canvas.view.bounds().size, toView)) return;
    _drawn.forget();
    _canvas.view.setNeedsDisplay();
}

void CanvasScreen::update() {
    sweepChangedTools();
    updateLayersView();
    updateTied();
    _canvas.selection.readyForScreen();
    noteResting();
    const DrawnTools::Stale stale = _drawn.update(_canvas.tools.list(), selection(), createdTools(),
                                                  _canvas.selection.isLive());
    for (const gfx::Rect& rect : _canvas.painter.hiding().update())
        invalidateGround(
            rect.inset(-_canvas.painter.rimOnScreen(), -_canvas.painter.rimOnScreen()));
    markStale(stale);
    drawOnTop(stale);
    markTied();
}

void CanvasScreen::updateTied() {
    _tied.update(_canvas.tools.list());
    if (_drawsItemsAnew == _tied.blends()) return;
    _drawsItemsAnew = _tied.blends();
    _layers.invalidateAll();
    _canvas.view.setNeedsDisplay();
}

// What shows a place of the ground again looks different where that does, and the shade wherever
// its areas have moved.
void CanvasScreen::markTied() {
    for (const ToolRef& tool : _tied.takeRepeaters()) {
        const gfx::Rect extent = extentOf(*tool);
        _layers.invalidate(CanvasLayers::Items, extent);
        mark(extent);
    }
    for (const gfx::Rect& rect : _tied.takeShadeChanges(_canvas.shown.content))
        mark(rect);
}

// What is let go may have changed with that.
void CanvasScreen::noteResting() {
    const ToolRef group = _canvas.selection.isLive() ? nullptr : selection();
    const ToolList before = std::exchange(_resting, group ? membersOf(group) : ToolList());
    for (const ToolRef& tool : before) {
        if (std::ranges::find(_resting, tool) == _resting.end()) _drawn.markChanged(tool);
    }
}

void CanvasScreen::markStale(const DrawnTools::Stale& stale) {
    const double rim = _canvas.painter.rimOnScreen();
    for (const auto layer : {CanvasLayers::Ground, CanvasLayers::Items}) {
        // Patches also change what is seen beside them.
        const double reach = layer == CanvasLayers::Ground ? rim : 0;
        for (const gfx::Rect& rect : stale.layers[layer]) {
            const gfx::Rect seen = rect.inset(-reach, -reach);
            _layers.invalidate(layer, seen);
            layer == CanvasLayers::Ground ? markGround(seen) : mark(seen);
        }
    }
    const bool isLive = hasLivePatch();
    const double liveReach = std::exchange(_hasLivePatch, isLive) || isLive ? rim : 0;
    for (const gfx::Rect& rect : stale.live) {
        const gfx::Rect seen = rect.inset(-liveReach, -liveReach);
        liveReach > 0 || isLive ? markGround(seen) : mark(seen);
    }
}

void CanvasScreen::drawOnTop(const DrawnTools::Stale& stale) {
    if (!stale.onTop) return;
    mark(stale.onTopExtent);
    if (_layers.isStale(CanvasLayers::Items) || !keepsItems()) {
        _layers.invalidate(CanvasLayers::Items, stale.onTopExtent);
    } else {
        _layers.drawOver(CanvasLayers::Items, [&](gfx::Context& context, const gfx::Rect&) {
            drawUnselected(context, *stale.onTop);
            _count.addAhead();
        });
    }
}

// ---- drawing what has changed

// What they keep is of the picture as it is.
bool CanvasScreen::refreshLayers() {
    if (_canvas.painter.hiding().isBurning()) return false;
    gfx::Device& device = ui::Environment::current().device();
    const auto ground = [this](gfx::Context& context, const gfx::Rect& rect) {
        paintGround(context, rect);
    };
    const auto items = [this](gfx::Context& context, const gfx::Rect& rect) {
        paintItems(context, rect);
    };
    return _layers.refresh(CanvasLayers::Ground, device, ground) &&
           (!keepsItems() || _layers.refresh(CanvasLayers::Items, device, items));
}

void CanvasScreen::draw(gfx::Context& context) {
    const ui::Window* window = _canvas.view.window();
    _count.begin(window ? window->frames() : 0);
    context.setInterpolation(gfx::Interpolation::High);
    const bool hasLayers = refreshLayers();
    const CutGlide* const cut = _canvas.shown.changingCut();
    if (!cut) return drawView(context, hasLayers);
    // As one, so that where the edge cuts a pixel nothing is seen through what covers it.
    const gfx::AffineTransform shown = _canvas.shown.transform();
    const gfx::GraphicsStateGuard guard(context);
    context.concat(shown);
    context.clipToRect(cut->shown());
    context.concat(shown.inverted());
    context.beginTransparencyGroup();
    drawView(context, hasLayers);
    context.endTransparencyGroup();
}

void CanvasScreen::drawAgain(gfx::Context& context) {
    context.setInterpolation(gfx::Interpolation::High);
    drawView(context, refreshLayers());
}

void CanvasScreen::drawView(gfx::Context& context, bool hasLayers) {
    const gfx::AffineTransform shown = _canvas.shown.transform();
    const gfx::AffineTransform further = _layers.toView().inverted().concat(shown);
    const auto inCanvas = [&](auto draw) {
        const gfx::GraphicsStateGuard guard(context);
        context.concat(shown);
        draw();
    };
    // While the view moves the ground is drawn as it is, so that the photo reaches to the edges;
    // the items are shown from their layer, wherever it is then.
    if (hasLayers && further.isIdentity()) {
        _layers.show(CanvasLayers::Ground, context);
    } else {
        inCanvas([&] { paintGround(context, shown.inverted().apply(_canvas.view.bounds())); });
    }
    inCanvas([&] {
        drawLivePatches(context);
        drawShade(context);
    });
    if (hasLayers && !keepsItems()) {
        inCanvas([&] { paintItems(context, context.clipBounds()); });
    } else if (hasLayers && further.isIdentity()) {
        _layers.show(CanvasLayers::Items, context);
    } else if (hasLayers) {
        inCanvas([&] {
            // The layer's own edge is not on whole pixels any more.
            if (_canvas.shown.isCropped())
                context.clipToRect(*_canvas.painter.pictureEdge(context));
            context.concat(shown.inverted());
            _layers.show(CanvasLayers::Items, context, further);
        });
    } else {
        inCanvas([&] { drawRestingItems(context); });
    }
    inCanvas([&] {
        drawSelection(context, true);
        drawCreatedItems(context);
        drawOverlay(context);
    });
}

void CanvasScreen::paintGround(gfx::Context& context, const gfx::Rect& rect) {
    CanvasPainter& painter = _canvas.painter;
    const gfx::GraphicsStateGuard guard(context);
    const CanvasPainter::ShownPicture picture = _canvas.painter.pictureToShow(context);
    if (_canvas.shown.isCropped() && !_canvas.shown.changingCut())
        context.clipToRect(*painter.pictureEdge(context));
    // Edges that lie between pixels would show the fill through as a hairline around the picture.
    const double scale =
        ui::Environment::current().screen().scale * _canvas.shown.zoom.shownScale();
    const double pixel = picture.image ? 1 / scale : 0;
    const CutGlide* const cut = _canvas.shown.changingCut();
    const gfx::Rect ground =
        alongPicture(cut ? cut->whole() : _canvas.shown.content, _canvas.shown.picture.rect(),
                     picture.rect.inset(pixel, pixel));
    painter.fillBackground(context, ground);
    context.setInterpolation(picture.interpolation);
    if (picture.image) context.drawImage(*picture.image, picture.rect);
    context.setInterpolation(gfx::Interpolation::High);
    const double rim = painter.rimOnScreen();
    painter.drawPatches(
        context, painter.drawnPicture(picture, ground),
        [&](const MDrawTool& tool) {
            return _drawn.isDrawnIn(tool, CanvasLayers::Ground, rect.inset(-rim, -rim));
        },
        [this](const MDrawTool& patch) { return isResting(patch); });
}

void CanvasScreen::drawShade(gfx::Context& context) {
    if (!_tied.hasShade()) return;
    const CanvasPainter::ShownPicture picture = _canvas.painter.pictureToShow(context);
    _canvas.painter.drawShade(
        context, alongPicture(_canvas.shown.content, _canvas.shown.picture.rect(), picture.rect));
}

void CanvasScreen::paintItems(gfx::Context& context, const gfx::Rect& rect) {
    for (const ToolRef& tool : _canvas.tools.list()) {
        if (!_drawn.isDrawnIn(*tool, CanvasLayers::Items, rect)) continue;
        drawUnselected(context, *tool);
        _count.add();
    }
}

// Whether a patch lies in the ground.
bool CanvasScreen::isResting(const MDrawTool& patch) const {
    return _drawn.isDrawnIn(patch, CanvasLayers::Ground, gfx::boundsOf(patch.area()));
}

void CanvasScreen::drawTool(gfx::Context& context, MDrawTool& tool) {
    _canvas.painter.drawTool(context, tool);
    _count.add();
}

// Its handles lie over everything.
void CanvasScreen::drawUnselected(gfx::Context& context, MDrawTool& tool) {
    const bool isSelected = tool.selected();
    if (isSelected) tool.setSelected(false);
    _canvas.painter.drawTool(context, tool);
    if (isSelected) tool.setSelected(true);
}

void CanvasScreen::drawRestingItems(gfx::Context& context) {
    for (const ToolRef& tool : _canvas.tools.list()) {
        const bool isLive = _canvas.selection.isLive() && _canvas.selection.contains(tool);
        if (isLive || tool->isNewBuild() || layerOf(*tool) != CanvasLayers::Items) continue;
        drawUnselected(context, *tool);
        _count.add();
    }
}

void CanvasScreen::drawCreatedItems(gfx::Context& context) {
    for (const ToolRef& tool : createdTools()) {
        if (layerOf(*tool) == CanvasLayers::Items) drawTool(context, *tool);
    }
}

// Those that rest in no layer: being created, or selected.
void CanvasScreen::drawLivePatches(gfx::Context& context) {
    if (createdTools().empty() && !_canvas.selection.group()) return;
    const gfx::GraphicsStateGuard guard(context);
    if (const auto edge = _canvas.painter.pictureEdge(context)) context.clipToRect(*edge);
    const CanvasPainter::ShownPicture picture = _canvas.painter.pictureToShow(context);
    _canvas.painter.drawPatches(
        context, _canvas.painter.drawnPicture(picture, picture.rect),
        [isLive = _canvas.selection.isLive()](const MDrawTool& tool) {
            return tool.isNewBuild() || (isLive && tool.selected());
        },
        [this](const MDrawTool& patch) { return isResting(patch); });
}

void CanvasScreen::drawSelection(gfx::Context& context, bool showsHandles) {
    const std::shared_ptr<MDrawMutableSelect> group = _canvas.selection.group();
    if (!group || !_canvas.tools.contains(group->firstSelectedTool())) return;
    _canvas.selection.readyForScreen();
    if (!_canvas.selection.isLive()) {
        if (showsHandles) group->drawHandles(context);
        return;
    }
    if (!showsHandles) group->setSelected(false);
    _canvas.painter.drawTool(context, *group);
    if (!showsHandles) group->setSelected(true);
    _count.add(static_cast<int>(group->subTools().size()));
}

void CanvasScreen::drawExported(gfx::Context& context, const DrawnPicture& picture) {
    const FrameCount drawnOnScreen = _count;
    const ui::FlagScope exported(_canvas.shown.isExported);
    const auto all = [](const MDrawTool&) { return true; };
    context.setInterpolation(gfx::Interpolation::High);
    _canvas.painter.drawPatches(context, picture, all, all);
    // Whatever belongs to the surface beyond the content as it was measured last is shaded, too.
    constexpr double farther = 1000;
    _canvas.painter.drawShade(context, _canvas.shown.content.inset(-farther, -farther));
    drawRestingItems(context);
    drawSelection(context, false);
    drawCreatedItems(context);
    _count = drawnOnScreen;
}

}  // namespace kalim
