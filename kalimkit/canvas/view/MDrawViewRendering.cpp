#include <algorithm>
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
    _drawnTools = 0;
    context.setInterpolation(gfx::Interpolation::High);
    processViewTransform();
    gfx::GraphicsStateGuard guard(context);
    context.concat(_mViewTransform);
    const gfx::Rect picture = shownPictureRect(context);
    drawCanvas(context, alongPicture(_ctxRect, _bgImgRect, picture));
    drawSnipImage(context, picture);
    drawAllItems(context, SelectedItems | DrawingItems | NormalItems);
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
void MDrawView::drawAllItems(gfx::Context& context, unsigned kinds) {
    removeInvaildTools();
    if (kinds & NormalItems) {
        for (const ToolRef& tool : *_tools) {
            const bool isSelected = _handingTools && _handingTools->containTool(tool);
            if (!isSelected && !tool->isNewBuild()) drawTool(context, *tool);
        }
    }
    if (kinds & SelectedItems) drawAllSelectedItemsNeedSelectedSate(context, true);
    if (kinds & DrawingItems) {
        for (const ToolRef& tool : *_tools) {
            if (tool->isNewBuild()) drawTool(context, *tool);
        }
    }
}

void MDrawView::drawAllSelectedItemsNeedSelectedSate(gfx::Context& context,
                                                     bool needSelectedState) {
    const std::shared_ptr<MDrawMutableSelect> selection = _handingTools;
    if (!selection) return;
    const ToolRef first = selection->firstSelectedTool();
    if (std::ranges::find(*_tools, first) == _tools->end()) return;
    selection->setHandleViewScale(_contextScale);
    if (!needSelectedState) selection->setSelected(false);
    selection->draw(context);
    selection->drawMeasurement(context);
    _drawnTools += static_cast<int>(selection->subTools().size());
    if (!needSelectedState) selection->setSelected(true);
}

void MDrawView::drawTool(gfx::Context& context, MDrawTool& tool) {
    tool.draw(context);
    tool.drawMeasurement(context);
    ++_drawnTools;
}

// ---- export

gfx::ImageRef MDrawView::exportImage() {
    const auto alive = self();
    selectNone();
    removeInvaildTools();
    // Letting go of the selection may have changed its geometry.
    _ctxRect = contentRect();
    ui::Environment& environment = ui::Environment::current();
    const double scale = environment.screen().scale;
    const gfx::Rect whole = grownToPixels(_ctxRect, scale);
    const auto surface = environment.device().makeSurface(whole.size, scale, true);
    if (!surface) return nullptr;
    const int drawnByLastFrame = _drawnTools;
    gfx::Context& context = surface->context();
    context.setInterpolation(gfx::Interpolation::High);
    context.translate(-whole.minX(), -whole.minY());
    drawCanvas(context, whole);
    drawSnipImage(context, shownPictureRect(context));
    drawAllItems(context, DrawingItems | NormalItems);
    drawAllSelectedItemsNeedSelectedSate(context, false);
    _drawnTools = drawnByLastFrame;
    _isDirty = false;
    return surface->makeImage();
}

}  // namespace kalim
