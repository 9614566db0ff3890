#include <cmath>

#include "kalimkit/canvas/view/MDrawView.h"
#include "kalimkit/canvas/view/PictureLayout.h"
#include "kalimkit/canvas/view/ToolClasses.h"
#include "kalimkit/imageedit/image/GaussianBlur.h"
#include "kalimkit/imageedit/image/MDrawImageUtil.h"
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

// ---- on screen

void MDrawView::drawRect(gfx::Context& context, const gfx::Rect&) {
    const auto alive = self();
    // A new scale of the screen comes without a layout.
    if (fitIntoView()) updateLayers();
    countFrame();
    context.setInterpolation(gfx::Interpolation::High);
    const bool hasLayers = refreshLayers();
    const gfx::AffineTransform shown = shownTransform();
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
        inCanvas([&] { paintGround(context, shown.inverted().apply(bounds())); });
    }
    inCanvas([&] { drawCreatedMosaics(context); });
    if (hasLayers) {
        _layers.show(CanvasLayers::Items, context, further);
    } else {
        inCanvas([&] { drawNormalItems(context); });
    }
    inCanvas([&] {
        drawAllSelectedItemsNeedSelectedSate(context, true);
        drawCreatedItems(context);
    });
}

void MDrawView::drawTool(gfx::Context& context, MDrawTool& tool) {
    tool.draw(context);
    tool.drawMeasurement(context);
    ++_drawnTools;
}

void MDrawView::drawCanvas(gfx::Context& context, const gfx::Rect& rect) const {
    if (rect.isEmpty()) return;
    gfx::GraphicsStateGuard guard(context);
    context.setFillColor(*_defualtBackgroundColor);
    context.fillRect(rect);
}

gfx::Rect MDrawView::shownPictureRect(const gfx::Context& context,
                                      const gfx::ImageRef& picture) const {
    if (!picture) return bgImgRect();
    return pixelAlignedRect(bgImgRect(), context.transform(),
                            ui::Environment::current().screen().scale, picture->pixelSize());
}

void MDrawView::drawSnipImage(gfx::Context& context, const gfx::ImageRef& picture,
                              const gfx::Rect& rect) {
    if (picture) context.drawImage(*picture, rect);
}

void MDrawView::drawNormalItems(gfx::Context& context) {
    for (const ToolRef& tool : *_tools) {
        const bool isSelected = _handingTools && _handingTools->containTool(tool);
        if (!isSelected && !tool->isNewBuild() && !isMosaic(*tool)) drawTool(context, *tool);
    }
}

void MDrawView::drawCreatedItems(gfx::Context& context) {
    for (const ToolRef& tool : createdTools()) {
        if (!isMosaic(*tool)) drawTool(context, *tool);
    }
}

void MDrawView::drawCreatedMosaics(gfx::Context& context) {
    if (createdTools().empty()) return;
    drawMosiacTools(context, shownPictureRect(context, _picture.shown()),
                    [](const MDrawTool& tool) { return tool.isNewBuild(); });
}

void MDrawView::drawAllSelectedItemsNeedSelectedSate(gfx::Context& context,
                                                     bool needSelectedState) {
    const std::shared_ptr<MDrawMutableSelect> selection = _handingTools;
    if (!selection || !isOnCanvas(selection->firstSelectedTool())) return;
    selection->setHandleViewScale(_contextScale * _picture.fittingScale());
    if (!needSelectedState) selection->setSelected(false);
    selection->draw(context);
    selection->drawMeasurement(context);
    if (!needSelectedState) selection->setSelected(true);
    _drawnTools += static_cast<int>(selection->subTools().size());
}

// ---- export

// What lies over the picture, which has been drawn over the rectangle.
void MDrawView::drawExportedTools(gfx::Context& context, const gfx::Rect& picture) {
    const int drawnOnScreen = _drawnTools;
    context.setInterpolation(gfx::Interpolation::High);
    drawMosiacTools(context, picture, [](const MDrawTool&) { return true; });
    drawNormalItems(context);
    drawAllSelectedItemsNeedSelectedSate(context, false);
    drawCreatedItems(context);
    _drawnTools = drawnOnScreen;
}

// A text that is being typed belongs to the picture, too.
void MDrawView::settleForExport() {
    fitIntoView();
    finishEditText();
    selectNone();
    removeInvaildTools();
}

gfx::ImageRef MDrawView::exportImage() {
    const auto alive = self();
    settleForExport();
    ui::Environment& environment = ui::Environment::current();
    const double scale = environment.screen().scale;
    // Letting go of the selection may have changed its geometry, so that ctxRect() is not asked.
    const gfx::Rect whole = grownToPixels(contentRect(), scale);
    const auto surface = environment.device().makeSurface(whole.size, scale, true);
    if (!surface) return nullptr;
    gfx::Context& context = surface->context();
    context.setInterpolation(gfx::Interpolation::High);
    context.translate(-whole.minX(), -whole.minY());
    const gfx::Rect picture = shownPictureRect(context, bgImg());
    drawCanvas(context, whole);
    drawSnipImage(context, bgImg(), picture);
    drawExportedTools(context, picture);
    _isDirty = false;
    return surface->makeImage();
}

gfx::ImageRef MDrawView::exportImageAtPictureScale() {
    const auto alive = self();
    settleForExport();
    if (!_picture.source() || bgImgRect().isEmpty()) return exportImage();
    const gfx::PixelSize pixels = _picture.source()->pixelSize();
    const gfx::AffineTransform toPixels =
        gfx::AffineTransform::scaling(pixels.width / bgImgRect().size.width,
                                      pixels.height / bgImgRect().size.height)
            .translated(-bgImgRect().minX(), -bgImgRect().minY());
    const gfx::Rect picture(0, 0, pixels.width, pixels.height);
    constexpr double tolerance = 1e-6;
    const gfx::Rect whole =
        toPixels.apply(contentRect()).inset(tolerance, tolerance).roundedOut().unionWith(picture);
    const auto surface = ui::Environment::current().device().makeSurface(whole.size, 1, true);
    if (!surface) return nullptr;
    gfx::Context& context = surface->context();
    context.translate(-whole.minX(), -whole.minY());
    drawCanvas(context, whole);
    // Pixel for pixel.
    context.setInterpolation(gfx::Interpolation::None);
    context.drawImage(*_picture.source(), picture);
    context.concat(toPixels);
    drawExportedTools(context, bgImgRect());
    _isDirty = false;
    return surface->makeImage();
}

gfx::ImageRef MDrawView::exportImageForScale() {
    const auto alive = self();
    ui::Environment& environment = ui::Environment::current();
    const auto surface =
        environment.device().makeSurface(bounds().size, environment.screen().scale, false);
    if (!surface) return nullptr;
    renderIn(surface->context());
    return surface->makeImage();
}

gfx::ImageRef MDrawView::filterImg(const gfx::ImageRef& image) const {
    constexpr double inputRadius = 100;
    if (!image) return nullptr;
    const gfx::ImageRef upright = MDrawImageUtil::fixOrientation(image);
    return ui::Environment::current().device().makeImage(
        gaussianBlurred(*upright->pixels(), inputRadius), upright->scale(),
        gfx::ImageOrientation::Up);
}

}  // namespace kalim
