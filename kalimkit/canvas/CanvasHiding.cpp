#include "kalimkit/canvas/CanvasHiding.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "kalimkit/canvas/CanvasShown.h"
#include "kalimkit/image/SealedBlocks.h"
#include "kalimkit/shapes/MDrawMosiac.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

namespace {

// The patch, where it hides for certain what it lies on; null for any other tool.
const MDrawMosiac* certainPatch(const MDrawTool& tool) {
    if (tool.toolClass().layer() != ToolLayer::Ground) return nullptr;
    const auto* const patch = dynamic_cast<const MDrawMosiac*>(&tool);
    return patch && patch->hidesForCertain() ? patch : nullptr;
}

// Canvas points to pixels of the picture.
gfx::PixelRects pixelsOf(const gfx::Polygon& area, const gfx::AffineTransform& toPixels,
                         const gfx::Image& picture) {
    const gfx::PixelSize size = picture.pixelSize();
    if (gfx::isUpright(area)) {
        const gfx::PixelRect rect =
            grownToGrid(toPixels.apply(gfx::boundsOf(area)), picture.grid(), size);
        return rect.isEmpty() ? gfx::PixelRects{} : gfx::PixelRects{rect};
    }
    gfx::Polygon pixels;
    for (const gfx::Point& corner : area)
        pixels.push_back(toPixels.apply(corner));
    return grownToGrid(pixels, picture.grid(), size);
}

gfx::PixelRect boundsOf(const gfx::PixelRects& rects) {
    gfx::Rect bounds;
    for (const gfx::PixelRect& rect : rects) {
        const gfx::Rect one(rect.x, rect.y, rect.width, rect.height);
        bounds = bounds.isEmpty() ? one : bounds.unionWith(one);
    }
    return {static_cast<int>(bounds.minX()), static_cast<int>(bounds.minY()),
            static_cast<int>(bounds.size.width), static_cast<int>(bounds.size.height)};
}

}  // namespace

// ---- what is hidden

std::vector<CanvasHiding::Patch> CanvasHiding::patches() const {
    std::vector<Patch> patches;
    const CanvasPicture& picture = _canvas.shown.picture;
    const gfx::ImageRef& source = picture.source();
    if (!source || picture.rect().isEmpty()) return patches;
    const gfx::PixelSize size = source->pixelSize();
    const gfx::Rect& place = picture.rect();
    const gfx::AffineTransform toPixels =
        gfx::AffineTransform::scaling(size.width / place.size.width,
                                      size.height / place.size.height)
            .translated(-place.minX(), -place.minY());
    for (const ToolRef& tool : _canvas.tools) {
        const MDrawMosiac* const patch = certainPatch(*tool);
        if (!patch) continue;
        HiddenRegion region{pixelsOf(patch->area(), toPixels, *source), {}};
        if (patch->style() == MosaicStyle::Solid) region.solid = patch->solidColor();
        patches.push_back({patch, region});
    }
    return patches;
}

void CanvasHiding::refresh() {
    if (_isBurning) return;
    std::vector<Patch> now = patches();
    if (now.empty() && _patches.empty()) return;
    const CanvasPicture& picture = _canvas.shown.picture;
    const int level = picture.source() ? picture.sealedLevel() : 0;
    if (picture.source() != _source) _pixels = nullptr;
    if (now == _patches && picture.source() == _source && level == _level) return;
    _patches = std::move(now);
    _source = picture.source();
    _level = level;
    _sealed.reset();
    _blocks = {};
    release();
    if (!_patches.empty()) return;
    _source = nullptr;
    _pixels = nullptr;
}

std::vector<gfx::Rect> CanvasHiding::update() {
    refresh();
    std::vector<gfx::Rect> changed;
    if (_patches == _seen) return changed;
    // Sealed blocks take their colours from around all patches together.
    const auto collect = [&](const std::vector<Patch>& patches, const std::vector<Patch>& others) {
        for (const Patch& patch : patches) {
            const bool isSame = std::ranges::find(others, patch) != others.end();
            if (!isSame || !patch.region.solid)
                changed.push_back(onCanvas(boundsOf(patch.region.rects)));
        }
    };
    collect(_seen, _patches);
    collect(_patches, _seen);
    _seen = _patches;
    return changed;
}

gfx::PixelRects CanvasHiding::hidden() const {
    gfx::PixelRects rects;
    for (const Patch& patch : _patches)
        rects.insert(rects.end(), patch.region.rects.begin(), patch.region.rects.end());
    return rects;
}

gfx::Rect CanvasHiding::onCanvas(const gfx::PixelRect& pixels) const {
    const CanvasPicture& picture = _canvas.shown.picture;
    const gfx::Rect& place = picture.rect();
    if (!picture.source() || pixels.isEmpty()) return {};
    const gfx::PixelSize size = picture.source()->pixelSize();
    const double across = place.size.width / size.width;
    const double down = place.size.height / size.height;
    return {place.minX() + pixels.x * across, place.minY() + pixels.y * down, pixels.width * across,
            pixels.height * down};
}

// ---- drawing

const CanvasHiding::Patch* CanvasHiding::patchOf(const MDrawTool& tool) const {
    const auto found =
        std::ranges::find_if(_patches, [&](const Patch& patch) { return patch.tool == &tool; });
    return found == _patches.end() ? nullptr : &*found;
}

std::optional<std::vector<gfx::Rect>> CanvasHiding::coveredBy(const MDrawTool& patch) const {
    const Patch* const known = patchOf(patch);
    if (!known) return std::nullopt;
    std::vector<gfx::Rect> covered;
    for (const gfx::PixelRect& rect : known->region.rects)
        covered.push_back(onCanvas(rect));
    return covered;
}

gfx::Paint CanvasHiding::fill(const MDrawTool& patch) {
    const Patch* const known = patchOf(patch);
    if (!known) return gfx::Color{0, 0, 0, 1};
    if (known->region.solid) return *known->region.solid;
    if (_blocks.isEmpty()) {
        _blocks = MosaicBlocks::ofColors(ui::Environment::current().device(), sealed(), _level,
                                         _source->pixelSize());
    }
    return _blocks.patternOver(_canvas.shown.picture.rect());
}

double CanvasHiding::reach() const {
    if (_patches.empty() || !_source) return 0;
    const gfx::PixelGrid& grid = _source->grid();
    const gfx::Rect most =
        onCanvas({0, 0, grid.cell.width + grid.reach + 1, grid.cell.height + grid.reach + 1});
    return std::max(most.size.width, most.size.height);
}

const gfx::Bitmap& CanvasHiding::pixels() {
    if (!_pixels) _pixels = _source->pixels();
    return *_pixels;
}

const gfx::Bitmap& CanvasHiding::sealed() {
    if (!_sealed) _sealed = sealedColors(pixels(), hidden(), _level);
    return *_sealed;
}

// ---- what leaves the canvas

CanvasHiding::Begun CanvasHiding::begin(Copies copies) {
    if (_isBurning) return Begun::No;
    refresh();
    if (hidden().empty()) return Begun::No;
    if (!_burnt) {
        std::vector<HiddenRegion> regions;
        for (const Patch& patch : _patches)
            regions.push_back(patch.region);
        gfx::Bitmap copy = pixels();
        hideRegions(copy, regions, sealed(), _level);
        _burnt = ui::Environment::current().device().makeImage(std::move(copy), _source->scale(),
                                                               gfx::ImageOrientation::Up);
    }
    if (!_burnt) return Begun::Failed;
    const CanvasPicture& picture = _canvas.shown.picture;
    if (_picture.source() != _burnt || !_picture.isShownAs(picture)) {
        _picture = picture.over(_burnt);
        _mosaic.take(_picture, CanvasMosaic::When::Asked);
    }
    if (copies == Copies::All) _picture.makeCopies();
    std::swap(_canvas.shown.picture, _picture);
    _isBurning = true;
    return Begun::Yes;
}

void CanvasHiding::end() {
    std::swap(_canvas.shown.picture, _picture);
    _isBurning = false;
}

void CanvasHiding::release() {
    _burnt = nullptr;
    _picture = {};
    _mosaic = {};
}

}  // namespace kalim
