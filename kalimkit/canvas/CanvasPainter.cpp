#include "kalimkit/canvas/CanvasPainter.h"

#include <algorithm>
#include <cmath>
#include <functional>

#include "kalimkit/canvas/CanvasContent.h"
#include "kalimkit/canvas/CanvasShown.h"
#include "kalimkit/canvas/PictureLayout.h"
#include "kalimkit/shapes/MDrawMosiac.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

namespace {

bool isGround(const MDrawTool& tool) {
    return tool.toolClass().layer() == ToolLayer::Ground;
}

// Carries one rectangle onto another; nothing moves where one of them is empty.
gfx::AffineTransform carrying(const gfx::Rect& from, const gfx::Rect& to) {
    if (from == to || from.isEmpty() || to.isEmpty()) return {};
    return gfx::AffineTransform::translation({-from.minX(), -from.minY()})
        .concat(gfx::AffineTransform::scaling(to.size.width / from.size.width,
                                              to.size.height / from.size.height))
        .concat(gfx::AffineTransform::translation({to.minX(), to.minY()}));
}

// A path that leaves an area of the rectangle out, whichever way round its corners go.
gfx::Path without(gfx::Polygon area, const gfx::Rect& rect) {
    if (gfx::windingOf(area) > 0) std::ranges::reverse(area);
    gfx::Path path;
    path.addRect(rect);
    path.addPath(gfx::pathOf(area));
    return path;
}

}  // namespace

CanvasPainter::CanvasPainter(const Canvas& canvas)
    : _canvas(canvas),
      _hiding({canvas.tools, canvas.shown}),
      _background(gfx::makeColor(1, 1, 1)) {}

void CanvasPainter::fillBackground(gfx::Context& context, const gfx::Rect& rect) const {
    if (rect.isEmpty()) return;
    const gfx::GraphicsStateGuard guard(context);
    context.setFillColor(*_background);
    context.fillRect(rect);
}

void CanvasPainter::takeMosaic() {
    _mosaic.take(_canvas.shown.picture);
}

// ---- the picture

// A copy that has to be made waits until the view rests, unless it is made in no time. Beyond the
// ordinary zoom pixels that have become large are shown as the squares that they are.
CanvasPainter::ShownPicture CanvasPainter::pictureToShow(const gfx::Context& context) {
    constexpr double ordinaryLargestScale = 2;
    constexpr double squareSide = 4;
    using enum PictureReductions::Making;
    CanvasPicture& picture = _canvas.shown.picture;
    const double pixelsPerPoint =
        context.transform().largestStretch() * ui::Environment::current().screen().scale;
    const gfx::ImageRef image =
        picture.shownAt(pixelsPerPoint, _canvas.shown.isMoving() ? Cheap : Any);
    const bool isMagnified = image && _canvas.shown.zoom.scale() > ordinaryLargestScale &&
                             pixelsPerPoint >= squareSide * picture.pixelsPerPoint();
    return {image, placeOf(image, context),
            isMagnified ? gfx::Interpolation::None : gfx::Interpolation::High};
}

gfx::Rect CanvasPainter::placeOf(const gfx::ImageRef& image, const gfx::Context& context) const {
    const gfx::Rect& rect = _canvas.shown.picture.rect();
    if (!image) return rect;
    return pixelAlignedRect(rect, context.transform(), ui::Environment::current().screen().scale,
                            image->pixelSize());
}

DrawnPicture CanvasPainter::drawnPicture(const ShownPicture& picture,
                                         const gfx::Rect& ground) const {
    return {_canvas.shown.picture.source(), picture.image, picture.rect, ground, *_background,
            picture.interpolation};
}

std::optional<gfx::Rect> CanvasPainter::pictureEdge(const gfx::Context& context) const {
    const CutGlide* const cut = _canvas.shown.changingCut();
    if (cut && !_canvas.shown.showsUncropped) return cut->whole();
    // Whatever copy is shown, it goes on beyond the part, or ends there less than a pixel away. A
    // pixel that is cut would let through what a patch covers.
    if (_canvas.shown.isCropped())
        return pixelsInside(_canvas.shown.picture.part(), toDevicePixels(context));
    if (!_canvas.content.endsAtPicture()) return std::nullopt;
    return shownPlace(context);
}

// As the copy that is shown has been aligned.
gfx::Rect CanvasPainter::shownPlace(const gfx::Context& context) const {
    const CanvasPicture& picture = _canvas.shown.picture;
    for (const gfx::ImageRef& image : {picture.shown(), picture.lastShown()}) {
        const gfx::Rect shown = placeOf(image, context);
        if (shown != picture.rect()) return shown;
    }
    return placeOf(picture.fitted(), context);
}

// No copy that is shown is coarser than this one. Where the copy is aligned patches are seen a part
// of a pixel from where they are.
double CanvasPainter::rimOnScreen() const {
    const CanvasPicture& picture = _canvas.shown.picture;
    const gfx::ImageRef& shown = picture.shown();
    if (!shown) return 0;
    const gfx::AffineTransform& toView = _canvas.shown.zoom.toView();
    const double scale = ui::Environment::current().screen().scale;
    const gfx::Rect aligned = pixelAlignedRect(picture.rect(), toView, scale, shown->pixelSize());
    const double pixel =
        aligned == picture.rect() ? 0 : 1 / (scale * _canvas.shown.zoom.shownScale());
    const double rim =
        std::max(pixel, rimWidth(drawnPicture({shown, picture.rect()}, {}),
                                 toView.concat(gfx::AffineTransform::scaling(scale, scale))));
    return rim + _hiding.reach();
}

// ---- tools

void CanvasPainter::drawTool(gfx::Context& context, MDrawTool& tool) {
    const gfx::AffineTransform& toView = context.transform();
    Ground ground(*this);
    tool.setGround(&ground);
    tool.setVisibleRect(pictureEdge(context));
    // Shadows turn with the picture, as in what is exported.
    const gfx::GraphicsStateGuard guard(context);
    if (const double scale = std::hypot(toView.a, toView.b); toView.b != 0 && scale > 0) {
        context.setShadowTurn(
            {toView.a / scale, toView.b / scale, -toView.b / scale, toView.a / scale, 0, 0});
    }
    tool.draw(context);
    tool.drawMeasurement(context);
    tool.setGround(nullptr);
}

// Each area is taken out of what may be shaded, so that those that overlap leave no seam. One of
// them is taken out of what is filled, a slanting one if there is any: a rectangle's edges would be
// smoothed otherwise than they are beside such an area wherever that is not drawn again with them.
void CanvasPainter::drawShade(gfx::Context& context, const gfx::Rect& rect) const {
    double dark = 0;
    std::vector<gfx::Polygon> areas;
    for (const ToolRef& tool : _canvas.tools) {
        if (tool->toolClass().layer() != ToolLayer::Shade || !tool->isDrawVaild()) continue;
        dark = std::max(dark, tool->shade());
        areas.push_back(tool->area());
    }
    if (!(dark > 0)) return;
    std::ranges::partition(areas, std::not_fn(gfx::isUpright));
    const gfx::GraphicsStateGuard guard(context);
    context.clipToRect(rect);
    if (const auto edge = pictureEdge(context)) context.clipToRect(*edge);
    // So that its edge smooths nothing twice.
    const gfx::Rect everything = rect.inset(-2, -2);
    for (std::size_t i = 1; i < areas.size(); ++i) {
        context.beginPath();
        context.addPath(without(areas[i], everything));
        context.clip();
    }
    context.setFillColor({0, 0, 0, std::min(dark, 1.0)});
    context.beginPath();
    context.addPath(without(areas.front(), everything));
    context.fill();
}

// From the picture's own pixels wherever it is magnified. What a crop has cut off is nowhere to be
// seen, also where the whole picture is drawn to cut the part out of it.
void CanvasPainter::Ground::draw(gfx::Context& context, const gfx::Rect& part) {
    const CanvasPicture& picture = _painter._canvas.shown.picture;
    const gfx::GraphicsStateGuard guard(context);
    context.clipToRect(part);
    if (picture.isCropped()) context.clipToRect(picture.part());
    _painter.fillBackground(context, part);
    if (!picture.source()) return;
    const gfx::ImageRef image =
        picture.repeatedAt(context.transform().largestStretch() * context.deviceScale());
    context.setInterpolation(gfx::Interpolation::High);
    context.drawImage(*image, picture.rect());
    _painter.drawPatches(
        context,
        _painter.drawnPicture({image, picture.rect(), gfx::Interpolation::High}, picture.rect()),
        [](const MDrawTool& patch) { return patch.isHiding(); },
        [](const MDrawTool&) { return false; });
}

// Carried along with the copy of the picture that is drawn, once it hides anything.
void CanvasPainter::drawPatch(gfx::Context& context, MDrawTool& patch,
                              const gfx::AffineTransform& along) {
    const gfx::GraphicsStateGuard guard(context);
    if (patch.isHiding()) context.concat(along);
    if (const auto part = _hiding.coveredBy(patch)) {
        if (!part->empty()) MDrawMosiac::cover(context, _hiding.fill(patch), *part);
        return;
    }
    const gfx::Rect& rect = _canvas.shown.picture.rect();
    const CanvasMosaic& mosaic = _hiding.isBurning() ? _hiding.mosaic() : _mosaic;
    const auto* const own = dynamic_cast<const MDrawMosiac*>(&patch);
    const bool isSoft = own && own->style() == MosaicStyle::Blur;
    patch.drawOnGround(context, isSoft ? mosaic.softFill(rect) : mosaic.fill(rect), rect);
}

// A patch that is turned covers more than its area by what its pixels' cells reach beyond it.
// Beside the picture a patch hides nothing.
std::vector<gfx::Rect> CanvasPainter::rimSidesOf(const MDrawTool& patch,
                                                 const gfx::AffineTransform& along,
                                                 const gfx::Rect& picture, double width) const {
    gfx::Polygon area = patch.area();
    const auto covered = _hiding.coveredBy(patch);
    if (gfx::isUpright(area)) {
        const gfx::Rect box = covered && !covered->empty() ? covered->front()
                              : covered                    ? gfx::Rect()
                                                           : gfx::boundsOf(area);
        const gfx::Rect seen = along.apply(box).intersection(picture);
        return seen.isEmpty() ? std::vector<gfx::Rect>() : rimSides(seen, width);
    }
    for (gfx::Point& corner : area)
        corner = along.apply(corner);
    return rimSides(area, width + (covered ? _hiding.reach() : 0));
}

// Patches go along with the copy that is drawn, which has been aligned: they cover on every screen
// exactly those of the picture's pixels that they hide in the picture itself.
void CanvasPainter::drawPatches(gfx::Context& context, const DrawnPicture& picture,
                                const PatchTest& isWanted, const PatchTest& isResting) {
    _hiding.refresh();
    const gfx::Rect& rect = _canvas.shown.picture.rect();
    const gfx::AffineTransform along = carrying(rect, picture.rect);
    const auto draw = [&](gfx::Context& target, const auto& isDrawn) {
        for (const ToolRef& tool : _canvas.tools) {
            if (isGround(*tool) && isDrawn(*tool)) drawPatch(target, *tool, along);
        }
    };
    // Rims that rest in the ground know nothing of live patches, which have theirs over it and may
    // be dragged away at any time.
    const auto isLaid = [&](const MDrawTool& patch) {
        return patch.isHiding() && (isWanted(patch) || isResting(patch));
    };
    const double width = rimWidth(picture, toDevicePixels(context));
    for (const ToolRef& tool : _canvas.tools) {
        if (!(width > 0) || !isGround(*tool) || !isWanted(*tool) || !tool->isHiding()) continue;
        drawRim(context, picture, rimSidesOf(*tool, along, picture.rect, width), width,
                [&](gfx::Context& pixels) { draw(pixels, isLaid); });
    }
    draw(context, isWanted);
}

}  // namespace kalim
