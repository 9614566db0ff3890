#include <cmath>

#include "kalimkit/canvas/view/MDrawView.h"
#include "kalimkit/canvas/view/PictureLayout.h"
#include "kalimkit/ui/loop/Environment.h"

namespace kalim {

namespace {

// Whole device pixels from the same corner on, so that no pixel at the far edges is left half
// covered.
gfx::Rect grownToPixels(const gfx::Rect& rect, double scale) {
    constexpr double tolerance = 1e-6;
    return {rect.origin,
            {std::ceil(rect.size.width * scale - tolerance) / scale,
             std::ceil(rect.size.height * scale - tolerance) / scale}};
}

}  // namespace

// ---- zoom

bool MDrawView::isScreenShot() const {
    return _bgImg && fillsView(_bgImg->size(), bounds().size);
}

double MDrawView::getScale() const {
    const double scale = _contextScale * _tmpContextScale;
    if (std::abs(1 - scale) >= 0.0001) return scale;
    if (_fScal > 0.01F) return _fScal;
    return isScreenShot() ? 0.86 : scale;
}

void MDrawView::setFScal(float scale) {
    if (!std::isfinite(scale)) return;
    _fScal = scale;
    processViewTransform();
    setNeedsDisplay();
}

void MDrawView::processViewTransform() {
    _mViewTransform = canvasToView(bounds().center(), _viewMove, getScale(), _curRotateDegree);
    _mViewInvertTransform = _mViewTransform.inverted();
}

gfx::Point MDrawView::invertViewPoint(gfx::Point p) const {
    return _mViewInvertTransform.apply(p);
}

// ---- on screen

void MDrawView::drawRect(gfx::Context& context, const gfx::Rect&) {
    context.setInterpolation(gfx::Interpolation::High);
    processViewTransform();
    gfx::GraphicsStateGuard guard(context);
    context.concat(_mViewTransform);
    const gfx::Rect picture = shownPictureRect(context);
    drawCanvas(context, alongPicture(_ctxRect, _bgImgRect, picture));
    drawSnipImage(context, picture);
    _drawnTools = drawAllItems(context, SelectedItems | DrawingItems | NormalItems);
}

void MDrawView::drawCanvas(gfx::Context& context, const gfx::Rect& rect) const {
    if (rect.isEmpty()) return;
    gfx::GraphicsStateGuard guard(context);
    context.setFillColor(*_defualtBackgroundColor);
    context.fillRect(rect);
}

gfx::Rect MDrawView::shownPictureRect(const gfx::Context& context) const {
    if (!_bgImg) return _bgImgRect;
    return pixelAlignedRect(_bgImgRect, context.transform(),
                            ui::Environment::current().screen().scale, _bgImg->pixelSize());
}

void MDrawView::drawSnipImage(gfx::Context& context, const gfx::Rect& rect) const {
    if (_bgImg) context.drawImage(*_bgImg, rect);
}

// Finished tools in list order, the selection above them, the tool under the finger on top.
int MDrawView::drawAllItems(gfx::Context& context, unsigned kinds) {
    int drawn = 0;
    const auto drawTool = [&](MDrawTool& tool) {
        tool.draw(context);
        tool.drawMeasurement(context);
        ++drawn;
    };
    removeInvaildTools();
    if (kinds & NormalItems) {
        for (const ToolRef& tool : *_tools) {
            const bool isSelected = _handingTools && _handingTools->containTool(tool);
            if (!isSelected && !tool->isNewBuild()) drawTool(*tool);
        }
    }
    if (kinds & SelectedItems) drawn += drawAllSelectedItemsNeedSelectedSate(context, true);
    if (kinds & DrawingItems) {
        for (const ToolRef& tool : *_tools) {
            if (tool->isNewBuild()) drawTool(*tool);
        }
    }
    return drawn;
}

int MDrawView::drawAllSelectedItemsNeedSelectedSate(gfx::Context& context, bool needSelectedState) {
    const std::shared_ptr<MDrawMutableSelect> selection = _handingTools;
    if (!selection || !isOnCanvas(selection->firstSelectedTool())) return 0;
    selection->setHandleViewScale(_contextScale);
    if (!needSelectedState) selection->setSelected(false);
    selection->draw(context);
    selection->drawMeasurement(context);
    if (!needSelectedState) selection->setSelected(true);
    return static_cast<int>(selection->subTools().size());
}

// ---- export

gfx::ImageRef MDrawView::exportImage() {
    const auto alive = self();
    selectNone();
    removeInvaildTools();
    ui::Environment& environment = ui::Environment::current();
    const double scale = environment.screen().scale;
    // Letting go of the selection may have changed its geometry, so that ctxRect() is not asked.
    const gfx::Rect whole = grownToPixels(contentRect(), scale);
    const auto surface = environment.device().makeSurface(whole.size, scale, true);
    if (!surface) return nullptr;
    gfx::Context& context = surface->context();
    context.setInterpolation(gfx::Interpolation::High);
    context.translate(-whole.minX(), -whole.minY());
    drawCanvas(context, whole);
    drawSnipImage(context, shownPictureRect(context));
    drawAllItems(context, DrawingItems | NormalItems);
    drawAllSelectedItemsNeedSelectedSate(context, false);
    _isDirty = false;
    return surface->makeImage();
}

}  // namespace kalim
