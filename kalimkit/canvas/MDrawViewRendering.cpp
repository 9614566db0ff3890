#include <algorithm>
#include <cmath>

#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/canvas/PictureLayout.h"
#include "kalimkit/image/GaussianBlur.h"
#include "kalimkit/image/MDrawImageUtil.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/window/Window.h"

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

void drawCanvas(gfx::Context& context, const gfx::Color& color, const gfx::Rect& rect) {
    if (rect.isEmpty()) return;
    const gfx::GraphicsStateGuard guard(context);
    context.setFillColor(color);
    context.fillRect(rect);
}

bool isGround(const MDrawTool& tool) {
    return tool.toolClass().layer() == ToolLayer::Ground;
}

void drawSnipImage(gfx::Context& context, const gfx::ImageRef& image, const gfx::Rect& rect) {
    if (image) context.drawImage(*image, rect);
}

// Carries one rectangle onto another; nothing moves where one of them is empty.
gfx::AffineTransform carrying(const gfx::Rect& from, const gfx::Rect& to) {
    if (from == to || from.isEmpty() || to.isEmpty()) return {};
    return gfx::AffineTransform::translation({-from.minX(), -from.minY()})
        .concat(gfx::AffineTransform::scaling(to.size.width / from.size.width,
                                              to.size.height / from.size.height))
        .concat(gfx::AffineTransform::translation({to.minX(), to.minY()}));
}

}  // namespace

// Where a copy of the picture is shown on the canvas.
gfx::Rect MDrawView::shownPicture(const gfx::Context& context, const gfx::ImageRef& image) const {
    if (!image) return bgImgRect();
    return pixelAlignedRect(bgImgRect(), context.transform(),
                            ui::Environment::current().screen().scale, image->pixelSize());
}

// Where what is drawn is to be cut, as the copy that is shown has been aligned; nothing where it is
// not to be.
std::optional<gfx::Rect> MDrawView::pictureEdge(const gfx::Context& context) const {
    if (!cutsAtPicture()) return std::nullopt;
    for (const gfx::ImageRef& image : {_picture.shown(), _picture.lastShown()}) {
        const gfx::Rect shown = shownPicture(context, image);
        if (shown != bgImgRect()) return shown;
    }
    return shownPicture(context, bgImg());
}

// ---- on screen

void MDrawView::drawRect(gfx::Context& context, const gfx::Rect&) {
    const auto alive = self();
    // A new scale of the screen comes without a layout.
    if (fitIntoView()) updateLayers();
    _count.begin(window() ? window()->frames() : 0);
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
    inCanvas([&] { drawLiveMosaics(context); });
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

// A copy that has to be made waits until the view rests, unless it is made in no time. Beyond the
// ordinary zoom pixels that have become large are shown as the squares that they are.
MDrawView::ShownPicture MDrawView::pictureToShow(const gfx::Context& context) {
    constexpr double ordinaryLargestScale = 2;
    constexpr double squareSide = 4;
    using enum PictureReductions::Making;
    const double pixelsPerPoint =
        context.transform().largestStretch() * ui::Environment::current().screen().scale;
    const gfx::ImageRef image = _picture.shownAt(pixelsPerPoint, isViewMoving() ? Cheap : Any);
    const bool isMagnified = image && _zoom.scale() > ordinaryLargestScale &&
                             pixelsPerPoint >= squareSide * _picture.pixelsPerPoint();
    return {image, shownPicture(context, image),
            isMagnified ? gfx::Interpolation::None : gfx::Interpolation::High};
}

void MDrawView::paintGround(gfx::Context& context, const gfx::Rect& rect) {
    const ShownPicture picture = pictureToShow(context);
    // Edges that lie between pixels would show the fill through as a hairline around the picture.
    const double scale = ui::Environment::current().screen().scale * _zoom.shownScale();
    const double pixel = picture.image ? 1 / scale : 0;
    const gfx::Rect ground = alongPicture(_ctxRect, bgImgRect(), picture.rect.inset(pixel, pixel));
    drawCanvas(context, *_defualtBackgroundColor, ground);
    context.setInterpolation(picture.interpolation);
    drawSnipImage(context, picture.image, picture.rect);
    context.setInterpolation(gfx::Interpolation::High);
    const double rim = shownRim();
    drawMosiacTools(context, drawnPicture(picture, ground), [&](const MDrawTool& tool) {
        return _drawn.isDrawnIn(tool, CanvasLayers::Ground, rect.inset(-rim, -rim));
    });
}

void MDrawView::paintItems(gfx::Context& context, const gfx::Rect& rect) {
    for (const ToolRef& tool : *_tools) {
        if (_drawn.isDrawnIn(*tool, CanvasLayers::Items, rect)) drawTool(context, *tool);
    }
}

void MDrawView::drawUncounted(gfx::Context& context, MDrawTool& tool) const {
    tool.setVisibleRect(pictureEdge(context));
    tool.draw(context);
    tool.drawMeasurement(context);
}

void MDrawView::drawTool(gfx::Context& context, MDrawTool& tool) {
    drawUncounted(context, tool);
    _count.add();
}

void MDrawView::drawNormalItems(gfx::Context& context) {
    for (const ToolRef& tool : *_tools) {
        const bool isSelected = _handingTools && _handingTools->containTool(tool);
        if (!isSelected && !tool->isNewBuild() && !isGround(*tool)) drawTool(context, *tool);
    }
}

void MDrawView::drawCreatedItems(gfx::Context& context) {
    for (const ToolRef& tool : createdTools()) {
        if (!isGround(*tool)) drawTool(context, *tool);
    }
}

// Those that rest in no layer: being created, or selected.
void MDrawView::drawLiveMosaics(gfx::Context& context) {
    if (createdTools().empty() && !_handingTools) return;
    const gfx::GraphicsStateGuard guard(context);
    if (const auto edge = pictureEdge(context)) context.clipToRect(*edge);
    const ShownPicture picture = pictureToShow(context);
    drawMosiacTools(context, drawnPicture(picture, picture.rect),
                    [](const MDrawTool& tool) { return tool.isNewBuild() || tool.selected(); });
}

void MDrawView::drawAllSelectedItemsNeedSelectedSate(gfx::Context& context,
                                                     bool needSelectedState) {
    const std::shared_ptr<MDrawMutableSelect> selection = _handingTools;
    if (!selection || !isOnCanvas(selection->firstSelectedTool())) return;
    scaleForScreen(*selection);
    if (!needSelectedState) selection->setSelected(false);
    drawUncounted(context, *selection);
    if (!needSelectedState) selection->setSelected(true);
    _count.add(static_cast<int>(selection->subTools().size()));
}

DrawnPicture MDrawView::drawnPicture(const ShownPicture& picture, const gfx::Rect& ground) const {
    return {_picture.source(),        picture.image,        picture.rect, ground,
            *_defualtBackgroundColor, picture.interpolation};
}

// How far the patches change what is seen of the picture beside them at most, canvas points: no
// copy that is shown is coarser than this one. Where the copy is aligned they are seen a part of a
// pixel from where they are.
double MDrawView::shownRim() const {
    const gfx::ImageRef& shown = _picture.shown();
    if (!shown) return 0;
    const double scale = ui::Environment::current().screen().scale;
    const gfx::Rect aligned =
        pixelAlignedRect(bgImgRect(), mViewTransform(), scale, shown->pixelSize());
    const double pixel = aligned == bgImgRect() ? 0 : 1 / (scale * _zoom.shownScale());
    return std::max(pixel,
                    rimWidth(drawnPicture({shown, bgImgRect()}, {}),
                             mViewTransform().concat(gfx::AffineTransform::scaling(scale, scale))));
}

// Patches go along with the copy that is drawn, which has been aligned: they cover on every screen
// exactly those of the picture's pixels that they hide in the picture itself.
void MDrawView::drawMosiacTools(gfx::Context& context, const DrawnPicture& picture,
                                const std::function<bool(const MDrawTool&)>& isWanted) {
    const gfx::AffineTransform along = carrying(bgImgRect(), picture.rect);
    const auto draw = [&](gfx::Context& target, const auto& isDrawn) {
        for (const ToolRef& tool : *_tools) {
            if (!isGround(*tool) || !isDrawn(*tool)) continue;
            const gfx::GraphicsStateGuard guard(target);
            if (tool->isHiding()) target.concat(along);
            tool->drawOnGround(target, _mosaic.fill(bgImgRect()), bgImgRect());
        }
    };
    // Rims that rest in the ground know nothing of live patches, which have theirs over it and may
    // be dragged away at any time.
    const auto isLaid = [&](const MDrawTool& patch) {
        return patch.isHiding() &&
               (isWanted(patch) || _drawn.isDrawnIn(patch, CanvasLayers::Ground, patch.frame()));
    };
    const double width = rimWidth(picture, toDevicePixels(context));
    for (const ToolRef& tool : *_tools) {
        if (!(width > 0) || !isGround(*tool) || !isWanted(*tool) || !tool->isHiding()) continue;
        drawRim(context, picture, along.apply(tool->frame()), width,
                [&](gfx::Context& pixels) { draw(pixels, isLaid); });
    }
    draw(context, isWanted);
}

// ---- export

// What lies over the picture, which has been drawn over the rectangle.
void MDrawView::drawExportedTools(gfx::Context& context, const DrawnPicture& picture) {
    const FrameCount drawnOnScreen = _count;
    context.setInterpolation(gfx::Interpolation::High);
    drawMosiacTools(context, picture, [](const MDrawTool&) { return true; });
    drawNormalItems(context);
    drawAllSelectedItemsNeedSelectedSate(context, false);
    drawCreatedItems(context);
    _count = drawnOnScreen;
}

// What is being drawn and typed belongs to the picture, too, and nothing leaves as a preview.
void MDrawView::settleForExport() {
    fitIntoView();
    endCreation();
    finishEditText();
    selectNone();
    removeInvaildTools();
}

gfx::ImageRef MDrawView::exportImage() {
    const auto alive = self();
    settleForExport();
    ui::Environment& environment = ui::Environment::current();
    const double scale = environment.screen().scale;
    // Points of the screen for one of the canvas.
    const double points = _picture.hasBasis() ? _picture.fittingScale() : 1;
    // Letting go of the selection may have changed its geometry, so that ctxRect() is not asked.
    const gfx::Rect content = gfx::AffineTransform::scaling(points, points).apply(exportedRect());
    const gfx::Rect whole = grownToPixels(content, scale);
    const auto surface = environment.device().makeSurface(whole.size, scale, true);
    if (!surface) return nullptr;
    gfx::Context& context = surface->context();
    context.setInterpolation(gfx::Interpolation::High);
    context.translate(-whole.minX(), -whole.minY());
    drawCanvas(context, *_defualtBackgroundColor, whole);
    context.scale(points, points);
    const gfx::Rect picture = shownPicture(context, bgImg());
    drawSnipImage(context, bgImg(), picture);
    const gfx::Rect ground = gfx::AffineTransform::scaling(1 / points, 1 / points).apply(whole);
    drawExportedTools(context, drawnPicture({bgImg(), picture}, ground));
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
        toPixels.apply(exportedRect()).inset(tolerance, tolerance).roundedOut().unionWith(picture);
    const auto surface = ui::Environment::current().device().makeSurface(whole.size, 1, false);
    if (!surface) return nullptr;
    gfx::Context& context = surface->context();
    context.translate(-whole.minX(), -whole.minY());
    // Where the picture lets something through it goes on doing so; beside it there is background.
    if (whole != picture) {
        drawCanvas(context, *_defualtBackgroundColor, whole);
        context.setBlendMode(gfx::BlendMode::Clear);
        context.fillRect(picture);
        context.setBlendMode(gfx::BlendMode::Normal);
    }
    // Pixel for pixel.
    context.setInterpolation(gfx::Interpolation::None);
    context.drawImage(*_picture.source(), picture);
    context.concat(toPixels);
    drawExportedTools(context, drawnPicture({_picture.source(), bgImgRect()}, bgImgRect()));
    _isDirty = false;
    return surface->makeImage();
}

gfx::ImageRef MDrawView::exportImageForScale() {
    const auto alive = self();
    endCreation();
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
